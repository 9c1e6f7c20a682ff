// An LED indicator in seventeen shapes, painted from tinted shading masks.
#include "AMAdvLed.h"

#include "Fields.h"
#include "Graphics.h"

#include <QEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace mattoni {

namespace {

QImage loadLed(const QString &name)
{
    return QImage(QStringLiteral(":/mattoni/leds/") + name).convertToFormat(QImage::Format_ARGB32);
}

// The check pictures have an opaque background: its colour is the one of the top-left pixel.
QImage transparentFromCorner(QImage image)
{
    if (image.isNull())
        return image;
    const QRgb key = image.pixel(0, 0);
    for (int y = 0; y < image.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x)
            if (line[x] == key)
                line[x] = 0;
    }
    return image;
}

// Grey 128 is the channel itself; darker greys scale it down to 0, lighter ones up to 255.
int shadeChannel(int shade, int channel)
{
    return shade <= 128 ? channel * shade / 128 : channel + (255 - channel) * (shade - 128) / 127;
}

} // namespace

TAMAdvLed::TAMAdvLed(QWidget *parent)
    : QWidget(parent)
{
    SetLedSrc();
}

TAMAdvLed::~TAMAdvLed() = default;

QString TAMAdvLed::LedBaseName(TLedType type)
{
    switch (type) {
    case ltDiamond: return QStringLiteral("AMDMDLED");
    case ltEllipsHrz: return QStringLiteral("AMLPSLEDHRZ");
    case ltEllipsVrt: return QStringLiteral("AMLPSLEDVRT");
    case ltMoonLeft: return QStringLiteral("AMMONLEDLEFT");
    case ltMoonRight: return QStringLiteral("AMMONLEDRIGHT");
    case ltParallelBck: return QStringLiteral("AMPRLLEDBCK");
    case ltParallelFwd: return QStringLiteral("AMPRLLEDFWT");
    case ltPentagon: return QStringLiteral("AMPNTLED");
    case ltRound: return QStringLiteral("AMRNDLED");
    case ltRectangleHrz: return QStringLiteral("AMRCTLEDHRZ");
    case ltRectangleVrt: return QStringLiteral("AMRCTLEDVRT");
    case ltSquare: return QStringLiteral("AMSQRLED");
    case ltTriangleDwn: return QStringLiteral("AMTRILEDDWN");
    case ltTriangleLeft: return QStringLiteral("AMTRILEDLEFT");
    case ltTriangleRight: return QStringLiteral("AMTRILEDRIGHT");
    case ltTriangleUp: return QStringLiteral("AMTRILEDUP");
    case ltCheck: return QStringLiteral("CHECKLED");
    }
    // A value outside the list (a cast integer) shows the round LED.
    return QStringLiteral("AMRNDLED");
}

QString TAMAdvLed::LedResourceName(TLedType type, TBorder border, bool ctl3D)
{
    QString name = LedBaseName(type);
    if (border == brRaised)
        name += QStringLiteral("3DUP");
    else if (border == brLowered)
        name += QStringLiteral("3DDWN");
    if (!ctl3D)
        name += QStringLiteral("FLAT");
    return name;
}

QImage TAMAdvLed::TintLed(const QImage &mask, const QColor &color)
{
    QImage out(mask.size(), QImage::Format_ARGB32_Premultiplied);
    const QImage source = mask.convertToFormat(QImage::Format_ARGB32);
    const int r = color.red(), g = color.green(), b = color.blue();
    for (int y = 0; y < source.height(); ++y) {
        const auto *in = reinterpret_cast<const QRgb *>(source.constScanLine(y));
        auto *dst = reinterpret_cast<QRgb *>(out.scanLine(y));
        for (int x = 0; x < source.width(); ++x) {
            if (qRed(in[x]) != qGreen(in[x]) || qGreen(in[x]) != qBlue(in[x])) {
                dst[x] = qPremultiply(in[x]);
                continue;
            }
            const int shade = qRed(in[x]);
            dst[x] = qPremultiply(qRgba(shadeChannel(shade, r), shadeChannel(shade, g), shadeChannel(shade, b),
                                        qAlpha(in[x])));
        }
    }
    return out;
}

void TAMAdvLed::SetLedSrc()
{
    const QString base = LedBaseName(m_ledType);
    if (m_ledType == ltCheck) {
        m_checkOn = transparentFromCorner(loadLed(base + QStringLiteral("3DDWN")));
        m_checkOff = transparentFromCorner(loadLed(base + QStringLiteral("3DUP")));
        m_picture = QImage();
        m_sources = {base + QStringLiteral("3DDWN"), base + QStringLiteral("3DUP")};
    } else {
        const QString name = LedResourceName(m_ledType, m_borderStyle, m_ctl3D);
        m_picture = loadLed(name);
        m_checkOn = m_checkOff = QImage();
        m_sources = {name};
    }
    updateGeometry();
    update();
}

