#include "interaction/ShelfKeys.h"

#include <algorithm>

#include "interaction/TileDescription.h"

namespace mosswick {

ShelfKeys::Command ShelfKeys::command(int key, Qt::KeyboardModifiers modifiers) {
    // The keypad's flag says where a key sits, not what it means.
    const Qt::KeyboardModifiers held = modifiers & ~Qt::KeypadModifier;
    const bool shift = held == Qt::ShiftModifier;
    const bool ctrl = held == Qt::ControlModifier;
    const bool plain = held == Qt::NoModifier;
    switch (key) {
        case Qt::Key_Up:
            return plain ? Command::moveUp : shift ? Command::extendUp : Command::none;
        case Qt::Key_Down:
            return plain ? Command::moveDown : shift ? Command::extendDown : Command::none;
        case Qt::Key_A:
            return ctrl ? Command::selectAll : Command::none;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            return plain ? Command::open : Command::none;
        case Qt::Key_Delete:
        case Qt::Key_Backspace:
            return plain ? Command::remove : Command::none;
        case Qt::Key_Z:
            return ctrl ? Command::restoreLastRemoved : Command::none;
        case Qt::Key_C:
            return ctrl ? Command::copy : Command::none;
        case Qt::Key_Menu:
            return plain ? Command::showMenu : Command::none;
        case Qt::Key_F10:
            return shift ? Command::showMenu : Command::none;
        default:
            return Command::none;
    }
}

std::optional<ShelfKeys::Cursor> ShelfKeys::step(int tileCount, std::optional<Cursor> from, int delta,
                                                 bool extend) {
    if (tileCount <= 0) return std::nullopt;
    if (!from || from->current >= tileCount || from->anchor >= tileCount) {
        const int row = delta > 0 ? 0 : tileCount - 1;
        return Cursor{row, row};
    }
    const int row = std::clamp(from->current + delta, 0, tileCount - 1);
    return Cursor{row, extend ? from->anchor : row};
}

std::set<QUuid> ShelfKeys::selection(const std::vector<ShelfTile>& tiles, Cursor cursor) {
    std::set<QUuid> ids;
    const int last = static_cast<int>(tiles.size()) - 1;
    const int from = std::clamp(std::min(cursor.current, cursor.anchor), 0, std::max(last, 0));
    const int to = std::min(std::max(cursor.current, cursor.anchor), last);
    for (int row = from; row <= to; ++row) {
        for (const ShelfItem& item : tiles[static_cast<size_t>(row)].items) ids.insert(item.id);
    }
    return ids;
}

std::set<QUuid> ShelfKeys::all(const std::vector<ShelfTile>& tiles) {
    return selection(tiles, {static_cast<int>(tiles.size()) - 1, 0});
}

std::optional<int> ShelfKeys::firstSelectedRow(const std::vector<ShelfTile>& tiles,
                                               const std::set<QUuid>& selection) {
    for (size_t row = 0; row < tiles.size(); ++row) {
        if (TileDescription::isSelected(tiles[row], selection)) return static_cast<int>(row);
    }
    return std::nullopt;
}

std::optional<int> ShelfKeys::rowAfterRemovingSelection(const std::vector<ShelfTile>& tiles,
                                                        const std::set<QUuid>& selection, int current) {
    const int count = static_cast<int>(tiles.size());
    auto stays = [&](int row) {
        return !TileDescription::isSelected(tiles[static_cast<size_t>(row)], selection);
    };
    for (int row = current + 1; row < count; ++row)
        if (stays(row)) return row;
    for (int row = std::min(current, count) - 1; row >= 0; --row)
        if (stays(row)) return row;
    return std::nullopt;
}

}  // namespace mosswick
