#pragma once

#include <QPixmap>
#include <vector>

#include "model/ShelfItem.h"

namespace mosswick {

// What follows the pointer while items are dragged out of the shelf: the item's picture, or for
// several items a small stack of their pictures with their count, kSide points square and drawn
// at the screen's pixel ratio so a doubled screen shows it sharp.
class DragImage {
public:
    static constexpr double kSide = 64;

    DragImage() = delete;

    static QPixmap of(const std::vector<ShelfItem>& items, double pixelRatio);
};

}  // namespace mosswick
