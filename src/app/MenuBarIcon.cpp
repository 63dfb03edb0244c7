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
    explicit OutlineEngine(QColor ink) : ink_(ink) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        const qreal side = qMin(rect.width(), rect.height());
        painter->translate(rect.x() + (rect.width() - side) / 2, rect.y() + (rect.height() - side) / 2);
        painter->scale(side / kBox, side / kBox);
        QColor ink = ink_;
        if (mode == QIcon::Disabled) ink.setAlphaF(0.4);
        painter->fillPath(outline(), ink);
        painter->restore();
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap made(size);
        made.fill(Qt::transparent);
        QPainter painter(&made);
        paint(&painter, QRect(QPoint(0, 0), size), mode, state);
        return made;
    }
    QIconEngine* clone() const override { return new OutlineEngine(ink_); }

private:
    QColor ink_;
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

QIcon icon(const QColor& ink) { return QIcon(new OutlineEngine(ink)); }

}  // namespace mosswick::MenuBarIcon
