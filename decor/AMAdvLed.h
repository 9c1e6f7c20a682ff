// An LED indicator: a small picture in one of seventeen shapes, lit in ColorOn or unlit in
// ColorOff. The pictures are shading masks (resources ":/mattoni/leds/<name>") tinted with the
// colour when painted. TDBAMAdvLed shows a field as lit, unlit or grayed and switches it on click.
#pragma once

#include "Color.h"
#include "DataSource.h"
#include "Graphics.h"
#include "mattoni_widgets_export.h"

#include <QImage>
#include <QPixmap>
#include <QWidget>

#include <functional>
#include <memory>

namespace mattoni {

class MATTONI_WIDGETS_EXPORT TAMAdvLed : public QWidget
{
    Q_OBJECT
public:
    enum TLedType {
        ltDiamond, ltEllipsHrz, ltEllipsVrt, ltMoonLeft, ltMoonRight, ltParallelBck, ltParallelFwd,
        ltPentagon, ltRound, ltRectangleHrz, ltRectangleVrt, ltSquare, ltTriangleDwn, ltTriangleLeft,
        ltTriangleRight, ltTriangleUp, ltCheck
    };
    Q_ENUM(TLedType)
    enum TBorder { brDefault, brRaised, brLowered };
    Q_ENUM(TBorder)

private:
    Q_PROPERTY(bool AllowGrayed READ AllowGrayed WRITE setAllowGrayed)
    Q_PROPERTY(TBorder BorderStyle READ BorderStyle WRITE setBorderStyle)
    Q_PROPERTY(quint32 ColorOff READ ColorOff WRITE setColorOff)
    Q_PROPERTY(quint32 ColorOn READ ColorOn WRITE setColorOn)
    Q_PROPERTY(bool Ctl3D READ Ctl3D WRITE setCtl3D)
    Q_PROPERTY(bool LedOn READ LedOn WRITE setLedOn NOTIFY LedOnChanged)
    Q_PROPERTY(TLedType LedType READ LedType WRITE setLedType)

public:
    explicit TAMAdvLed(QWidget *parent = nullptr);
    ~TAMAdvLed() override;

    // The resource base name of a shape; a value outside the list gives "AMRNDLED".
    static QString LedBaseName(TLedType type);
    // The resource a shape other than ltCheck shows with a border and 3-D setting.
    static QString LedResourceName(TLedType type, TBorder border, bool ctl3D);
    // Paints a shading mask in a colour: grey 128 gives the colour, lighter greys lighten it up
    // to white, darker ones darken it down to black; pixels that are not grey (the bezels) stay
    // as they are. The mask's alpha is kept.
    static QImage TintLed(const QImage &mask, const QColor &color);

    // Only the data-aware LED reads it, when it is clicked.
    bool AllowGrayed() const { return m_allowGrayed; }
    void setAllowGrayed(bool value) { m_allowGrayed = value; }
    TBorder BorderStyle() const { return m_borderStyle; }
    // Any border but brDefault turns Ctl3D on.
    void setBorderStyle(TBorder value);
    TColor ColorOff() const { return m_colors[0]; }
    void setColorOff(TColor value) { SetColor(0, value); }
    TColor ColorOn() const { return m_colors[1]; }
    void setColorOn(TColor value) { SetColor(1, value); }
    bool Ctl3D() const { return m_ctl3D; }
    // Turning it off sets BorderStyle to brDefault: there are no flat bevelled pictures.
    void setCtl3D(bool value);
    bool LedOn() const { return m_ledOn; }
    void setLedOn(bool value);
    TLedType LedType() const { return m_ledType; }
    void setLedType(TLedType value);

    // Switches of LedOn since the control was made.
    int NumSwitch() const { return m_numSwitch; }
    // The resources the current pictures came from: one name, or for ltCheck the lit
    // ("CHECKLED3DDWN") and the unlit ("CHECKLED3DUP") picture.
    QStringList LedSources() const { return m_sources; }
    // The picture painted for the current state, before tinting.
    QImage CurrentMask() const;
    // The colour the picture is painted in: ColorOn, ColorOff, or grey while grayed or disabled.
    QColor PaintColor() const;
    // Where the picture is painted: centred; the data-aware LED puts its caption beside it.
    virtual QRect LedRect() const;

    QSize sizeHint() const override;

