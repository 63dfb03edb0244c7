#include "interaction/GlassEffects.h"

#include <QPainter>
#include <QPainterPath>

#include "interaction/ShelfColors.h"

namespace mosswick {

void GlassEffects::paintPanelBackground(QPainter& painter, const QRectF& rect, double cornerRadius,
                                        const ShelfColors& colors, bool translucent) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF body = rect.adjusted(0.5, 0.5, -0.5, -0.5);
    QPainterPath shape;
    shape.addRoundedRect(body, cornerRadius - 0.5, cornerRadius - 0.5);

    QColor top = colors.body.lighter(colors.isDark ? 112 : 102);
    QColor bottom = colors.body.darker(colors.isDark ? 104 : 103);
    if (translucent) {
        top.setAlphaF(static_cast<float>(ShelfColors::kTranslucentBodyAlpha));
        bottom.setAlphaF(static_cast<float>(ShelfColors::kTranslucentBodyAlpha));
    }
    QLinearGradient fill(body.topLeft(), body.bottomLeft());
    fill.setColorAt(0, top);
    fill.setColorAt(1, bottom);
    painter.fillPath(shape, fill);

    // A hairline edge, and a brighter line just inside the top, as light catching a pane of glass.
    painter.setPen(QPen(colors.border, 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(shape);
    QPainterPath inner;
    inner.addRoundedRect(body.adjusted(1, 1, -1, -1), cornerRadius - 1.5, cornerRadius - 1.5);
    QLinearGradient sheen(body.topLeft(), QPointF(body.left(), body.top() + cornerRadius * 2));
    sheen.setColorAt(0, colors.sheen);
    QColor fade = colors.sheen;
    fade.setAlpha(0);
    sheen.setColorAt(1, fade);
    painter.setPen(QPen(QBrush(sheen), 1));
    painter.drawPath(inner);
    painter.restore();
}

void GlassEffects::paintButton(QPainter& painter, const QRectF& rect, const ShelfColors& colors, bool hovered,
                               bool pressed) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF face = rect.adjusted(0.5, 0.5, -0.5, -0.5);
    const double radius = face.height() / 2;
    painter.setPen(QPen(colors.buttonEdge, 1));
    painter.setBrush(pressed ? colors.buttonPressed : hovered ? colors.buttonHover : colors.buttonFill);
    painter.drawRoundedRect(face, radius, radius);
    painter.restore();
}

}  // namespace mosswick
