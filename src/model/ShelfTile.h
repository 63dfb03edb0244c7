#pragma once

#include <vector>

#include "model/ShelfItem.h"

namespace mosswick {

// What the shelf view lays out: one item, or a stack of items that share a batch id. Never empty.
struct ShelfTile {
    std::vector<ShelfItem> items;

    bool isStack() const { return items.size() > 1; }
    const ShelfItem& first() const { return items.front(); }
};

}  // namespace mosswick
