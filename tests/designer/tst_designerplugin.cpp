// The Qt Designer plugin: what it offers Qt Designer, and a form that uses every widget, built
// once by QUiLoader through the plugin and once by the code uic writes from the same file.
#include "ui_SchedaStudente.h"

#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>
#include <QtUiTools/QUiLoader>

#include <QPluginLoader>
#include <QXmlStreamReader>
#include <QtTest>

namespace {

const QStringList widgetClasses = {
    QStringLiteral("mattoni::TinCalendar"),     QStringLiteral("mattoni::TEditEnh"),
    QStringLiteral("mattoni::TDBEditEnh"),      QStringLiteral("mattoni::TMatricola"),
    QStringLiteral("mattoni::TAnnoAccademico"), QStringLiteral("mattoni::TAMAdvLed"),
    QStringLiteral("mattoni::TDBAMAdvLed"),     QStringLiteral("mattoni::TDBStateButton"),
    QStringLiteral("mattoni::TDBImageState"),   QStringLiteral("mattoni::TDBGridExt"),
    QStringLiteral("mattoni::TClientDBGrid"),   QStringLiteral("mattoni::TDBReadTreeView"),
    QStringLiteral("mattoni::TURLSpeedButton"), QStringLiteral("mattoni::TMAILSpeedButton"),
    QStringLiteral("mattoni::TBitBtn"),
};

QString pluginFolder()
{
    return qEnvironmentVariable("MATTONI_BINARY_DIR") + QStringLiteral("/plugins/designer");
}

QString formFile()
{
    return qEnvironmentVariable("MATTONI_SOURCE_DIR") + QStringLiteral("/tests/designer/data/SchedaStudente.ui");
}

} // namespace

