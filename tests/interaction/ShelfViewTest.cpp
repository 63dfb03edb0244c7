// The shelf view as the user meets it: what shows, what clicks do, and when it animates.
#include <gtest/gtest.h>

#include <QApplication>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include "ShelfFixture.h"
#include "interaction/CountLabel.h"
#include "interaction/DropHighlight.h"
#include "interaction/EmptyStateView.h"
#include "interaction/ShelfItemView.h"
#include "interaction/ShelfToolbar.h"
#include "interaction/ShelfView.h"
#include "interaction/TileListView.h"
#include "interaction/TileMenu.h"
#include "interaction/DragImage.h"
#include "interaction/Workspace.h"
#include "model/LocalPath.h"
#include "interaction/DragSource.h"
#include <QLabel>
#include "interaction/ToolbarButton.h"

namespace mosswick {
namespace {

class ShelfViewTest : public testing::ShelfFixture {
protected:
    std::unique_ptr<ShelfView> makeView(int slotCount = 3) {
        auto view = std::make_unique<ShelfView>(*store, motion());
        view->resize(196, slotCount * 88 + 56);
        view->show();
        return view;
    }

    // Clicks where the user would, letting the press fall through to whatever lies below.
    static void click(QWidget& top, QPoint position, Qt::MouseButton button = Qt::LeftButton,
                      Qt::KeyboardModifiers modifiers = {}) {
        QWidget* target = top.childAt(position);
        if (!target) target = &top;
        QTest::mouseClick(target, button, modifiers, target->mapFrom(&top, position));
    }

    static QPoint centreOf(QWidget& top, const QWidget& part) {
        return part.mapTo(&top, part.rect().center());
    }

    static QString count(ShelfView& view) { return view.toolbar().countLabel().text(); }

    // The tiles follow the store at the next frame.
    void nextFrame() { clock.advance(ShelfView::kTileUpdateDelay); }

