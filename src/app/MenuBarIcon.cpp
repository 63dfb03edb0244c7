#include "app/MenuBarIcon.h"

#include <QIconEngine>
#include <QPainter>
#include <QPixmap>

namespace mosswick::MenuBarIcon {
namespace {

constexpr qreal kBox = 18;

// Draws the outline at whatever size and scale the tray wants, instead of scaling one bitmap.
class OutlineEngine final : public QIconEngine {
public:
    explicit OutlineEngine(Colors colors) : colors_(std::move(colors)) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        const qreal side = qMin(rect.width(), rect.height());
        painter->translate(rect.x() + (rect.width() - side) / 2, rect.y() + (rect.height() - side) / 2);
        painter->scale(side / kBox, side / kBox);
        const qreal alpha = mode == QIcon::Disabled ? 0.4 : 1.0;
        const QPainterPath glyph = outline();
        if (colors_.rim) {
            // Stroked under the fill, so half of it shows around the square and inside the letter.
            QColor rim = *colors_.rim;
            rim.setAlphaF(rim.alphaF() * alpha);
            painter->strokePath(glyph, QPen(rim, 2.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        }
        QColor ink = colors_.ink;
        ink.setAlphaF(ink.alphaF() * alpha);
        painter->fillPath(glyph, ink);
        painter->restore();
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap made(size);
        made.fill(Qt::transparent);
        QPainter painter(&made);
        paint(&painter, QRect(QPoint(0, 0), size), mode, state);
        return made;
    }
    QIconEngine* clone() const override { return new OutlineEngine(colors_); }

private:
    Colors colors_;
};

}  // namespace

QPainterPath outline() {
    QPainterPath path;
    path.setFillRule(Qt::OddEvenFill);
    path.addRoundedRect(QRectF(1, 1, 16, 16), 3.5, 3.5);
    // The initial as a block letter of straight strokes, inside (5, 4)–(13, 14).
    const QPolygonF letter{{5, 14},  {5, 4},     {7.5, 4},    {9, 8},    {10.5, 4},  {13, 4},
                           {13, 14}, {10.5, 14}, {10.5, 9.5}, {9, 12.5}, {7.5, 9.5}, {7.5, 14}};
    path.addPolygon(letter);
    path.closeSubpath();
    return path;
}

Colors colorsFor(std::optional<QColor> trayText, const QColor& text, const QColor& background) {
    if (trayText && trayText->isValid()) return {*trayText, std::nullopt};
    QColor rim = background;
    rim.setAlphaF(0.9);
    return {text, rim};
}

QIcon icon(const Colors& colors) { return QIcon(new OutlineEngine(colors)); }

}  // namespace mosswick::MenuBarIcon
