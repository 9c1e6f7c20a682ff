// The Qt Designer plugin of mattoni_widgets.
#include "MattoniDesignerPlugin.h"

#include "AMAdvLed.h"
#include "AnnoAccademico.h"
#include "DBGridExt.h"
#include "DBToolClass.h"
#include "DBTreeView.h"
#include "EditEnh.h"
#include "Matricola.h"
#include "URLComps.h"
#include "ViewGrid.h"
#include "calendario.h"
#include "fm_MessageBox.h"

#include <QMetaProperty>

using namespace mattoni;

namespace {

template<typename W>
std::function<QWidget *(QWidget *)> maker()
{
    return [](QWidget *parent) -> QWidget * { return new W(parent); };
}

// Texts that name things rather than say something to the user: Designer does not offer them
// for translation.
bool IsName(const char *property)
{
    static const QList<QByteArray> names = {"DataField",     "DataFieldFacolta", "DataFieldCorsoStudi",
                                            "DataFieldMatricola", "DataFieldNodo", "DataFieldPadre",
                                            "DisplayFormat", "ValidChar",        "ValueChecked",
                                            "ValueUnchecked", "URL",             "MAIL"};
    return names.contains(QByteArray(property));
}

} // namespace

MattoniWidgetPlugin::MattoniWidgetPlugin(const MattoniWidgetInfo &info, QObject *parent)
    : QObject(parent)
    , m_info(info)
{
}

QString MattoniWidgetPlugin::name() const
{
    return QLatin1String(m_info.className);
}

QString MattoniWidgetPlugin::group() const
{
    return QStringLiteral("Mattoni");
}

QString MattoniWidgetPlugin::toolTip() const
{
    return QString::fromUtf8(m_info.toolTip);
}

QString MattoniWidgetPlugin::whatsThis() const
{
    return toolTip();
}

QString MattoniWidgetPlugin::includeFile() const
{
    return QLatin1String(m_info.header);
}

QIcon MattoniWidgetPlugin::icon() const
{
    // The icon file bears the class name without its namespace.
    return QIcon(QStringLiteral(":/mattoni/designer/%1.png").arg(name().section(QLatin1String("::"), -1)));
}

bool MattoniWidgetPlugin::isContainer() const
{
    return false;
}

QWidget *MattoniWidgetPlugin::createWidget(QWidget *parent)
{
    return m_info.create(parent);
}

QString MattoniWidgetPlugin::domXml() const
{
    // A form names the Qt class each widget extends, whatever library classes lie between.
    const QMetaObject *base = m_info.meta;
    while (QByteArray(base->className()).startsWith("mattoni::"))
        base = base->superClass();
    // Properties holding field and format names: single-line, not offered for translation.
    QString nameProperties;
    for (int i = 0; i < m_info.meta->propertyCount(); ++i) {
        const QMetaProperty p = m_info.meta->property(i);
        if (p.metaType().id() == QMetaType::QString && IsName(p.name()))
            nameProperties += QStringLiteral("    <stringpropertyspecification name=\"%1\" notr=\"true\" type=\"singleline\"/>\n")
                                  .arg(QLatin1String(p.name()));
    }
    return QStringLiteral("<ui language=\"c++\">\n"
                          " <widget class=\"%1\" name=\"%2\">\n"
                          "  <property name=\"geometry\">\n"
                          "   <rect><x>0</x><y>0</y><width>%3</width><height>%4</height></rect>\n"
                          "  </property>\n"
                          " </widget>\n"
                          " <customwidgets>\n"
                          "  <customwidget>\n"
                          "   <class>%1</class>\n"
                          "   <extends>%5</extends>\n"
                          "   <propertyspecifications>\n%6"
                          "   </propertyspecifications>\n"
                          "  </customwidget>\n"
                          " </customwidgets>\n"
                          "</ui>\n")
        .arg(name(), QLatin1String(m_info.objectName))
        .arg(m_info.width)
        .arg(m_info.height)
        .arg(QLatin1String(base->className()), nameProperties);
}

bool MattoniWidgetPlugin::isInitialized() const
{
    return m_initialized;
}

void MattoniWidgetPlugin::initialize(QDesignerFormEditorInterface *)
{
    m_initialized = true;
}

