// Draws the 32 x 32 icons under which Qt Designer lists the library's widgets:
// resources/designer/*.png are this program's output.
//   mattoni_draw_designer_icons <folder>
#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>

#include <cstdio>
#include <functional>

namespace {

const QColor Ink(60, 60, 70);
const QColor Frame(120, 125, 135);
const QColor Paper(255, 255, 255);
const QColor Title(215, 222, 232);
const QColor Blue(30, 90, 180);
const QColor Red(200, 30, 30);
const QColor Cream(255, 251, 240);
const QColor SkyBlue(166, 202, 240);

QPen pen(const QColor &color, qreal width = 1.0)
{
    return QPen(color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
}

void box(QPainter &p, const QRectF &r, const QColor &fill = Paper, const QColor &border = Frame)
{
    p.setPen(pen(border));
    p.setBrush(fill);
    p.drawRect(r);
}

void text(QPainter &p, const QRectF &r, const QString &s, int pixels, const QColor &color = Ink,
          Qt::Alignment align = Qt::AlignCenter, bool bold = false)
{
    QFont f(QStringLiteral("DejaVu Sans"));
    f.setPixelSize(pixels);
    f.setBold(bold);
    p.setFont(f);
    p.setPen(color);
    p.drawText(r, int(align), s);
}

// The mark of a data-aware widget: a small database cylinder in the bottom right corner.
void database(QPainter &p)
{
    const QColor body(245, 190, 60);
    const QColor edge(150, 100, 10);
    const QRectF top(20.5, 19.5, 10, 4);
    p.setPen(pen(edge));
    p.setBrush(body);
    QPainterPath side;
    side.moveTo(20.5, 21.5);
    side.lineTo(20.5, 29.5);
    side.arcTo(QRectF(20.5, 27.5, 10, 4), 180, 180);
    side.lineTo(30.5, 21.5);
    p.drawPath(side);
    p.setBrush(body.lighter(115));
    p.drawEllipse(top);
    p.setBrush(Qt::NoBrush);
    p.drawArc(QRectF(20.5, 23.5, 10, 4), 180 * 16, 180 * 16);
}

void calendar(QPainter &p)
{
    box(p, QRectF(2.5, 3.5, 27, 26));
    p.setPen(Qt::NoPen);
    p.setBrush(Blue);
    p.drawRect(QRectF(3, 4, 26, 6));
    p.setPen(pen(QColor(200, 205, 215)));
    for (int i = 1; i < 4; ++i)
        p.drawLine(QPointF(3, 10 + i * 5 - 0.5), QPointF(29, 10 + i * 5 - 0.5));
    for (int i = 1; i < 5; ++i)
        p.drawLine(QPointF(3 + i * 5.2, 10), QPointF(3 + i * 5.2, 29));
    // Weekend column in red, the chosen day highlighted.
    p.setPen(Qt::NoPen);
    p.setBrush(Red);
    for (int row = 0; row < 4; ++row)
        p.drawRect(QRectF(25, 11.5 + row * 5, 2.5, 2.5));
    p.setBrush(SkyBlue.darker(120));
    p.drawRect(QRectF(13.5, 15.5, 5, 4.5));
}

void lineEdit(QPainter &p, const QString &content)
{
    box(p, QRectF(1.5, 8.5, 29, 15), Cream);
    text(p, QRectF(4, 9, 24, 14), content, 10, Ink, Qt::AlignLeft | Qt::AlignVCenter);
    p.setPen(pen(Blue, 1.2));
    p.drawLine(QPointF(26.5, 11), QPointF(26.5, 21));
}

// Three numbers side by side; the student's own one stands out.
void matricola(QPainter &p)
{
    box(p, QRectF(0.5, 9.5, 31, 13));
    p.setPen(pen(Frame));
    p.drawLine(QPointF(7.5, 10), QPointF(7.5, 22));
    p.drawLine(QPointF(17.5, 10), QPointF(17.5, 22));
    p.setPen(pen(QColor(150, 155, 165), 2.0));
    p.drawLine(QPointF(2.5, 16), QPointF(5.5, 16));
    p.drawLine(QPointF(10, 16), QPointF(15, 16));
    text(p, QRectF(18, 10, 14, 12), QStringLiteral("42"), 9, Blue, Qt::AlignCenter, true);
}

void annoAccademico(QPainter &p)
{
    box(p, QRectF(0.5, 9.5, 31, 13));
    text(p, QRectF(1, 10, 13, 12), QStringLiteral("13"), 9, Blue, Qt::AlignCenter, true);
    text(p, QRectF(13, 10, 6, 12), QStringLiteral("/"), 9);
    text(p, QRectF(18, 10, 13, 12), QStringLiteral("14"), 9, Frame);
}

void led(QPainter &p, const QPointF &centre, qreal radius, const QColor &colour)
{
    QRadialGradient g(centre - QPointF(radius / 3, radius / 3), radius * 1.4);
    g.setColorAt(0, colour.lighter(180));
    g.setColorAt(0.5, colour);
    g.setColorAt(1, colour.darker(170));
    p.setPen(pen(QColor(90, 90, 90), 1.2));
    p.setBrush(g);
    p.drawEllipse(centre, radius, radius);
}

void stateTile(QPainter &p, const QRectF &r)
{
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(0xef, 0x6c, 0x00));
    p.drawRoundedRect(r, 3, 3);
    text(p, r, QStringLiteral("R"), int(r.height()) - 5, Qt::white, Qt::AlignCenter, true);
}

void stateButton(QPainter &p)
{
    p.setPen(pen(Frame));
    p.setBrush(QColor(236, 238, 242));
    p.drawRoundedRect(QRectF(1.5, 2.5, 24, 22), 3, 3);
    stateTile(p, QRectF(5, 6, 17, 15));
    database(p);
}

void imageState(QPainter &p)
{
    box(p, QRectF(1.5, 2.5, 24, 22), QColor(236, 238, 242), Frame);
    p.setPen(pen(Frame, 1.0));
    p.setBrush(Qt::NoBrush);
    p.drawRect(QRectF(4.5, 5.5, 18, 16));
    stateTile(p, QRectF(6, 7, 15, 13));
    database(p);
}

void grid(QPainter &p, const std::function<void(QPainter &)> &title)
{
    box(p, QRectF(1.5, 2.5, 29, 26));
    p.setPen(Qt::NoPen);
    p.setBrush(Title);
    p.drawRect(QRectF(2, 3, 28, 6));
    p.setBrush(Cream);
    p.drawRect(QRectF(2, 14.5, 28, 4.5));
    p.drawRect(QRectF(2, 24, 28, 4.5));
    p.setPen(pen(QColor(200, 205, 215)));
    for (int i = 0; i < 4; ++i)
        p.drawLine(QPointF(2, 9.5 + i * 4.75), QPointF(30, 9.5 + i * 4.75));
    p.drawLine(QPointF(11.5, 3), QPointF(11.5, 28));
    p.drawLine(QPointF(21.5, 3), QPointF(21.5, 28));
    title(p);
}

// A sort triangle in the first title.
void gridExt(QPainter &p)
{
    grid(p, [](QPainter &q) {
        q.setPen(Qt::NoPen);
        q.setBrush(Blue);
        q.drawPolygon(QPolygonF({{4.0, 8.0}, {10.0, 8.0}, {7.0, 4.0}}));
    });
    database(p);
}

// Two titles chosen for the server's ordering, in the highlight colours.
void clientGrid(QPainter &p)
{
    grid(p, [](QPainter &q) {
        q.setPen(Qt::NoPen);
        q.setBrush(Blue);
        q.drawRect(QRectF(2, 3, 9.5, 25.5));
        q.drawRect(QRectF(22, 3, 8, 25.5));
        q.setPen(pen(Qt::white, 1.4));
        q.drawLine(QPointF(6.5, 5), QPointF(6.5, 26));
        q.drawLine(QPointF(26, 5), QPointF(26, 26));
    });
    database(p);
}

void treeView(QPainter &p)
{
    box(p, QRectF(1.5, 2.5, 29, 27));
    p.setPen(pen(Frame));
    p.drawLine(QPointF(7.5, 10), QPointF(7.5, 25.5));
    p.drawLine(QPointF(7.5, 17.5), QPointF(12, 17.5));
    p.drawLine(QPointF(7.5, 25.5), QPointF(12, 25.5));
    const auto folder = [&p](qreal x, qreal y, const QColor &c) {
        p.setPen(pen(c.darker(150)));
        p.setBrush(c);
        p.drawRect(QRectF(x, y, 7, 5));
    };
    folder(4.5, 5.5, QColor(245, 200, 80));
    folder(12.5, 15.5, QColor(130, 180, 235));
    folder(12.5, 23.5, QColor(130, 180, 235));
    p.setPen(pen(Ink, 1.2));
    p.drawLine(QPointF(14, 8), QPointF(27, 8));
    p.drawLine(QPointF(22, 18), QPointF(28, 18));
    p.drawLine(QPointF(22, 26), QPointF(28, 26));
    database(p);
}

void globe(QPainter &p)
{
    const QRectF r(3.5, 3.5, 25, 25);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(120, 180, 240));
    p.drawEllipse(r);
    p.setPen(pen(Blue, 1.4));
    p.setBrush(Qt::NoBrush);
    p.drawEllipse(r);
    p.drawEllipse(QRectF(10, 3.5, 12, 25));
    p.drawLine(QPointF(16, 3.5), QPointF(16, 28.5));
    p.drawLine(QPointF(3.5, 16), QPointF(28.5, 16));
    p.drawLine(QPointF(6, 9.5), QPointF(26, 9.5));
    p.drawLine(QPointF(6, 22.5), QPointF(26, 22.5));
}