void TAMAdvLed::setBorderStyle(TBorder value)
{
    if (m_borderStyle == value)
        return;
    m_borderStyle = value;
    if (value != brDefault)
        m_ctl3D = true;
    SetLedSrc();
}

void TAMAdvLed::setCtl3D(bool value)
{
    if (m_ctl3D == value)
        return;
    m_ctl3D = value;
    if (!value)
        m_borderStyle = brDefault;
    SetLedSrc();
}

void TAMAdvLed::setLedType(TLedType value)
{
    if (m_ledType == value)
        return;
    m_ledType = value;
    SetLedSrc();
}

void TAMAdvLed::setLedOn(bool value)
{
    if (m_ledOn == value)
        return;
    m_ledOn = value;
    ++m_numSwitch;
    if (OnLedStateChanged)
        OnLedStateChanged(this, m_ledOn, m_numSwitch);
    emit LedOnChanged(m_ledOn);
    update();
}

void TAMAdvLed::SetColor(int Index, TColor Value)
{
    if (m_colors[Index] == Value)
        return;
    m_colors[Index] = Value;
    update();
}

QImage TAMAdvLed::CurrentMask() const
{
    if (m_ledType == ltCheck)
        return m_ledOn && !IsGrayed() ? m_checkOn : m_checkOff;
    return m_picture;
}

QColor TAMAdvLed::PaintColor() const
{
    if (IsGrayed() || !isEnabled()) {
        // The unlit colour without its hue, halfway to white.
        const int lightness = (TColorToQColor(ColorOff()).lightness() + 255) / 2;
        return QColor(lightness, lightness, lightness);
    }
    return TColorToQColor(m_ledOn ? ColorOn() : ColorOff());
}

QRect TAMAdvLed::LedRect() const
{
    QRect r(QPoint(0, 0), CurrentMask().size());
    r.moveCenter(rect().center());
    return r;
}

QSize TAMAdvLed::sizeHint() const
{
    return CurrentMask().size().expandedTo(QSize(1, 1));
}

void TAMAdvLed::paintEvent(QPaintEvent *)
{
    const QImage mask = CurrentMask();
    if (mask.isNull())
        return;
    const QColor color = PaintColor();
    if (m_tinted.isNull() || m_tintedKey != mask.cacheKey() || m_tintedColor != color.rgb()) {
        m_tinted = QPixmap::fromImage(TintLed(mask, color));
        m_tintedKey = mask.cacheKey();
        m_tintedColor = color.rgb();
    }
    QPainter painter(this);
    painter.drawPixmap(LedRect().topLeft(), m_tinted);
}

void TAMAdvLed::Click()
{
    if (OnClick)
        OnClick(this);
}

void TAMAdvLed::mousePressEvent(QMouseEvent *event)
{
    m_pressed = event->button() == Qt::LeftButton;
    if (OnMouseDown) {
        const QPoint pos = event->position().toPoint();
        OnMouseDown(this, event->button(), event->modifiers(), pos.x(), pos.y());
    }
}

void TAMAdvLed::mouseReleaseEvent(QMouseEvent *event)
{
    const QPoint pos = event->position().toPoint();
    if (OnMouseUp)
        OnMouseUp(this, event->button(), event->modifiers(), pos.x(), pos.y());
    if (event->button() == Qt::LeftButton && m_pressed) {
        m_pressed = false;
        if (rect().contains(pos))
            Click();
    }
}

void TAMAdvLed::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::EnabledChange)
        update();
    QWidget::changeEvent(event);
}

// --- TDBAMAdvLed ---

namespace {
constexpr int CaptionSpacing = 4;
}

TDBAMAdvLed::TDBAMAdvLed(QWidget *parent)
    : TAMAdvLed(parent)
    , m_link(std::make_unique<TFieldDataLink>())
{
    m_link->setControl(this);
    m_link->OnDataChange = [this](TFieldDataLink *) { DataChange(); };
    m_link->OnActiveChange = [this](TFieldDataLink *) { DataChange(); };
    m_link->OnUpdateData = [this](TFieldDataLink *) { UpdateData(); };
}

