#pragma once

#include <QRectF>

class QPainter;

namespace mosswick {

struct ShelfItem;

// The picture of one item, the same on its tile and under the pointer while it is dragged out:
// the icon theme's icon for its type, else a glyph of its kind.
class ItemPicture {
public:
    ItemPicture() = delete;

    // Fits the picture into `box`, sharp at the painter's device pixel ratio `pixelRatio`.
    static void paint(QPainter& painter, const QRectF& box, const ShelfItem& item, double pixelRatio);
};

}  // namespace mosswick
