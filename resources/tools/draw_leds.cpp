// Draws the LED bitmaps of TAMAdvLed into PNG files, with the Qt resource file that lists them:
// resources/leds/*.png and resources/leds.qrc are this program's output.
//   mattoni_draw_leds <resources folder>
//
// Every picture is a shading mask in shades of grey that the control tints with its colour:
// grey 128 becomes the colour itself, lighter greys its highlights up to white, darker greys its
// shadows down to black. Pixels that are not grey stay as drawn: the bezels of the raised and
// sunk pictures are a faintly blue grey for that. Shapes have a transparent background. The check pictures sit on an
// opaque magenta background, which the control makes transparent from their top-left pixel.
#include <QDir>
#include <QFile>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>
#include <QTransform>

#include <cmath>
#include <cstdio>
#include <functional>

namespace {

QColor grey(int level)
{
    return QColor(level, level, level);
}

// A neutral bezel tone: blue a few steps above red and green, so that it is not tinted.
QColor bezel(int level)
{
    return QColor(level, level, level + 6);
}

const QColor KeyColour(255, 0, 255);

enum class Style { Dome, Raised, Lowered, Flat };

struct Shape
{
    const char *base;
    QSize size;
    std::function<QPainterPath(const QRectF &)> path;
};

QPainterPath polygon(std::initializer_list<QPointF> points)
{
    QPainterPath path;
    path.addPolygon(QPolygonF(points));
    path.closeSubpath();
    return path;
}

QPainterPath ellipse(const QRectF &r)
{
    QPainterPath path;
    path.addEllipse(r);
    return path;
}

QPainterPath rectangle(const QRectF &r)
{
    QPainterPath path;
    path.addRoundedRect(r, 1.5, 1.5);
    return path;
}

// A crescent: the disc less a disc moved towards the open side.
QPainterPath moon(const QRectF &r, bool bulgeLeft)
{
    const qreal shift = r.width() * 0.45 * (bulgeLeft ? 1 : -1);
    QPainterPath disc = ellipse(r);
    QPainterPath bite = ellipse(r.translated(shift, 0).adjusted(0, -r.height() * 0.1, 0, r.height() * 0.1));
    return disc.subtracted(bite);
}

QPainterPath pentagon(const QRectF &r)
{
    QPolygonF points;
    const QPointF c = r.center() + QPointF(0, r.height() * 0.05);
    const qreal radius = std::min(r.width(), r.height()) / 2;
    for (int i = 0; i < 5; ++i) {
        const qreal angle = -M_PI / 2 + i * 2 * M_PI / 5;
        points << c + QPointF(std::cos(angle) * radius, std::sin(angle) * radius);
    }
    QPainterPath path;
    path.addPolygon(points);
    path.closeSubpath();
    return path;
}

const Shape shapes[] = {
    {"AMDMDLED", {16, 16}, [](const QRectF &r) {
         return polygon({{r.center().x(), r.top()}, {r.right(), r.center().y()},
                         {r.center().x(), r.bottom()}, {r.left(), r.center().y()}});
     }},
    {"AMLPSLEDHRZ", {24, 14}, ellipse},
    {"AMLPSLEDVRT", {14, 24}, ellipse},
    {"AMMONLEDLEFT", {16, 16}, [](const QRectF &r) { return moon(r, true); }},
    {"AMMONLEDRIGHT", {16, 16}, [](const QRectF &r) { return moon(r, false); }},
    {"AMPRLLEDBCK", {24, 14}, [](const QRectF &r) {
         const qreal s = r.width() * 0.25;
         return polygon({r.topLeft(), {r.right() - s, r.top()}, r.bottomRight(), {r.left() + s, r.bottom()}});
     }},
    {"AMPRLLEDFWT", {24, 14}, [](const QRectF &r) {
         const qreal s = r.width() * 0.25;
         return polygon({{r.left() + s, r.top()}, r.topRight(), {r.right() - s, r.bottom()}, r.bottomLeft()});
     }},
    {"AMPNTLED", {16, 16}, pentagon},
    {"AMRNDLED", {16, 16}, ellipse},
    {"AMRCTLEDHRZ", {24, 14}, rectangle},
    {"AMRCTLEDVRT", {14, 24}, rectangle},
    {"AMSQRLED", {16, 16}, rectangle},
    {"AMTRILEDDWN", {16, 16}, [](const QRectF &r) {
         return polygon({r.topLeft(), r.topRight(), {r.center().x(), r.bottom()}});
     }},
    {"AMTRILEDLEFT", {16, 16}, [](const QRectF &r) {
         return polygon({r.topRight(), r.bottomRight(), {r.left(), r.center().y()}});
     }},
    {"AMTRILEDRIGHT", {16, 16}, [](const QRectF &r) {
         return polygon({r.topLeft(), {r.right(), r.center().y()}, r.bottomLeft()});
     }},
    {"AMTRILEDUP", {16, 16}, [](const QRectF &r) {
         return polygon({{r.center().x(), r.top()}, r.bottomRight(), r.bottomLeft()});
     }},
};

// The lit body: a dome lit from the upper left.
void dome(QPainter &p, const QPainterPath &body)
{
    const QRectF r = body.boundingRect();
    QRadialGradient light(r.center(), std::max(r.width(), r.height()) * 0.75,
                          r.center() - QPointF(r.width() * 0.22, r.height() * 0.25));
    light.setColorAt(0.0, grey(250));
    light.setColorAt(0.3, grey(160));
    light.setColorAt(0.7, grey(120));
    light.setColorAt(1.0, grey(70));
    p.setPen(QPen(grey(55), 1));
    p.setBrush(light);
    p.drawPath(body);
}

// A bevel around the shape: light from the upper left when raised, from the lower right when
// sunk.
void bevel(QPainter &p, const QPainterPath &outline, bool raised)
{
    const QRectF r = outline.boundingRect();
    QLinearGradient edge(r.topLeft(), r.bottomRight());
    edge.setColorAt(0.0, raised ? bezel(249) : bezel(70));
    edge.setColorAt(1.0, raised ? bezel(70) : bezel(249));
    p.setPen(QPen(QBrush(edge), 2));
    p.setBrush(Qt::NoBrush);
    p.drawPath(outline);
}

QImage shapeImage(const Shape &shape, Style style)
{
    QImage image(shape.size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF outer = QRectF(QPointF(0, 0), QSizeF(shape.size)).adjusted(1, 1, -1, -1);
    switch (style) {
    case Style::Dome:
        dome(p, shape.path(outer.adjusted(0.5, 0.5, -0.5, -0.5)));
        break;
    case Style::Raised:
    case Style::Lowered:
        bevel(p, shape.path(outer), style == Style::Raised);
        dome(p, shape.path(outer.adjusted(2.5, 2.5, -2.5, -2.5)));
        break;
    case Style::Flat:
        p.setPen(QPen(grey(80), 1));
        p.setBrush(grey(128));
        p.drawPath(shape.path(outer.adjusted(0.5, 0.5, -0.5, -0.5)));
        break;
    }
    return image;
}

// The check pictures: a white box on the key colour with a check mark that takes the colour.
// The box keeps its greys: they are bezel tones.
QImage checkImage(Style style, bool mark)
{
    QImage image(15, 15, QImage::Format_RGB32);
    image.fill(KeyColour);
    QPainter p(&image);
    const QRect box(1, 1, 13, 13);
    p.fillRect(box, grey(255));
    switch (style) {
    case Style::Raised:
    case Style::Lowered: {
        const QColor outerDark = bezel(40), innerDark = bezel(110);
        const bool raised = style == Style::Raised;
        // Bottom and right edges in shadow when raised, top and left when sunk.
        const int outerY = raised ? box.bottom() : box.top(), innerY = raised ? box.bottom() - 1 : box.top() + 1;
        const int outerX = raised ? box.right() : box.left(), innerX = raised ? box.right() - 1 : box.left() + 1;
        p.fillRect(box.left(), outerY, box.width(), 1, outerDark);
        p.fillRect(outerX, box.top(), 1, box.height(), outerDark);
        p.fillRect(box.left() + 1, innerY, box.width() - 2, 1, innerDark);
        p.fillRect(innerX, box.top() + 1, 1, box.height() - 2, innerDark);
        break;
    }
    case Style::Dome:
    case Style::Flat:
        p.setPen(bezel(60));
        p.drawRect(box.adjusted(0, 0, -1, -1));
        break;
    }
    if (mark) {
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(QPen(grey(style == Style::Flat ? 128 : 110), 2.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        p.drawPolyline(QPolygonF({{4, 7.5}, {6.5, 10.5}, {11, 4.5}}));
    }
    return image;
}

bool save(const QImage &image, const QDir &folder, const QString &name, QStringList &names)
{
    const QString file = folder.filePath(name + QStringLiteral(".png"));
    if (!image.save(file, "PNG")) {
        std::fprintf(stderr, "mattoni_draw_leds: cannot write %s\n", qPrintable(file));
        return false;
    }
    names << name;
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: mattoni_draw_leds <resources folder>\n");
        return 2;
    }
    QDir root(QString::fromLocal8Bit(argv[1]));
    if (!root.mkpath(QStringLiteral("leds"))) {
        std::fprintf(stderr, "mattoni_draw_leds: cannot create %s/leds\n", argv[1]);
        return 1;
    }
    const QDir leds(root.filePath(QStringLiteral("leds")));
    QStringList names;
    bool ok = true;
    for (const Shape &shape : shapes) {
        const QString base = QString::fromLatin1(shape.base);
        ok = ok && save(shapeImage(shape, Style::Dome), leds, base, names);
        ok = ok && save(shapeImage(shape, Style::Raised), leds, base + QStringLiteral("3DUP"), names);
        ok = ok && save(shapeImage(shape, Style::Lowered), leds, base + QStringLiteral("3DDWN"), names);
        ok = ok && save(shapeImage(shape, Style::Flat), leds, base + QStringLiteral("FLAT"), names);
    }
    // The lit check sits in a sunk box, the unlit one in a raised box.
    ok = ok && save(checkImage(Style::Dome, true), leds, QStringLiteral("CHECKLED"), names);
    ok = ok && save(checkImage(Style::Raised, true), leds, QStringLiteral("CHECKLED3DUP"), names);
    ok = ok && save(checkImage(Style::Lowered, true), leds, QStringLiteral("CHECKLED3DDWN"), names);
    // Shipped under this name, without the K: no name the control forms reaches it.
    ok = ok && save(checkImage(Style::Flat, true), leds, QStringLiteral("CHECLEDFLAT"), names);
    if (!ok)
        return 1;

    QFile qrc(root.filePath(QStringLiteral("leds.qrc")));
    if (!qrc.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text)) {
        std::fprintf(stderr, "mattoni_draw_leds: cannot write %s\n", qPrintable(qrc.fileName()));
        return 1;
    }
    QByteArray text = "<!-- Written by mattoni_draw_leds (resources/tools/draw_leds.cpp). -->\n"
                      "<RCC>\n    <qresource prefix=\"/mattoni/leds\">\n";
    for (const QString &name : names)
        text += "        <file alias=\"" + name.toLatin1() + "\">leds/" + name.toLatin1() + ".png</file>\n";
    text += "    </qresource>\n</RCC>\n";
    qrc.write(text);
    return 0;
}
