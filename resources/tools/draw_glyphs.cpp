// Draws the 16 x 16 glyphs of the library's buttons (the message dialog's button kinds, the web
// and mail buttons) into PNG files: resources/glyphs/*.png are this program's output.
//   mattoni_draw_glyphs <folder>
#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>

#include <cstdio>
#include <functional>

namespace {

const QColor Green(0, 140, 40);
const QColor Red(200, 30, 30);
const QColor Blue(30, 90, 180);

QPen pen(const QColor &color, qreal width)
{
    return QPen(color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
}

void check(QPainter &p)
{
    p.setPen(pen(Green, 2.6));
    p.drawPolyline(QPolygonF({{2.5, 8.5}, {6.5, 12.5}, {13.5, 3.5}}));
}

void cross(QPainter &p, const QColor &color, qreal width)
{
    p.setPen(pen(color, width));
    p.drawLine(QPointF(4, 4), QPointF(12, 12));
    p.drawLine(QPointF(12, 4), QPointF(4, 12));
}

void noSign(QPainter &p)
{
    p.setPen(pen(Red, 2.2));
    p.drawEllipse(QRectF(2.5, 2.5, 11, 11));
    p.drawLine(QPointF(4.6, 11.4), QPointF(11.4, 4.6));
}

void abortSign(QPainter &p)
{
    p.setPen(Qt::NoPen);
    p.setBrush(Red);
    p.drawEllipse(QRectF(1.5, 1.5, 13, 13));
    cross(p, Qt::white, 2.0);
}

// A circular arrow, open at the top right, its head pointing clockwise.
void retry(QPainter &p)
{
    p.setPen(pen(Green, 2.2));
    p.setBrush(Qt::NoBrush);
    p.drawArc(QRectF(3, 3, 10, 10), 60 * 16, 280 * 16);
    p.setPen(Qt::NoPen);
    p.setBrush(Green);
    p.drawPolygon(QPolygonF({{9.0, 0.8}, {13.8, 4.2}, {8.6, 6.6}}));
}

// An arrow jumping over a bar: going past something.
void ignore(QPainter &p)
{
    p.setPen(pen(QColor(110, 110, 110), 2.0));
    p.drawLine(QPointF(8, 9), QPointF(8, 14));
    p.setPen(pen(Blue, 2.0));
    QPainterPath arc;
    arc.moveTo(2, 11);
    arc.cubicTo(3, 3, 11, 3, 12.5, 9);
    p.setBrush(Qt::NoBrush);
    p.drawPath(arc);
    p.setPen(Qt::NoPen);
    p.setBrush(Blue);
    p.drawPolygon(QPolygonF({{15.0, 7.0}, {13.2, 12.6}, {9.6, 8.8}}));
}

void globe(QPainter &p)
{
    const QRectF r(1.5, 1.5, 13, 13);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(120, 180, 240));
    p.drawEllipse(r);
    p.setPen(pen(Blue, 1.0));
    p.setBrush(Qt::NoBrush);
    p.drawEllipse(r);
    p.drawEllipse(QRectF(5, 1.5, 6, 13));
    p.drawLine(QPointF(8, 1.5), QPointF(8, 14.5));
    p.drawLine(QPointF(1.5, 8), QPointF(14.5, 8));
    p.drawLine(QPointF(3, 4.8), QPointF(13, 4.8));
    p.drawLine(QPointF(3, 11.2), QPointF(13, 11.2));
}

void envelope(QPainter &p)
{
    const QRectF r(1.5, 3.5, 13, 9);
    p.setPen(pen(QColor(90, 70, 30), 1.0));
    p.setBrush(QColor(250, 235, 190));
    p.drawRect(r);
    p.setBrush(Qt::NoBrush);
    p.drawPolyline(QPolygonF({{1.5, 3.5}, {8, 9}, {14.5, 3.5}}));
}

} // namespace

int main(int argc, char **argv)
{
    QGuiApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: mattoni_draw_glyphs <folder>\n");
        return 2;
    }
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    const std::pair<const char *, std::function<void(QPainter &)>> glyphs[] = {
        {"ok", check},
        {"cancel", [](QPainter &p) { cross(p, Red, 2.6); }},
        {"yes", check},
        {"no", noSign},
        {"abort", abortSign},
        {"retry", retry},
        {"ignore", ignore},
        {"web", globe},
        {"mail", envelope},
    };
    for (const auto &[name, draw] : glyphs) {
        QImage image(16, 16, QImage::Format_ARGB32);
        image.fill(Qt::transparent);
        QPainter p(&image);
        p.setRenderHint(QPainter::Antialiasing);
        draw(p);
        p.end();
        const QString file = folder.filePath(QString::fromLatin1(name) + QStringLiteral(".png"));
        if (!image.save(file)) {
            std::fprintf(stderr, "mattoni_draw_glyphs: cannot write %s\n", qPrintable(file));
            return 1;
        }
    }
    return 0;
}
