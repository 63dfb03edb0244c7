// What the keys do on a focused shelf: which command a key asks for, and where arrows leave the
// selection.
#include <gtest/gtest.h>

#include "ShelfFixture.h"
#include "interaction/ShelfKeys.h"

namespace mosswick {
namespace {

using Command = ShelfKeys::Command;
using Cursor = ShelfKeys::Cursor;

struct KeyRow {
    const char* name;
    int key;
    Qt::KeyboardModifiers modifiers;
    Command command;
};

class ShelfKeyCommandTest : public ::testing::TestWithParam<KeyRow> {};

TEST_P(ShelfKeyCommandTest, MapsTheKeyAndItsModifiers) {
    const KeyRow& row = GetParam();
    EXPECT_EQ(ShelfKeys::command(row.key, row.modifiers), row.command);
}

const Qt::KeyboardModifiers none = Qt::NoModifier;
const Qt::KeyboardModifiers shift = Qt::ShiftModifier;
const Qt::KeyboardModifiers ctrl = Qt::ControlModifier;

INSTANTIATE_TEST_SUITE_P(
    Rows, ShelfKeyCommandTest,
    ::testing::Values(KeyRow{"down", Qt::Key_Down, none, Command::moveDown},
                      KeyRow{"up", Qt::Key_Up, none, Command::moveUp},
                      KeyRow{"shiftDown", Qt::Key_Down, shift, Command::extendDown},
                      KeyRow{"shiftUp", Qt::Key_Up, shift, Command::extendUp},
                      // Ctrl+arrows belong to nobody yet; they must not move the selection.
                      KeyRow{"ctrlDown", Qt::Key_Down, ctrl, Command::none},
                      KeyRow{"ctrlA", Qt::Key_A, ctrl, Command::selectAll},
                      KeyRow{"plainA", Qt::Key_A, none, Command::none},
                      KeyRow{"ctrlShiftA", Qt::Key_A, ctrl | shift, Command::none},
                      KeyRow{"returnOpens", Qt::Key_Return, none, Command::open},
                      KeyRow{"keypadEnterOpens", Qt::Key_Enter, Qt::KeypadModifier, Command::open},
                      KeyRow{"ctrlReturn", Qt::Key_Return, ctrl, Command::none},
                      KeyRow{"delete", Qt::Key_Delete, none, Command::remove},
                      KeyRow{"keypadDelete", Qt::Key_Delete, Qt::KeypadModifier, Command::remove},
                      KeyRow{"backspace", Qt::Key_Backspace, none, Command::remove},
                      KeyRow{"shiftDelete", Qt::Key_Delete, shift, Command::none},
                      KeyRow{"ctrlZ", Qt::Key_Z, ctrl, Command::restoreLastRemoved},
                      KeyRow{"ctrlC", Qt::Key_C, ctrl, Command::copy},
                      KeyRow{"plainC", Qt::Key_C, none, Command::none},
                      KeyRow{"menuKey", Qt::Key_Menu, none, Command::showMenu},
                      KeyRow{"shiftF10", Qt::Key_F10, shift, Command::showMenu},
                      KeyRow{"plainF10", Qt::Key_F10, none, Command::none},
                      KeyRow{"escapeIsThePanels", Qt::Key_Escape, none, Command::none},
                      KeyRow{"tabIsTheFocusChain", Qt::Key_Tab, none, Command::none}),
    [](const auto& row) { return std::string(row.param.name); });

struct StepRow {
    const char* name;
    int tiles;
    std::optional<Cursor> from;
    int delta;
    bool extend;
    std::optional<Cursor> to;
};

class ShelfKeyStepTest : public ::testing::TestWithParam<StepRow> {};

TEST_P(ShelfKeyStepTest, MovesWithinTheList) {
    const StepRow& row = GetParam();
    EXPECT_EQ(ShelfKeys::step(row.tiles, row.from, row.delta, row.extend), row.to);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ShelfKeyStepTest,
    ::testing::Values(StepRow{"emptyShelf", 0, std::nullopt, 1, false, std::nullopt},
                      StepRow{"emptyShelfWithStaleCursor", 0, Cursor{2, 2}, -1, true, std::nullopt},
                      StepRow{"firstDownLandsOnTop", 4, std::nullopt, 1, false, Cursor{0, 0}},
                      StepRow{"firstUpLandsOnBottom", 4, std::nullopt, -1, false, Cursor{3, 3}},
                      StepRow{"down", 4, Cursor{1, 1}, 1, false, Cursor{2, 2}},
                      StepRow{"staysAtTheBottom", 4, Cursor{3, 3}, 1, false, Cursor{3, 3}},
                      StepRow{"staysAtTheTop", 4, Cursor{0, 0}, -1, false, Cursor{0, 0}},
                      StepRow{"extendKeepsAnchor", 4, Cursor{1, 1}, 1, true, Cursor{2, 1}},
                      StepRow{"extendBackOverAnchor", 4, Cursor{2, 1}, -1, true, Cursor{1, 1}},
                      StepRow{"extendAtTheEnd", 4, Cursor{3, 0}, 1, true, Cursor{3, 0}},
                      StepRow{"plainMoveDropsAnchor", 4, Cursor{3, 0}, -1, false, Cursor{2, 2}},
                      // The list shrank under the cursor (items removed elsewhere): start afresh.
                      StepRow{"cursorPastTheEnd", 2, Cursor{5, 5}, 1, false, Cursor{0, 0}}),
    [](const auto& row) { return std::string(row.param.name); });

using ShelfKeySelectionTest = testing::ShelfFixture;

TEST_F(ShelfKeySelectionTest, ASpanSelectsEveryMemberOfItsStacksWhicheverWayItRuns) {
    const auto stack = batch({"a.jpg", "b.jpg"});
    const ShelfItem single = item("c.pdf");
    const ShelfItem last = item("d.pdf");
    const std::vector<ShelfTile> tiles{{stack}, {{single}}, {{last}}};

    const std::set<QUuid> firstTwo{stack[0].id, stack[1].id, single.id};
    EXPECT_EQ(ShelfKeys::selection(tiles, {1, 0}), firstTwo);
    EXPECT_EQ(ShelfKeys::selection(tiles, {0, 1}), firstTwo);
    EXPECT_EQ(ShelfKeys::selection(tiles, {2, 2}), std::set<QUuid>{last.id});
    EXPECT_EQ(ShelfKeys::all(tiles).size(), 4u);
    EXPECT_TRUE(ShelfKeys::all({}).empty());

    EXPECT_EQ(ShelfKeys::firstSelectedRow(tiles, {last.id, stack[1].id}), 0);
    EXPECT_EQ(ShelfKeys::firstSelectedRow(tiles, {}), std::nullopt);
}

}  // namespace
}  // namespace mosswick
