// The web and mail buttons.
#include "URLComps.h"

#include <QDesktopServices>

namespace mattoni {

TLinkSpeedButton::TLinkSpeedButton(QWidget *parent)
    : QToolButton(parent)
{
    setAutoRaise(true);
    setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    setFocusPolicy(Qt::NoFocus); // a speed button never takes the focus
    connect(this, &QToolButton::clicked, this, [this] { QDesktopServices::openUrl(TargetUrl()); });
}

bool TLinkSpeedButton::setAddress(const QString &value)
{
    if (m_address == value)
        return false;
    m_address = value;
    return true;
}

TURLSpeedButton::TURLSpeedButton(QWidget *parent)
    : TLinkSpeedButton(parent)
{
    setIcon(QIcon(QStringLiteral(":/mattoni/glyphs/web.png")));
}

void TURLSpeedButton::setURL(const QString &value)
{
    if (setAddress(value))
        emit URLChanged();
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
        emit MAILChanged();
}

QUrl TMAILSpeedButton::TargetUrl() const
{
    return QUrl(QStringLiteral("mailto:") + MAIL(), QUrl::TolerantMode);
}

} // namespace mattoni
