#pragma once

#include <QString>

namespace mosswick {

class ShelfStore;

// What the shelf's toolbar shows for the store as it stands: the count of items (not of tiles)
// and which of its two buttons are there.
struct ShelfToolbarState {
    QString countLabel;
    bool showsBringBack = false;
    bool showsClear = false;

    static ShelfToolbarState of(const ShelfStore& store);
    static ShelfToolbarState of(qsizetype itemCount, bool hasRemovals);
    // Empty for an empty shelf, "1 item", else the count followed by " items".
    static QString countLabelFor(qsizetype itemCount);

    bool operator==(const ShelfToolbarState&) const = default;
};

}  // namespace mosswick
