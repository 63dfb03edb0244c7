#pragma once

#include <QImage>
#include <QRectF>
#include <QUuid>
#include <functional>

#include "model/ShelfTile.h"

class QPainter;
class QWidget;

namespace mosswick {

// The picture of an item, wherever one is drawn (a tile, a drag image): its preview while
// previews are on and it has one, else its icon, else a glyph of its kind. Uses the shared
// thumbnail provider when there is one.
namespace ItemPicture {

// The size in points previews are asked for: enough for a tile and for a drag image.
constexpr double kPreviewPoints = 64;
constexpr double kDragImagePoints = 64;

// Centred in `box`, never larger than it.
void paint(QPainter& painter, const QRectF& box, const ShelfItem& item, double devicePixelRatio);

// Asks for the previews of the items a tile shows; a tile in view asks again as it paints, which
// puts its items first in line.
void request(const ShelfTile& tile);

// The item's picture in a square of 64 points at the given scale, transparent around it; for the
// drag image of an item dragged off the shelf.
QImage dragImage(const ShelfItem& item, double devicePixelRatio);

// Calls `changed` with an item's id whenever the picture of that item may have changed (an id
// that is null means every item's); the connection lasts as long as `receiver`.
void watch(QWidget* receiver, std::function<void(const QUuid&)> changed);

}  // namespace ItemPicture
}  // namespace mosswick
