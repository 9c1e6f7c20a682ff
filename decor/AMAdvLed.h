// An LED indicator: a small picture in one of seventeen shapes, lit in ColorOn or unlit in
// ColorOff. The pictures are shading masks (resources ":/mattoni/leds/<name>") tinted with the
// colour when painted.
#pragma once

#include "Color.h"
#include "mattoni_widgets_export.h"

#include <QImage>
#include <QPixmap>
#include <QWidget>

#include <functional>

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

} // namespace mattoni
