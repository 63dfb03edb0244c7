#pragma once

namespace mosswick {

// Gives the shelf's painted parts the roles a screen reader expects: each tile an entry of a list
// that can be selected, the list itself, the count a text. Names come from the widgets. Once per
// process; later calls do nothing. Called by each such widget before it is named: Qt keeps the
// first interface it makes for an object.
struct ShelfAccessibility {
    static constexpr const char* kTileListName = "mosswick-tile-list";

    static void install();
};

}  // namespace mosswick
