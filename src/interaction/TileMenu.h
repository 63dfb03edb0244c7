#pragma once

#include <QPoint>

#include "model/ShelfItem.h"

namespace mosswick {

// The menu of one tile, asked for by a right click on it (which has already selected the tile).
class TileMenu {
public:
    virtual ~TileMenu() = default;
    virtual void popUp(const ShelfItem& item, QPoint globalPosition) = 0;
};

// Until the shelf has menus: a right click selects the tile and opens nothing.
class NoTileMenu final : public TileMenu {
public:
    void popUp(const ShelfItem&, QPoint) override {}
};

}  // namespace mosswick
