// TURLSpeedButton and TMAILSpeedButton: flat buttons that open a web address, or write a mail to
// an address, through the desktop's handlers (QDesktopServices::openUrl). Bound to a field through
// DataSource and DataField, they take the field's text as their address.
#pragma once

#include "DataSource.h"
#include "mattoni_widgets_export.h"

#include <QToolButton>
#include <QUrl>

#include <memory>

namespace mattoni {

// What the two buttons share: a flat button with a glyph beside its caption, an address, and the
// link to the field that can supply it.
class MATTONI_WIDGETS_EXPORT TLinkSpeedButton : public QToolButton
{
    Q_OBJECT
public:
    ~TLinkSpeedButton() override;

    // The URL the desktop is asked to open for the current address.
    virtual QUrl TargetUrl() const = 0;

    TDataSource *DataSource() const;
    void setDataSource(TDataSource *value);
    QString DataField() const;
    void setDataField(const QString &value);

signals:
    void DataSourceChanged();
    void DataFieldChanged();

protected:
    explicit TLinkSpeedButton(QWidget *parent);
    const QString &Address() const { return m_address; }
    // True when the address changed.
    bool setAddress(const QString &value);
    // Tells that the address changed (URLChanged, MAILChanged).
    virtual void addressChanged() = 0;

private:
    void takeFieldText();

    QString m_address;
    std::unique_ptr<TFieldDataLink> m_dataLink;
};

class MATTONI_WIDGETS_EXPORT TURLSpeedButton : public TLinkSpeedButton
{
    Q_OBJECT
    Q_PROPERTY(QString URL READ URL WRITE setURL NOTIFY URLChanged)
    Q_PROPERTY(mattoni::TDataSource *DataSource READ DataSource WRITE setDataSource NOTIFY DataSourceChanged)
    Q_PROPERTY(QString DataField READ DataField WRITE setDataField NOTIFY DataFieldChanged)
public:
    explicit TURLSpeedButton(QWidget *parent = nullptr);

    const QString &URL() const { return Address(); }
    void setURL(const QString &value);
    // The address as a person would type it: "www.ateneo.it" opens http://www.ateneo.it.
    QUrl TargetUrl() const override;

signals:
    void URLChanged();

protected:
    void addressChanged() override { emit URLChanged(); }
};

class MATTONI_WIDGETS_EXPORT TMAILSpeedButton : public TLinkSpeedButton
{
    Q_OBJECT
    Q_PROPERTY(QString MAIL READ MAIL WRITE setMAIL NOTIFY MAILChanged)
    Q_PROPERTY(mattoni::TDataSource *DataSource READ DataSource WRITE setDataSource NOTIFY DataSourceChanged)
    Q_PROPERTY(QString DataField READ DataField WRITE setDataField NOTIFY DataFieldChanged)
public:
    explicit TMAILSpeedButton(QWidget *parent = nullptr);

    const QString &MAIL() const { return Address(); }
    void setMAIL(const QString &value);
    // "mailto:" + MAIL.
    QUrl TargetUrl() const override;

signals:
    void MAILChanged();

protected:
    void addressChanged() override { emit MAILChanged(); }
};

} // namespace mattoni