TDBAMAdvLed::~TDBAMAdvLed()
{
    // The link's events call back into this control: silence them before the link goes.
    m_link->OnDataChange = nullptr;
    m_link->OnActiveChange = nullptr;
    m_link->OnUpdateData = nullptr;
}

TDataSource *TDBAMAdvLed::DataSource() const
{
    return m_link->DataSource();
}

void TDBAMAdvLed::setDataSource(TDataSource *value)
{
    m_link->setDataSource(value);
    DataChange();
}

QString TDBAMAdvLed::DataField() const
{
    return m_link->FieldName();
}

void TDBAMAdvLed::setDataField(const QString &value)
{
    m_link->setFieldName(value);
    DataChange();
}

bool TDBAMAdvLed::ReadOnly() const
{
    return m_link->ReadOnly();
}

void TDBAMAdvLed::setReadOnly(bool value)
{
    m_link->setReadOnly(value);
}

TField *TDBAMAdvLed::Field() const
{
    return m_link->Field();
}

void TDBAMAdvLed::setValueChecked(const QString &value)
{
    m_valueChecked = value;
    DataChange();
}

void TDBAMAdvLed::setValueUnchecked(const QString &value)
{
    m_valueUnchecked = value;
    DataChange();
}

void TDBAMAdvLed::setCaption(const QString &value)
{
    if (m_caption == value)
        return;
    m_caption = value;
    updateGeometry();
    update();
}

bool TDBAMAdvLed::ValueMatch(const QString &values, const QString &text)
{
    const QStringList list = values.split(QLatin1Char(';'));
    return std::any_of(list.begin(), list.end(),
                       [&](const QString &v) { return v.compare(text, Qt::CaseInsensitive) == 0; });
}

TCheckBoxState TDBAMAdvLed::GetFieldState() const
{
    const TField *field = Field();
    if (!field)
        return cbUnchecked;
    if (field->IsNull())
        return cbGrayed;
    if (field->DataType() == ftBoolean)
        return field->AsBoolean() ? cbChecked : cbUnchecked;
    const QString text = field->Text();
    if (ValueMatch(m_valueChecked, text))
        return cbChecked;
    if (ValueMatch(m_valueUnchecked, text))
        return cbUnchecked;
    return cbGrayed;
}

void TDBAMAdvLed::SetState(TCheckBoxState Value)
{
    if (m_state != Value) {
        m_state = Value;
        setLedOn(Value == cbChecked);
        update();
    }
    // A grayed state leaves the hint as it was.
    if (Value == cbChecked && !m_hintChecked.isEmpty())
        setToolTip(m_hintChecked);
    else if (Value == cbUnchecked && !m_hintUnchecked.isEmpty())
        setToolTip(m_hintUnchecked);
}

void TDBAMAdvLed::DataChange()
{
    SetState(GetFieldState());
}

void TDBAMAdvLed::Click()
{
    if (m_link->Edit()) {
        switch (m_state) {
        case cbUnchecked: SetState(AllowGrayed() ? cbGrayed : cbChecked); break;
        case cbChecked: SetState(cbUnchecked); break;
        case cbGrayed: SetState(cbChecked); break;
        }
        m_link->Modified();
        m_link->UpdateRecord();
    }
    TAMAdvLed::Click();
}

void TDBAMAdvLed::UpdateData()
{
    TField *field = Field();
    if (!field)
        return;
    if (m_state == cbGrayed)
        field->Clear();
    else if (field->DataType() == ftBoolean)
        field->setAsBoolean(m_state == cbChecked);
    else
        field->setText((m_state == cbChecked ? m_valueChecked : m_valueUnchecked).section(QLatin1Char(';'), 0, 0));
}

QRect TDBAMAdvLed::LedRect() const
{
    QRect r(QPoint(0, 0), CurrentMask().size());
    r.moveTop((height() - r.height()) / 2);
    return r;
}

QSize TDBAMAdvLed::sizeHint() const
{
    const QSize led = TAMAdvLed::sizeHint();
    if (m_caption.isEmpty())
        return led;
    const QFontMetrics fm = fontMetrics();
    return QSize(led.width() + CaptionSpacing + fm.horizontalAdvance(m_caption), std::max(led.height(), fm.height()));
}

void TDBAMAdvLed::paintEvent(QPaintEvent *event)
{
    TAMAdvLed::paintEvent(event);
    if (m_caption.isEmpty())
        return;
    QPainter painter(this);
    painter.setPen(palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::WindowText));
    const QRect text = rect().adjusted(LedRect().right() + 1 + CaptionSpacing, 0, 0, 0);
    painter.drawText(text, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, m_caption);
}

} // namespace mattoni
