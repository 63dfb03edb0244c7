#pragma once

#include <QUuid>
#include <Qt>
#include <optional>
#include <set>
#include <vector>

#include "model/ShelfTile.h"

namespace mosswick {

// What a key does on the focused shelf, decided without a display: the view asks, then acts.
class ShelfKeys {
public:
    enum class Command {
        none,
        moveUp,
        moveDown,
        extendUp,
        extendDown,
        selectAll,
        open,
        remove,
        restoreLastRemoved,
        copy,
        showMenu,
    };

    static Command command(int key, Qt::KeyboardModifiers modifiers);

    // The tile the keyboard stands on and the one a Shift-extended selection reaches back to, as
    // rows of the list.
    struct Cursor {
        int current = 0;
        int anchor = 0;
        bool operator==(const Cursor&) const = default;
    };

    // Where an arrow leaves the cursor: one row on, kept within the list; the first arrow on a
    // shelf without a cursor lands on the end it points away from. Nothing on an empty shelf.
    static std::optional<Cursor> step(int tileCount, std::optional<Cursor> from, int delta, bool extend);

    // The items of the rows from the anchor to the current tile, both included.
    static std::set<QUuid> selection(const std::vector<ShelfTile>& tiles, Cursor cursor);
    static std::set<QUuid> all(const std::vector<ShelfTile>& tiles);
    // The first row holding a selected item.
    static std::optional<int> firstSelectedRow(const std::vector<ShelfTile>& tiles,
                                               const std::set<QUuid>& selection);
    // Where the keyboard goes once the selected tiles are removed from under `current`: the first
    // tile left after it, else the last one left before it, so Delete pressed again goes on
    // removing down the list. Nothing when no tile is left.
    static std::optional<int> rowAfterRemovingSelection(const std::vector<ShelfTile>& tiles,
                                                        const std::set<QUuid>& selection, int current);
};

}  // namespace mosswick
