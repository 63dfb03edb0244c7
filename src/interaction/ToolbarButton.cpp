#include "interaction/ToolbarButton.h"

#include <QPainter>

#include "interaction/GlassEffects.h"
#include "interaction/ShelfColors.h"
#include "interaction/ShelfLayout.h"

namespace mosswick {

namespace {
constexpr double kSymbolSide = 14;
}

ToolbarButton::ToolbarButton(Symbol symbol, const QString& help, QWidget* parent)
    : QAbstractButton(parent), symbol_(symbol) {
    setToolTip(help);
    setAccessibleName(help);
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setFixedSize(sizeHint());
}

QSize ToolbarButton::sizeHint() const {
    const int side = static_cast<int>(ShelfLayout::kToolbarButtonSize);
    return {side, side};
}

void ToolbarButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const ShelfColors colors = ShelfColors::from(palette());
    GlassEffects::paintButton(painter, rect(), colors, underMouse(), isDown());
    QRectF box(0, 0, kSymbolSide, kSymbolSide);
    box.moveCenter(QRectF(rect()).center());
    QColor ink = colors.text;
    ink.setAlphaF(0.82f);
    symbol_(painter, box, ink);
    if (hasFocus()) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(colors.accent, 2));
        painter.setBrush(Qt::NoBrush);
        const double radius = height() / 2.0 - 1;
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), radius, radius);
    }
}

}  // namespace mosswick