void envelope(QPainter &p)
{
    const QRectF r(2.5, 7.5, 27, 18);
    p.setPen(pen(QColor(90, 70, 30), 1.4));
    p.setBrush(QColor(250, 235, 190));
    p.drawRect(r);
    p.setBrush(Qt::NoBrush);
    p.drawPolyline(QPolygonF({{2.5, 7.5}, {16, 18}, {29.5, 7.5}}));
}

// A push button with the green check of the OK kind.
void bitButton(QPainter &p)
{
    p.setPen(pen(Frame));
    p.setBrush(QColor(236, 238, 242));
    p.drawRoundedRect(QRectF(1.5, 7.5, 29, 17), 3, 3);
    p.setPen(pen(QColor(0, 140, 40), 2.2));
    p.drawPolyline(QPolygonF({{5.5, 16}, {8.5, 19}, {13.5, 12}}));
    text(p, QRectF(15, 8, 15, 16), QStringLiteral("OK"), 8);
}

} // namespace

int main(int argc, char **argv)
{
    QGuiApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: mattoni_draw_designer_icons <folder>\n");
        return 2;
    }
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    const std::pair<const char *, std::function<void(QPainter &)>> icons[] = {
        {"TinCalendar", calendar},
        {"TEditEnh", [](QPainter &p) { lineEdit(p, QStringLiteral("1,5")); }},
        {"TDBEditEnh", [](QPainter &p) {
             lineEdit(p, QStringLiteral("ab"));
             database(p);
         }},
        {"TMatricola", matricola},
        {"TAnnoAccademico", annoAccademico},
        {"TAMAdvLed", [](QPainter &p) { led(p, QPointF(16, 16), 11, QColor(0, 230, 0)); }},
        {"TDBAMAdvLed", [](QPainter &p) {
             led(p, QPointF(13, 13), 10, QColor(0, 230, 0));
             database(p);
         }},
        {"TDBStateButton", stateButton},
        {"TDBImageState", imageState},
        {"TDBGridExt", gridExt},
        {"TClientDBGrid", clientGrid},
        {"TDBReadTreeView", treeView},
        {"TURLSpeedButton", globe},
        {"TMAILSpeedButton", envelope},
        {"TBitBtn", bitButton},
    };
    for (const auto &[name, draw] : icons) {
        QImage image(32, 32, QImage::Format_ARGB32);
        image.fill(Qt::transparent);
        QPainter p(&image);
        p.setRenderHint(QPainter::Antialiasing);
        p.setRenderHint(QPainter::TextAntialiasing);
        draw(p);
        p.end();
        const QString file = folder.filePath(QString::fromLatin1(name) + QStringLiteral(".png"));
        if (!image.save(file)) {
            std::fprintf(stderr, "mattoni_draw_designer_icons: cannot write %s\n", qPrintable(file));
            return 1;
        }
    }
    return 0;
}
