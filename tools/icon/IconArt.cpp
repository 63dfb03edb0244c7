// Draws Mosswick's application icon for the hicolor theme: the scalable SVG and the fixed sizes,
// from one set of numbers, so every size shows the same mark as the tray.
//
// The mark, in an 18x18 box: a 16x16 square at (1,1) with corners of radius 3.5, and the initial
// "M" cut out of it as a block letter inside (5,4)-(13,14) (even-odd fill).
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>
#include <QSaveFile>
#include <cstdio>

namespace {

constexpr double kBox = 18;
constexpr double kRadius = 3.5;
const QRectF kSquare(1, 1, 16, 16);
// The letter's outline, clockwise from its lower left foot.
const QPolygonF kLetter({{5, 14},
                         {5, 4},
                         {7, 4},
                         {9, 7.5},
                         {11, 4},
                         {13, 4},
                         {13, 14},
                         {11, 14},
                         {11, 8},
                         {9, 11.5},
                         {7, 8},
                         {7, 14}});
const QColor kMoss(0x3f, 0x7d, 0x4a);

QPainterPath mark() {
    QPainterPath path;
    path.setFillRule(Qt::OddEvenFill);
    path.addRoundedRect(kSquare, kRadius, kRadius);
    path.addPolygon(kLetter);
    path.closeSubpath();
    return path;
}

QString svg() {
    const auto n = [](double v) { return QString::number(v, 'g', 6); };
    const double x0 = kSquare.left(), y0 = kSquare.top(), x1 = kSquare.right(), y1 = kSquare.bottom(),
                 r = kRadius;
    QString square =
        QStringLiteral(
            "M%1 %2H%3A%4 %4 0 0 1 %5 %6V%7A%4 %4 0 0 1 %3 %8H%1A%4 %4 0 0 1 %9 %7V%6A%4 %4 0 0 1 %1 %2Z")
            .arg(n(x0 + r), n(y0), n(x1 - r), n(r), n(x1), n(y0 + r), n(y1 - r), n(y1), n(x0));
    QString letter = QStringLiteral("M");
    for (int i = 0; i < kLetter.size(); ++i)
        letter +=
            (i ? QStringLiteral("L") : QString()) + n(kLetter[i].x()) + QLatin1Char(' ') + n(kLetter[i].y());
    letter += QLatin1Char('Z');
    return QStringLiteral(
               "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%1\" height=\"%1\" viewBox=\"0 0 %1 %1\">\n"
               "  <path fill=\"%2\" fill-rule=\"evenodd\" d=\"%3%4\"/>\n"
               "</svg>\n")
        .arg(n(kBox), kMoss.name(), square, letter);
}

bool write(const QString& file, const QByteArray& bytes) {
    QSaveFile out(file);
    return out.open(QIODevice::WriteOnly) && out.write(bytes) == bytes.size() && out.commit();
}

}  // namespace

// mosswick-icon-art FOLDER: writes FOLDER/scalable.svg and FOLDER/<size>.png.
int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: mosswick-icon-art FOLDER\n");
        return 2;
    }
    const QString folder = QString::fromLocal8Bit(argv[1]);
    bool ok = write(folder + QStringLiteral("/scalable.svg"), svg().toUtf8());
    for (const int size : {16, 22, 24, 32, 48, 64, 128, 256, 512}) {
        QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(size / kBox, size / kBox);
        painter.fillPath(mark(), kMoss);
        painter.end();
        ok = image.save(folder + QStringLiteral("/%1.png").arg(size)) && ok;
    }
    return ok ? 0 : 1;
}
