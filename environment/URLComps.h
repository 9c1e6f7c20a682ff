// TURLSpeedButton and TMAILSpeedButton: flat buttons that open a web address, or write a mail to
// an address, through the desktop's handlers (QDesktopServices::openUrl).
#pragma once

#include "mattoni_widgets_export.h"

#include <QToolButton>
#include <QUrl>

namespace mattoni {

// What the two buttons share: a flat button with a glyph beside its caption and an address.
class MATTONI_WIDGETS_EXPORT TLinkSpeedButton : public QToolButton
{
    Q_OBJECT
public:
    // The URL the desktop is asked to open for the current address.
    virtual QUrl TargetUrl() const = 0;

protected:
    explicit TLinkSpeedButton(QWidget *parent);
    const QString &Address() const { return m_address; }
    // True when the address changed.
    bool setAddress(const QString &value);

private:
    QString m_address;
};

class MATTONI_WIDGETS_EXPORT TURLSpeedButton : public TLinkSpeedButton
{
    Q_OBJECT
    Q_PROPERTY(QString URL READ URL WRITE setURL NOTIFY URLChanged)
public:
    explicit TURLSpeedButton(QWidget *parent = nullptr);

    const QString &URL() const { return Address(); }
    void setURL(const QString &value);
    // The address as a person would type it: "www.ateneo.it" opens http://www.ateneo.it.
    QUrl TargetUrl() const override;

signals:
    void URLChanged();
};

class MATTONI_WIDGETS_EXPORT TMAILSpeedButton : public TLinkSpeedButton
{
    Q_OBJECT
    Q_PROPERTY(QString MAIL READ MAIL WRITE setMAIL NOTIFY MAILChanged)
public:
    explicit TMAILSpeedButton(QWidget *parent = nullptr);

    const QString &MAIL() const { return Address(); }
    void setMAIL(const QString &value);
    // "mailto:" + MAIL.
    QUrl TargetUrl() const override;

signals:
    void MAILChanged();
};

} // namespace mattoni
