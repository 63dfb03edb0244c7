#pragma once

#include <QRectF>

class QPainter;

namespace mosswick {

struct ShelfColors;

// The shelf's material: the rounded body of the panel and the look of its toolbar buttons.
// Where a compositor shows what lies behind the window the body is slightly see-through; where
// none runs it is painted solid, since the window system would turn the see-through parts black.
class GlassEffects {
public:
    GlassEffects() = delete;

    static void paintPanelBackground(QPainter& painter, const QRectF& rect, double cornerRadius,
                                     const ShelfColors& colors, bool translucent);
    static void paintButton(QPainter& painter, const QRectF& rect, const ShelfColors& colors, bool hovered,
                            bool pressed);
};

}  // namespace mosswick
