// The academic year control.
#include "AnnoAccademico.h"

#include "Formatting.h"
#include "Graphics.h"
#include "Strings.h"

#include <QLineEdit>

namespace mattoni {

namespace {

constexpr int FirstYear = 1900;
constexpr int LastYear = 2099;

QString yearText(double year)
{
    return FormatFloat(QStringLiteral("0000"), year);
}

} // namespace

TAnnoAccademico::TAnnoAccademico(QWidget *parent)
    : TCustomPanel(parent)
    , m_anno(new TDBEditEnh(ClientArea()))
    , m_separatore(CreateReadOnlyEdit(6, 1))
    , m_annoSuccessivo(CreateReadOnlyEdit(28, 4))
{
    resize(70, 19);
    setColor(clWhite);
    m_anno->setGeometry(1, 1, 28, 19);
    m_anno->setBorder(false);
    m_anno->setMaxLength(4);
    m_anno->setDisplayType(dtGeneral);
    m_anno->setEnabled(true);
    // Four digits; a zero value shows blank.
    m_anno->setDisplayFormat(QStringLiteral("0000;0; "));
    m_anno->setTabStop(true);
    m_anno->setReadOnly(false);
    m_anno->OnChange = [this](QObject *sender) { Change(sender); };
    m_anno->OnExit = [this](QObject *sender) { ExitEdit(sender); };
    m_separatore->setText(QStringLiteral("/"));
    setWidthAA(m_anno->width());
    setFocusProxy(m_anno);
    PaintChildren();
}

TAnnoAccademico::~TAnnoAccademico()
{
    delete m_annoSuccessivo;
    delete m_separatore;
    delete m_anno;
}

QLineEdit *TAnnoAccademico::CreateReadOnlyEdit(int width, int maxLength)
{
    auto *edit = new QLineEdit(ClientArea());
    edit->resize(width, 19);
    edit->setFrame(false);
    RemoveInnerMargin(edit);
    edit->setMaxLength(maxLength);
    edit->setReadOnly(true);
    edit->setFocusPolicy(Qt::ClickFocus);
    edit->setAutoFillBackground(true);
    return edit;
}

void TAnnoAccademico::setWidthAA(int value)
{
    m_anno->resize(value, m_anno->height());
    m_separatore->move(value, m_separatore->y());
    m_annoSuccessivo->move(value + m_separatore->width(), m_annoSuccessivo->y());
}

void TAnnoAccademico::setEditColor(TColor value)
{
    m_editColor = value;
    setColor(value);
    PaintChildren();
}

void TAnnoAccademico::PaintChildren()
{
    m_anno->setColor(m_editColor);
    for (QLineEdit *edit : {m_separatore, m_annoSuccessivo}) {
        QPalette colors = edit->palette();
        colors.setColor(QPalette::Base, TColorToQColor(m_editColor));
        edit->setPalette(colors);
    }
}

void TAnnoAccademico::Resize()
{
    const int h = height();
    const int widthAA = WidthAA();
    m_anno->resize(widthAA, h);
    m_separatore->setGeometry(widthAA, m_separatore->y(), 6, h);
    m_annoSuccessivo->setGeometry(widthAA + m_separatore->width(), m_annoSuccessivo->y(),
                                  width() - m_separatore->width() - widthAA - 5, h);
    TCustomPanel::Resize();
}

void TAnnoAccademico::Change(QObject *Sender)
{
    const QString text = Trim(m_anno->text());
    // Typing shows the following year at once; the range is checked on exit only.
    if (text.isEmpty())
        m_annoSuccessivo->clear();
    else
        m_annoSuccessivo->setText(yearText(double(StrToInt(text)) + 1));
    if (OnChange)
        OnChange(Sender);
}

void TAnnoAccademico::ExitEdit(QObject *)
{
    if (OnExit)
        OnExit(this);
    PaintChildren();
    const QString text = Trim(m_anno->text());
    if (text.isEmpty()) {
        m_annoSuccessivo->clear();
        return;
    }
    const qint32 year = StrToInt(text);
    if (year >= FirstYear && year <= LastYear) {
        m_anno->setText(yearText(year));
        m_annoSuccessivo->setText(yearText(year + 1));
    } else {
        // No message: an out-of-range year is simply dropped.
        m_anno->clear();
        m_annoSuccessivo->clear();
    }
}

} // namespace mattoni