    // Tiles drawn, those on their way out included.
    static int drawnTiles(ShelfView& view) {
        int drawn = 0;
        for (const ShelfItemView* tile : view.tileList().findChildren<ShelfItemView*>())
            drawn += tile->isVisible();
        return drawn;
    }
};

TEST_F(ShelfViewTest, ClearingTheShelfCanBeBroughtBackToTheTop) {
    store->add({item("b.pdf"), item("a.pdf")});
    auto view = makeView();
    EXPECT_EQ(count(*view), "2 items");
    ASSERT_TRUE(view->toolbar().clearButton().isVisible());

    click(*view, centreOf(*view, view->toolbar().clearButton()));
    nextFrame();
    EXPECT_TRUE(store->items().empty());
    EXPECT_TRUE(view->emptyState().isVisible());
    EXPECT_FALSE(view->tileList().isVisible());
    EXPECT_EQ(count(*view), "");
    EXPECT_FALSE(view->toolbar().clearButton().isVisible());
    ASSERT_TRUE(view->toolbar().bringBackButton().isVisible()) << "the removal was recorded";

    store->add({item("c.pdf")});
    nextFrame();
    click(*view, centreOf(*view, view->toolbar().bringBackButton()));
    nextFrame();
    EXPECT_EQ(itemNames(), (std::vector<QString>{"b.pdf", "a.pdf", "c.pdf"}));
    EXPECT_FALSE(view->toolbar().bringBackButton().isVisible());
    EXPECT_EQ(count(*view), "3 items");
}

TEST_F(ShelfViewTest, KeysMoveTheSelectionAndAskForTheTileMenusCommands) {
    store->add(batch({"s1.jpg", "s2.jpg"}));
    store->add({item("b.pdf")});
    store->add({item("a.pdf")});
    auto view = makeView();
    // As the panel's click gives it: the window active, the focus on the view.
    QApplication::setActiveWindow(view.get());
    view->setFocus();
    ASSERT_TRUE(view->hasFocus());
    QSignalSpy commands(view.get(), &ShelfView::commandRequested);
    QSignalSpy shelfMenu(view.get(), &ShelfView::contextMenuRequested);
    auto selectedNames = [&] {
        std::vector<QString> names;
        for (const ShelfItem& stored : store->items())
            if (store->selection().count(stored.id)) names.push_back(stored.displayName);
        return names;
    };
    auto ringed = [&] {
        std::vector<QString> names;
        for (const ShelfItemView* tile : view->tileList().tileViews())
            if (tile->hasKeyboardFocus()) names.push_back(tile->tile().first().displayName);
        return names;
    };
    auto idOf = [&](const QString& name) {
        for (const ShelfItem& stored : store->items())
            if (stored.displayName == name) return stored.id.toString(QUuid::WithoutBraces);
        return QString();
    };

    // Nothing selected: Enter and Ctrl+C have nothing to act on, the menu key opens the shelf's menu.
    QTest::keyClick(view.get(), Qt::Key_Return);
    QTest::keyClick(view.get(), Qt::Key_C, Qt::ControlModifier);
    QTest::keyClick(view.get(), Qt::Key_Menu);
    EXPECT_EQ(commands.count(), 0);
    EXPECT_EQ(shelfMenu.count(), 1);

    QTest::keyClick(view.get(), Qt::Key_Down);
    QTest::keyClick(view.get(), Qt::Key_Down);
    EXPECT_EQ(selectedNames(), (std::vector<QString>{"b.pdf"}));
    EXPECT_EQ(ringed(), (std::vector<QString>{"b.pdf"}));
    // Shift reaches into the stack and takes all of it.
    QTest::keyClick(view.get(), Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(selectedNames(), (std::vector<QString>{"b.pdf", "s1.jpg", "s2.jpg"}));
    QTest::keyClick(view.get(), Qt::Key_Return);
    QTest::keyClick(view.get(), Qt::Key_C, Qt::ControlModifier);
    QTest::keyClick(view.get(), Qt::Key_Delete);
    ASSERT_EQ(commands.count(), 3);
    // Each as the tile menu of the tile the keyboard stands on: the stack's first item.
    EXPECT_EQ(commands[0], (QVariantList{QVariant::fromValue(MenuCommand::openItem), idOf("s1.jpg")}));
    EXPECT_EQ(commands[1][0].value<MenuCommand>(), MenuCommand::copyItem);
    EXPECT_EQ(commands[2][0].value<MenuCommand>(), MenuCommand::removeItem);

    // A click elsewhere moves the keyboard with it.
    click(*view, centreOf(*view, *view->tileList().tileViews()[0]));
    QTest::keyClick(view.get(), Qt::Key_Down);
    EXPECT_EQ(selectedNames(), (std::vector<QString>{"b.pdf"}));

    QTest::keyClick(view.get(), Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(selectedNames().size(), 4u);

    store->remove({store->items().front().id}, true);
    QTest::keyClick(view.get(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(itemNames().front(), "a.pdf");
}

TEST_F(ShelfViewTest, DeleteLeavesTheKeyboardOnTheNextTileSoItCanGoOnRemoving) {
    for (const char* name : {"d.pdf", "c.pdf", "b.pdf", "a.pdf"}) store->add({item(name)});
    auto view = makeView(4);
    QApplication::setActiveWindow(view.get());
    view->setFocus();
    // What the tile menu's Remove does with a selected tile: the whole selection goes.
    QObject::connect(view.get(), &ShelfView::commandRequested, [&](MenuCommand command, const QString&) {
        if (command == MenuCommand::removeItem) store->remove(store->selection(), true);
    });
    auto selectedNames = [&] {
        std::vector<QString> names;
        for (const ShelfItem& stored : store->items())
            if (store->selection().count(stored.id)) names.push_back(stored.displayName);
        return names;
    };

    QTest::keyClick(view.get(), Qt::Key_Down);
    QTest::keyClick(view.get(), Qt::Key_Down);
    QTest::keyClick(view.get(), Qt::Key_Down, Qt::ShiftModifier);  // b and c
    QTest::keyClick(view.get(), Qt::Key_Delete);
    EXPECT_EQ(itemNames(), (std::vector<QString>{"a.pdf", "d.pdf"}));
    EXPECT_EQ(selectedNames(), (std::vector<QString>{"d.pdf"}));
    // The last tile gone, the keyboard steps back to the one before it.
    QTest::keyClick(view.get(), Qt::Key_Delete);
    EXPECT_EQ(selectedNames(), (std::vector<QString>{"a.pdf"}));
    QTest::keyClick(view.get(), Qt::Key_Delete);
    EXPECT_TRUE(itemNames().empty());
    EXPECT_TRUE(selectedNames().empty());
}

TEST_F(ShelfViewTest, ABurstOfChangesReachesTheTilesTogetherAtTheNextFrame) {
    store->add({item("b.pdf"), item("a.pdf")});
    auto view = makeView();
    QApplication::setActiveWindow(view.get());
    view->setFocus();
    auto titles = [&] {
        std::vector<QString> shown;
        for (const ShelfItemView* tile : view->tileList().tileViews())
            shown.push_back(tile->description().title);
        return shown;
    };
    ShelfItemView* staying = view->tileList().tileViews().at(0);

    // A copy finishing, two drops and a removal in one burst: nothing of it shows half-done.
    ShelfItem copied = store->items().at(0);
    copied.byteSize = 9000;
    store->update(copied);
    store->add({item("c.pdf")});
    store->add({item("d.pdf")});
    store->remove({store->items().back().id}, true);
    EXPECT_EQ(titles(), (std::vector<QString>{"b.pdf", "a.pdf"}));
    EXPECT_EQ(count(*view), "2 items");
    nextFrame();
    EXPECT_EQ(titles(), (std::vector<QString>{"d.pdf", "c.pdf", "b.pdf"}));
    EXPECT_EQ(count(*view), "3 items");
    EXPECT_EQ(view->tileList().tileViews().at(2), staying) << "a tile that stays keeps its widget";
    EXPECT_EQ(staying->tile().first().byteSize, 9000);

    // The selection and the keyboard act on the shelf as it is, even before the frame.
    store->add({item("e.pdf")});
    store->setSelection({store->items().front().id});
    EXPECT_EQ(titles().front(), "e.pdf");
    EXPECT_TRUE(view->tileList().tileViews().front()->isSelected());
    QTest::keyClick(view.get(), Qt::Key_Down);
    ASSERT_EQ(store->selection().size(), 1u);
    EXPECT_EQ(store->items().at(1).displayName, "d.pdf");
    EXPECT_TRUE(store->selection().count(store->items().at(1).id));
    EXPECT_TRUE(view->tileList().tileViews().at(1)->hasKeyboardFocus());
    EXPECT_EQ(count(*view), "4 items");
}

TEST_F(ShelfViewTest, TheTileTheKeyboardReachesIsScrolledIntoView) {
    for (int i = 0; i < 12; ++i) store->add({item(QString::number(i) + ".pdf")});
    auto view = makeView(3);
    QApplication::setActiveWindow(view.get());
    view->setFocus();
    const QScrollBar& bar = *view->tileList().verticalScrollBar();
    ASSERT_GT(bar.maximum(), 0);
    QTest::keyClick(view.get(), Qt::Key_Up);  // lands on the bottom tile
    EXPECT_EQ(bar.value(), bar.maximum());
    for (int i = 0; i < 11; ++i) QTest::keyClick(view.get(), Qt::Key_Up);
    EXPECT_EQ(bar.value(), 0);
    EXPECT_EQ(view->tileList().tileViews().front()->hasKeyboardFocus(), true);
    // The ring is the focused shelf's only.
    view->clearFocus();
    EXPECT_FALSE(view->tileList().tileViews().front()->hasKeyboardFocus());
}

TEST_F(ShelfViewTest, AStackAndASingleItemMakeTwoTilesNewestFirst) {
    auto view = makeView();
    store->add(batch({"1.jpg", "2.jpg", "3.jpg"}));
    store->add({item("newest.pdf")});
    nextFrame();
    const auto tiles = view->tileList().tileViews();
    ASSERT_EQ(tiles.size(), 2u);
    EXPECT_EQ(tiles[0]->description().title, "newest.pdf");
    EXPECT_EQ(tiles[1]->description().title, "3 items");
    EXPECT_LT(tiles[0]->y(), tiles[1]->y());
}

TEST_F(ShelfViewTest, AClickOnATileSelectsItAndOneOnTheBackgroundClearsTheSelection) {
    store->add({item("a.pdf"), item("b.pdf")});
    auto view = makeView();
    const auto tiles = view->tileList().tileViews();
    ASSERT_EQ(tiles.size(), 2u);

    click(*view, centreOf(*view, *tiles[0]));
    click(*view, centreOf(*view, *tiles[1]), Qt::LeftButton, Qt::ControlModifier);
    EXPECT_EQ(store->selection().size(), 2u);
    EXPECT_TRUE(tiles[0]->isSelected());
    EXPECT_TRUE(tiles[1]->isSelected());

    // Below the last tile, in the list's empty part.
    click(*view, QPoint(view->width() / 2, view->height() - 20));
    EXPECT_TRUE(store->selection().empty());
    EXPECT_FALSE(tiles[0]->isSelected());
}

TEST_F(ShelfViewTest, ARightClickOnTheBackgroundAsksForTheShelfMenu) {
    auto view = makeView();
    QSignalSpy menu(view.get(), &ShelfView::contextMenuRequested);
    click(*view, QPoint(view->width() / 2, view->height() - 20), Qt::RightButton);
    EXPECT_EQ(menu.count(), 1);
}

TEST_F(ShelfViewTest, TheTilesHandTheirMouseToTheDragSource) {
    struct Menu final : TileMenu {
        void popUp(const ShelfItem& item, QPoint) override { shownFor.push_back(item.displayName); }
        std::vector<QString> shownFor;
    } menu;
    store->add({item("single.pdf")});
    store->add(batch({"1.jpg", "2.jpg"}));
    auto view = makeView();
    view->dragSource().setTileMenu(&menu);
    ShelfItemView* single = view->tileList().tileViews().at(1);

    click(*view, centreOf(*view, *single), Qt::RightButton);
    EXPECT_EQ(menu.shownFor, std::vector<QString>{"single.pdf"});
    EXPECT_EQ(store->selection().size(), 1u) << "selected by the right click";

    ShelfItemView* stack = view->tileList().tileViews().at(0);
    click(*view, stack->mapTo(view.get(), stack->closeButtonRect().center().toPoint()));
    nextFrame();
    EXPECT_EQ(itemNames(), std::vector<QString>{"single.pdf"});
    ASSERT_EQ(store->removalHistory().size(), 1u);
    EXPECT_EQ(store->removalHistory().front().size(), 2u) << "the whole stack, in one step";

    // A double click opens the item's file (the staged copy, here: there is no original).
    struct Opened final : Workspace {
        void open(const QUrl& file) override { files.push_back(file); }
        void reveal(const std::vector<QUrl>&) override {}
        std::vector<QUrl> files;
    } workspace;
    view->dragSource().setWorkspace(&workspace);
    const auto folder = testing::freshFolder("double-click");
    testing::writeFile(folder / "single.pdf", "pdf");
    ShelfItem withFile = store->items().at(0);
    withFile.stagedURL = LocalPath::toUrl(folder / "single.pdf");
    store->update(withFile);
    nextFrame();
    ShelfItemView* tile = view->tileList().tileViews().at(0);
    QTest::mouseClick(tile, Qt::LeftButton);
    EXPECT_TRUE(workspace.files.empty()) << "a single click opens nothing";
    // The second press of a double click comes as a double-click event, its release as a release.
    QTest::mouseDClick(tile, Qt::LeftButton);
    QTest::mouseRelease(tile, Qt::LeftButton);
    EXPECT_EQ(workspace.files, std::vector<QUrl>{*withFile.stagedURL});
}

TEST_F(ShelfViewTest, TheDragImageIsSharpOnADoubledScreenAndCountsAStack) {
    const QImage one = DragImage::of({item("a.pdf")}, 2.0).toImage();
    EXPECT_EQ(one.size(), QSize(128, 128)) << "64 points at two pixels a point";
    EXPECT_EQ(one.devicePixelRatio(), 2.0);
    const QImage three = DragImage::of({item("a.pdf"), item("b.pdf"), item("c.pdf")}, 1.0).toImage();
    EXPECT_EQ(three.size(), QSize(64, 64));
    // The count's badge stands in the top-right corner, where a single picture leaves room.
    EXPECT_GT(qAlpha(three.pixel(58, 8)), 200);
    EXPECT_NE(three, DragImage::of({item("a.pdf")}, 1.0).toImage());
}

TEST_F(ShelfViewTest, AnItemWhoseOriginalIsGoneCarriesTheBadge) {
    const ShelfItem gone = item("gone.pdf");
    store->add({gone, item("here.pdf")});
    auto view = makeView();
    view->setOriginCheck([&](const ShelfItem& candidate) { return candidate.id == gone.id; });
    const auto tiles = view->tileList().tileViews();
    ASSERT_EQ(tiles.size(), 2u);
    EXPECT_TRUE(tiles[0]->description().isOriginMissing);
    EXPECT_EQ(tiles[0]->toolTip(), tiles[0]->description().toolTip);
    EXPECT_FALSE(tiles[1]->description().isOriginMissing);
}

class ShelfViewMotion : public ShelfViewTest, public ::testing::WithParamInterface<bool> {};

TEST_P(ShelfViewMotion, AnimatesEveryChangeUnlessMotionIsReduced) {
    desktopMotion.reduces = GetParam();
    const bool animates = !GetParam();
    auto view = makeView();
    store->add({item("a.pdf")});
    nextFrame();
    EXPECT_EQ(view->tileList().isAnimating(), animates);
    ShelfItemView* first = view->tileList().tileViews().at(0);
    EXPECT_EQ(first->presence() < 1, animates) << "a new tile grows in";

    store->add({item("b.pdf")});
    nextFrame();
    EXPECT_EQ(view->toolbar().countLabel().isRolling(), animates);

    store->setTargeted(true);
    EXPECT_EQ(view->dropHighlight().isFading(), animates);
    EXPECT_TRUE(view->dropHighlight().isLit());

    first->setHovered(true);
    EXPECT_EQ(first->isCloseButtonFading(), animates);

    // A removed tile leaves the list at once but stays drawn until its fade ends.
    store->remove({store->items().back().id}, true);
    nextFrame();
    EXPECT_EQ(view->tileList().tileViews().size(), 1u);
    EXPECT_EQ(drawnTiles(*view), animates ? 2 : 1);
    view->tileList().settle();
    EXPECT_EQ(drawnTiles(*view), 1);
    EXPECT_EQ(view->tileList().tileViews().at(0)->presence(), 1);
}

INSTANTIATE_TEST_SUITE_P(Motion, ShelfViewMotion, ::testing::Values(false, true),
                         [](const auto& row) { return row.param ? "Reduced" : "Full"; });

TEST_F(ShelfViewTest, AShelfThatCannotSaveSaysSoUntilItCanOrTheUserDismissesIt) {
    auto view = makeView();
    EXPECT_FALSE(view->notice().isVisible());
    std::filesystem::create_directories(AppFiles::saveFile() / "in the way");
    store->add({item("a.pdf")});
    clock.advance(ShelfStore::kSaveDelay);
    ASSERT_TRUE(view->notice().isVisible());
    EXPECT_TRUE(view->notice().text().startsWith(QLatin1String("Mosswick can't save the shelf")));
    EXPECT_LE(view->notice().geometry().bottom(), view->height());
    EXPECT_LE(view->tileList().geometry().bottom(), view->notice().geometry().top())
        << "no tile hides under it";

    QTest::mouseClick(&view->notice(), Qt::LeftButton);
    EXPECT_FALSE(view->notice().isVisible());
}

}  // namespace
}  // namespace mosswick