MattoniDesignerPlugin::MattoniDesignerPlugin(QObject *parent)
    : QObject(parent)
{
    // Each widget at its designed size where the library has one.
    const MattoniWidgetInfo widgets[] = {
        {"mattoni::TinCalendar", "calendario.h", "calendario", 240, 160,
         "A month calendar: one header row of day names, six weeks; weekends in their own colour.",
         &TinCalendar::staticMetaObject, maker<TinCalendar>()},
        {"mattoni::TEditEnh", "EditEnh.h", "editEnh", 121, 21,
         "An edit with a display format, any text or numbers only, and the colours of the scheme.",
         &TEditEnh::staticMetaObject, maker<TEditEnh>()},
        {"mattoni::TDBEditEnh", "EditEnh.h", "dbEditEnh", 121, 21,
         "The enhanced edit bound to a field of a data source.", &TDBEditEnh::staticMetaObject, maker<TDBEditEnh>()},
        {"mattoni::TMatricola", "Matricola.h", "matricola", 95, 19,
         "A student's registration number: faculty, course of study and student number, zero-padded.",
         &TMatricola::staticMetaObject, maker<TMatricola>()},
        {"mattoni::TAnnoAccademico", "AnnoAccademico.h", "annoAccademico", 70, 19,
         "An academic year such as 2013/2014: the first year is edited and stored, the second follows.",
         &TAnnoAccademico::staticMetaObject, maker<TAnnoAccademico>()},
        {"mattoni::TAMAdvLed", "AMAdvLed.h", "led", 16, 16,
         "An LED, lit or unlit, in one of seventeen shapes.", &TAMAdvLed::staticMetaObject, maker<TAMAdvLed>()},
        {"mattoni::TDBAMAdvLed", "AMAdvLed.h", "dbLed", 100, 17,
         "An LED that shows a field as lit, unlit or grayed, and toggles it on click.", &TDBAMAdvLed::staticMetaObject, maker<TDBAMAdvLed>()},
        {"mattoni::TDBStateButton", "DBToolClass.h", "stateButton", 23, 22,
         "A tool button whose image and hint follow the state of a dataset.", &TDBStateButton::staticMetaObject, maker<TDBStateButton>()},
        {"mattoni::TDBImageState", "DBToolClass.h", "imageState", 16, 16,
         "An image that follows the state of a dataset.", &TDBImageState::staticMetaObject, maker<TDBImageState>()},
        {"mattoni::TDBGridExt", "DBGridExt.h", "dbGridExt", 320, 120,
         "A data grid that sorts by a click on its titles, with check-box columns and alternate rows.",
         &TDBGridExt::staticMetaObject, maker<TDBGridExt>()},
        {"mattoni::TClientDBGrid", "ViewGrid.h", "clientDBGrid", 320, 120,
         "A data grid that has the database order its rows: Ctrl-click the titles, then release Ctrl.",
         &TClientDBGrid::staticMetaObject, maker<TClientDBGrid>()},
        {"mattoni::TDBReadTreeView", "DBTreeView.h", "dbTreeView", 200, 160,
         "A tree of the records of a self-referencing table, read branch by branch.", &TDBReadTreeView::staticMetaObject, maker<TDBReadTreeView>()},
        {"mattoni::TURLSpeedButton", "URLComps.h", "btWeb", 75, 25,
         "A flat button that opens its web address, or a field's.", &TURLSpeedButton::staticMetaObject, maker<TURLSpeedButton>()},
        {"mattoni::TMAILSpeedButton", "URLComps.h", "btMail", 75, 25,
         "A flat button that writes a mail to its address, or a field's.", &TMAILSpeedButton::staticMetaObject, maker<TMAILSpeedButton>()},
        {"mattoni::TBitBtn", "fm_MessageBox.h", "bitBtn", 75, 25,
         "A push button of a standard kind (OK, Cancel, Yes, No, Abort, Retry, Ignore) with its glyph and "
         "modal result.",
         &TBitBtn::staticMetaObject, maker<TBitBtn>()},
    };
    for (const MattoniWidgetInfo &info : widgets)
        m_widgets.append(new MattoniWidgetPlugin(info, this));
}

QList<QDesignerCustomWidgetInterface *> MattoniDesignerPlugin::customWidgets() const
{
    return m_widgets;
}