class tst_DesignerPlugin : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        QFile file(formFile());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QUiLoader loader;
        // Only our plugin: the system's Designer plugins have nothing to do here.
        loader.clearPluginPaths();
        loader.addPluginPath(pluginFolder());
        m_loaded.reset(loader.load(&file));
        QVERIFY2(m_loaded, qPrintable(loader.errorString()));
        m_built.reset(new QWidget);
        m_ui.setupUi(m_built.get());
    }

    void collectionOffersEveryWidget()
    {
        QPluginLoader plugin(pluginFolder() + QStringLiteral("/libmattoni_designer.so"));
        auto *collection = qobject_cast<QDesignerCustomWidgetCollectionInterface *>(plugin.instance());
        QVERIFY2(collection, qPrintable(plugin.errorString()));
        QStringList names;
        QWidget parent;
        for (QDesignerCustomWidgetInterface *w : collection->customWidgets()) {
            names << w->name();
            QCOMPARE(w->group(), QStringLiteral("Mattoni"));
            QVERIFY2(!w->icon().pixmap(32, 32).isNull(), qPrintable(w->name()));
            QVERIFY2(!w->isContainer(), qPrintable(w->name()));
            // The header a user's program includes is one of the library's.
            QVERIFY2(!w->includeFile().contains(QLatin1Char('/')), qPrintable(w->includeFile()));
            // What Designer drops on a form is the class it names, made by the plugin.
            QString widgetClass;
            QString extends;
            QXmlStreamReader xml(w->domXml());
            while (!xml.atEnd()) {
                if (xml.readNext() != QXmlStreamReader::StartElement)
                    continue;
                if (xml.name() == QLatin1String("widget"))
                    widgetClass = xml.attributes().value(QLatin1String("class")).toString();
                else if (xml.name() == QLatin1String("extends"))
                    extends = xml.readElementText();
            }
            QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));
            QCOMPARE(widgetClass, w->name());
            QWidget *made = w->createWidget(&parent);
            QVERIFY(made);
            QCOMPARE(QString::fromLatin1(made->metaObject()->className()), w->name());
            // Forms name the Qt class it extends.
            QVERIFY2(extends.startsWith(QLatin1Char('Q')) && made->inherits(extends.toLatin1().constData()),
                     qPrintable(extends));
        }
        QCOMPARE(names, widgetClasses);
        // Each header exists among the library's public headers.
        const QDir source(qEnvironmentVariable("MATTONI_SOURCE_DIR"));
        for (QDesignerCustomWidgetInterface *w : collection->customWidgets()) {
            bool found = false;
            for (const QString &folder : {"codes", "dbcontrols", "decor", "environment"})
                found = found || source.exists(folder + QLatin1Char('/') + w->includeFile());
            QVERIFY2(found, qPrintable(w->includeFile()));
        }
    }

    void formProperties_data()
    {
        QTest::addColumn<QString>("object");
        QTest::addColumn<QByteArray>("property");
        QTest::addColumn<QVariant>("expected");
        const auto row = [](const char *object, const char *property, const QVariant &expected) {
            QTest::addRow("%s.%s", object, property) << QString::fromLatin1(object) << QByteArray(property) << expected;
        };
        row("matricola", "DataFieldFacolta", QStringLiteral("facolta"));
        row("matricola", "DataFieldCorsoStudi", QStringLiteral("corso"));
        row("matricola", "DataFieldMatricola", QStringLiteral("matricola"));
        row("matricola", "WidthFacolta", 30);
        row("matricola", "WidthCorsoStudi", 60);
        row("matricola", "TabStopCorsoStudi", false);
        row("matricola", "EditColor", 15793151u);
        row("annoAccademico", "DataField", QStringLiteral("anno_immatricolazione"));
        row("annoAccademico", "WidthAA", 32);
        row("annoAccademico", "EditColor", 15780518u);
        row("media", "Border", false);
        row("media", "Color", 65535u);
        row("media", "DisplayFormat", QStringLiteral("#,##0.00"));
        row("media", "DisplayType", 1);
        row("media", "MaxLength", 6);
        row("media", "ReadOnly", true);
        row("media", "TabStop", false);
        row("cognome", "MaxLength", 40);
        row("cognome", "DataField", QStringLiteral("cognome"));
        row("ledCodice", "AllowGrayed", true);
        row("ledCodice", "BorderStyle", 2);
        row("ledCodice", "ColorOff", 255u);
        row("ledCodice", "ColorOn", 32768u);
        row("ledCodice", "LedOn", true);
        row("ledCodice", "LedType", 15);
        row("inCorso", "LedType", 11);
        row("inCorso", "DataField", QStringLiteral("in_corso"));
        row("inCorso", "ReadOnly", true);
        row("inCorso", "ValueChecked", QStringLiteral("S"));
        row("inCorso", "ValueUnchecked", QStringLiteral("N"));
        row("inCorso", "HintChecked", QStringLiteral("In corso"));
        row("inCorso", "HintUnchecked", QStringLiteral("Fuori corso"));
        row("inCorso", "Caption", QStringLiteral("In corso"));
        row("stato", "ImageIndex", 3);
        row("stato", "Hint", QStringLiteral("Stato della scheda"));
        row("immagineStato", "Hint", QStringLiteral("Stato dell'archivio"));
        row("calendario", "BorderStyle", 0);
        row("calendario", "CalendarDate", 41729.0);
        row("calendario", "Day", 31);
        row("calendario", "ReadOnly", true);
        row("calendario", "StartOfWeek", 0);
        row("calendario", "UseCurrentDate", false);
        row("calendario", "WeekendColor", 16711680u);
        row("struttura", "DataFieldNodo", QStringLiteral("id"));
        row("struttura", "DataFieldPadre", QStringLiteral("padre"));
        row("struttura", "FetchAll", true);
        row("struttura", "AutoExpand", true);
        row("struttura", "ChangeDelay", 50);
        row("struttura", "HideSelection", false);
        row("struttura", "Indent", 15);
        row("struttura", "ShowRoot", false);
        row("struttura", "ToolTips", false);
        row("btWeb", "URL", QStringLiteral("www.ateneo.it"));
        row("btWeb", "DataField", QStringLiteral("sito"));
        row("btMail", "MAIL", QStringLiteral("segreteria@ateneo.it"));
        row("btChiudi", "Kind", 4);
        row("btChiudi", "ModalResult", 7);
        row("btChiudi", "Cancel", true);
        row("studenti", "Color", 15793151u);
        row("studenti", "FixedColor", 12632256u);
        // MultiSelect, read after Options, adds dgMultiSelect to them.
        row("studenti", "Options", 0x4 | 0x8 | 0x100 | 0x1000);
        row("studenti", "ReadOnly", true);
        row("studenti", "AlternateColor", true);
        row("studenti", "ClearSelection", true);
        row("studenti", "MultiSelect", true);
        row("studenti", "RowHeight", 22);
        row("studenti", "TitleSort", true);
        row("studenti", "VertAlignment", 0);
        row("elenco", "EnableSort", false);
        row("elenco", "KeepColors", true);
    }
    void formProperties()
    {
        QFETCH(QString, object);
        QFETCH(QByteArray, property);
        QFETCH(QVariant, expected);
        for (QWidget *form : {m_loaded.get(), m_built.get()}) {
            const QWidget *widget = form->findChild<QWidget *>(object);
            QVERIFY(widget);
            QVariant actual = widget->property(property.constData());
            QVERIFY2(actual.isValid(), property.constData());
            if (actual.metaType() != expected.metaType())
                QVERIFY(actual.convert(expected.metaType()));
            QCOMPARE(actual, expected);
        }
    }

    void fontOfTitles()
    {
        for (QWidget *form : {m_loaded.get(), m_built.get()}) {
            const QFont font = form->findChild<QWidget *>(QStringLiteral("studenti"))->property("TitleFont").value<QFont>();
            QCOMPARE(font.pointSize(), 10);
            QVERIFY(font.bold());
        }
    }

private:
    std::unique_ptr<QWidget> m_loaded;
    std::unique_ptr<QWidget> m_built;
    Ui::SchedaStudente m_ui;
};

QTEST_MAIN(tst_DesignerPlugin)
#include "tst_designerplugin.moc"
