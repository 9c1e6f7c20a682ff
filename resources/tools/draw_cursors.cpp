// Draws the library's cursors into resources/cursors/*.png. Each picture carries its hot spot
// in the text keys "HotSpotX" and "HotSpotY", which the code that installs the cursor reads.
//
//   mattoni_draw_cursors <resources folder>
#include <QCoreApplication>
#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>

#include <cstdio>

namespace {

// The sort cursor: the arrow pointer with a small "A over Z" column and a double arrow beside
// it, the way a sort is shown on buttons. The arrow's tip is the hot spot.
QImage SortCursor()
{
    QImage image(32, 32, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);

    QPainterPath arrow;
    arrow.moveTo(1, 1);
    arrow.lineTo(1, 17);
    arrow.lineTo(5, 13);
    arrow.lineTo(8, 20);
    arrow.lineTo(10.5, 19);
    arrow.lineTo(7.5, 12);
    arrow.lineTo(13, 12);
    arrow.closeSubpath();
    p.setPen(QPen(Qt::black, 1));
    p.setBrush(Qt::white);
    p.drawPath(arrow);

    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(8);
    font.setBold(true);
    p.setFont(font);
    const QRectF panel(14.5, 12.5, 16, 18);
    p.setPen(QPen(Qt::black, 1));
    p.setBrush(QColor(255, 255, 225));
    p.drawRect(panel);
    p.setPen(Qt::black);
    p.drawText(QRectF(15, 12, 8, 9), Qt::AlignCenter, QStringLiteral("A"));
    p.drawText(QRectF(15, 21, 8, 9), Qt::AlignCenter, QStringLiteral("Z"));

    p.setPen(QPen(QColor(0, 0, 160), 1.2));
    p.drawLine(QPointF(26.5, 15), QPointF(26.5, 28));
    p.setBrush(QColor(0, 0, 160));
    QPainterPath head;
    head.moveTo(24, 25);
    head.lineTo(29, 25);
    head.lineTo(26.5, 29);
    head.closeSubpath();
    p.drawPath(head);
    p.end();

    image.setText(QStringLiteral("HotSpotX"), QStringLiteral("1"));
    image.setText(QStringLiteral("HotSpotY"), QStringLiteral("1"));
    return image;
}

} // namespace

int main(int argc, char **argv)
{
    QGuiApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: mattoni_draw_cursors <resources folder>\n");
        return 2;
    }
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    if (!folder.mkpath(QStringLiteral("cursors")) ||
        !SortCursor().save(folder.filePath(QStringLiteral("cursors/CRSORT.png")), "PNG")) {
        std::fprintf(stderr, "mattoni_draw_cursors: cannot write into %s\n", argv[1]);
        return 1;
    }
    return 0;
}
