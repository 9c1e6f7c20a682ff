// The web and mail buttons.
#include "URLComps.h"

#include "Fields.h"

#include <QDesktopServices>

namespace mattoni {

TLinkSpeedButton::TLinkSpeedButton(QWidget *parent)
    : QToolButton(parent)
    , m_dataLink(std::make_unique<TFieldDataLink>())
{
    setAutoRaise(true);
    setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    setFocusPolicy(Qt::NoFocus); // a speed button never takes the focus
    connect(this, &QToolButton::clicked, this, [this] { QDesktopServices::openUrl(TargetUrl()); });
    m_dataLink->setControl(this);
    m_dataLink->OnDataChange = [this](TFieldDataLink *) { takeFieldText(); };
    m_dataLink->OnActiveChange = [this](TFieldDataLink *) { takeFieldText(); };
}

TLinkSpeedButton::~TLinkSpeedButton() = default;

bool TLinkSpeedButton::setAddress(const QString &value)
{
    if (m_address == value)
        return false;
    m_address = value;
    return true;
}

TDataSource *TLinkSpeedButton::DataSource() const
{
    return m_dataLink->DataSource();
}

void TLinkSpeedButton::setDataSource(TDataSource *value)
{
    if (DataSource() == value)
        return;
    m_dataLink->setDataSource(value);
    takeFieldText();
    emit DataSourceChanged();
}

QString TLinkSpeedButton::DataField() const
{
    return m_dataLink->FieldName();
}

void TLinkSpeedButton::setDataField(const QString &value)
{
    if (DataField() == value)
        return;
    m_dataLink->setFieldName(value);
    takeFieldText();
    emit DataFieldChanged();
}

// A bound button (DataSource and DataField set) follows the field of the current record and has no
// address while there is no field (a closed dataset, an unknown name). An unbound button keeps the
// address given in code.
void TLinkSpeedButton::takeFieldText()
{
    if (!DataSource() || DataField().isEmpty())
        return;
    TField *field = m_dataLink->Field();
    if (setAddress(field ? field->Text() : QString()))
        addressChanged();
}

TURLSpeedButton::TURLSpeedButton(QWidget *parent)
    : TLinkSpeedButton(parent)
{
    setIcon(QIcon(QStringLiteral(":/mattoni/glyphs/web.png")));
}

void TURLSpeedButton::setURL(const QString &value)
{
    if (setAddress(value))
        addressChanged();
}

QUrl TURLSpeedButton::TargetUrl() const
{
    return QUrl::fromUserInput(URL());
}

TMAILSpeedButton::TMAILSpeedButton(QWidget *parent)
    : TLinkSpeedButton(parent)
{
    setIcon(QIcon(QStringLiteral(":/mattoni/glyphs/mail.png")));
}

void TMAILSpeedButton::setMAIL(const QString &value)
{
    if (setAddress(value))
        addressChanged();
}

QUrl TMAILSpeedButton::TargetUrl() const
{
    return QUrl(QStringLiteral("mailto:") + MAIL(), QUrl::TolerantMode);
}

} // namespace mattoni