    std::function<void(QObject *Sender, bool LedOn, int NumSwitch)> OnLedStateChanged;
    std::function<void(QObject *Sender)> OnClick;
    std::function<void(QObject *Sender, Qt::MouseButton Button, Qt::KeyboardModifiers Shift, int X, int Y)>
        OnMouseDown;
    std::function<void(QObject *Sender, Qt::MouseButton Button, Qt::KeyboardModifiers Shift, int X, int Y)>
        OnMouseUp;

signals:
    void LedOnChanged(bool LedOn);

protected:
    // Loads the pictures of the current shape, border and 3-D setting, then repaints.
    void SetLedSrc();
    virtual void Click();
    // The data-aware LED shows its third state as grayed.
    virtual bool IsGrayed() const { return false; }

    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    // 0 = ColorOff, 1 = ColorOn.
    void SetColor(int Index, TColor Value);

    bool m_allowGrayed = false;
    TBorder m_borderStyle = brDefault;
    TColor m_colors[2] = {clGreen, clLime};
    bool m_ctl3D = true;
    bool m_ledOn = false;
    TLedType m_ledType = ltRound;
    int m_numSwitch = 0;
    QStringList m_sources;
    QImage m_picture;
    QImage m_checkOn;
    QImage m_checkOff;
    bool m_pressed = false;
    // The tinted picture of the last paint, kept while neither picture nor colour changes.
    mutable QPixmap m_tinted;
    mutable qint64 m_tintedKey = 0;
    mutable QRgb m_tintedColor = 0;
};

// An LED bound to a field, like a check box: lit for a true Boolean or a text in ValueChecked,
// unlit for false or a text in ValueUnchecked, grayed (unlit, in grey) for Null or any other
// text. A click cycles the state and writes it into the field.
class MATTONI_WIDGETS_EXPORT TDBAMAdvLed : public TAMAdvLed
{
    Q_OBJECT
    Q_PROPERTY(mattoni::TDataSource *DataSource READ DataSource WRITE setDataSource)
    Q_PROPERTY(QString DataField READ DataField WRITE setDataField)
    Q_PROPERTY(bool ReadOnly READ ReadOnly WRITE setReadOnly)
    Q_PROPERTY(QString ValueChecked READ ValueChecked WRITE setValueChecked)
    Q_PROPERTY(QString ValueUnchecked READ ValueUnchecked WRITE setValueUnchecked)
    Q_PROPERTY(QString HintChecked READ HintChecked WRITE setHintChecked)
    Q_PROPERTY(QString HintUnchecked READ HintUnchecked WRITE setHintUnchecked)
    Q_PROPERTY(QString Caption READ Caption WRITE setCaption)

public:
    explicit TDBAMAdvLed(QWidget *parent = nullptr);
    ~TDBAMAdvLed() override;

    TDataSource *DataSource() const;
    void setDataSource(TDataSource *value);
    QString DataField() const;
    void setDataField(const QString &value);
    bool ReadOnly() const;
    void setReadOnly(bool value);
    // Texts separated by ";", compared ignoring case with the field's edit text; the first one is
    // written. Defaults "True" and "False".
    QString ValueChecked() const { return m_valueChecked; }
    void setValueChecked(const QString &value);
    QString ValueUnchecked() const { return m_valueUnchecked; }
    void setValueUnchecked(const QString &value);
    // The tool tip while checked or unchecked; empty leaves the tool tip as it is.
    QString HintChecked() const { return m_hintChecked; }
    void setHintChecked(const QString &value) { m_hintChecked = value; }
    QString HintUnchecked() const { return m_hintUnchecked; }
    void setHintUnchecked(const QString &value) { m_hintUnchecked = value; }
    // Drawn right of the LED.
    QString Caption() const { return m_caption; }
    void setCaption(const QString &value);

    TCheckBoxState State() const { return m_state; }
    TField *Field() const;

    QRect LedRect() const override;
    QSize sizeHint() const override;

protected:
    // The field's value as a state.
    TCheckBoxState GetFieldState() const;
    void SetState(TCheckBoxState Value);
    // Cycles the state when the link can edit, writes it, then OnClick.
    void Click() override;
    bool IsGrayed() const override { return m_state == cbGrayed; }
    void paintEvent(QPaintEvent *event) override;

private:
    // The state into the field.
    void UpdateData();
    void DataChange();
    static bool ValueMatch(const QString &values, const QString &text);

    std::unique_ptr<TFieldDataLink> m_link;
    TCheckBoxState m_state = cbUnchecked;
    QString m_valueChecked = QStringLiteral("True");
    QString m_valueUnchecked = QStringLiteral("False");
    QString m_hintChecked;
    QString m_hintUnchecked;
    QString m_caption;
};

} // namespace mattoni
