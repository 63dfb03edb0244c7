#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "FakeDisplayEnvironment.h"
#include "FakeShelfPanel.h"
#include "support/GeometryPrinting.h"
#include "model/DefaultsStore.h"
#include "model/Preferences.h"
#include "model/ShelfStore.h"
#include "shelf/ShelfWindowController.h"
#include "support/ManualScheduler.h"
#include "support/TestFolders.h"

using namespace mosswick;
using namespace mosswick::testing;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

namespace {

// 1440 x 900 with a 25-point top bar and a 40-point bottom panel reserved.
const Display kMain{{0, 0, 1440, 900}, {0, 40, 1440, 835}};
const Display kSecond{{1440, 0, 1920, 1080}, {1440, 0, 1920, 1080}};

// The default placement (right bottom, adaptive smallest) on the main display.
const ScreenRect kOneSlot{1238, 46, 196, 144};
const char* const kSlideIn = "animate 1238,46 196x144 alpha 1 0.26s ease-out";
const char* const kSlideOut = "animate 1452,46 196x144 alpha 0 0.2s ease-in";

ShelfItem item(std::optional<QUuid> batch = std::nullopt) {
    ShelfItem made;
    made.id = QUuid::createUuid();
    made.displayName = QStringLiteral("note.txt");
    made.batchID = batch;
    return made;
}

class ShelfWindowControllerTest : public ::testing::Test {
protected:
    ShelfWindowControllerTest() {
        environment.displayList = {kMain};
        environment.pointer = {700, 450};
        controller = std::make_unique<ShelfWindowController>(ShelfWindowController::Services{
            preferences, store, clock, environment, desktopMotion, [this](const ScreenRect& frame) {
                auto made = std::make_unique<FakeShelfPanel>();
                made->standAt(frame);
                panel = made.get();
                ++panelsMade;
                return made;
            }});
    }

    // Shows the shelf for a drag and lets the slide finish, forgetting what was logged.
    void showForDrag() {
        controller->dragBegan();
        panel->finishAnimations();
        panel->takeLog();
    }

    void endDragAndWait() {
        controller->dragEnded();
        clock.advance(ShelfWindowController::kDragEndedDelay);
    }

    std::vector<std::string> log() { return panel->takeLog(); }

    ManualScheduler clock;
    MemoryDefaultsStore defaults;
    Preferences preferences{defaults};
    ShelfStore store{preferences, clock, freshFolder("shelf") / "shelf.json"};
    FakeDisplayEnvironment environment;
    FakeDesktopMotionSetting desktopMotion;
    FakeShelfPanel* panel = nullptr;
    int panelsMade = 0;
    std::unique_ptr<ShelfWindowController> controller;
};

TEST_F(ShelfWindowControllerTest, ADragSlidesTheShelfInFromItsEdge) {
    controller->dragBegan();
    ASSERT_NE(panel, nullptr);
    EXPECT_THAT(log(),
                ElementsAre("alpha 0", "frame 1238,46 196x144", "front", "frame 1452,46 196x144", kSlideIn));
    EXPECT_TRUE(controller->isShown());
    EXPECT_EQ(controller->transitionToken(), 1);
}

TEST_F(ShelfWindowControllerTest, TheEndOfADragSlidesAnEmptyShelfOutAfterItsDelay) {
    showForDrag();
    controller->dragEnded();
    clock.advance(0.29);
    EXPECT_THAT(log(), IsEmpty());
    clock.advance(0.01);
    EXPECT_THAT(log(), ElementsAre(kSlideOut));
    EXPECT_FALSE(controller->isShown());
    EXPECT_EQ(controller->transitionToken(), 2);
    EXPECT_TRUE(panel->isVisible());

    panel->finishAnimations();
    EXPECT_THAT(log(), ElementsAre("out", "alpha 1"));
    EXPECT_FALSE(panel->isVisible());
}

TEST_F(ShelfWindowControllerTest, ShowingAgainDuringTheSlideOutOutrunsItsCompletion) {
    showForDrag();
    endDragAndWait();
    clock.advance(0.1);
    controller->dragBegan();
    EXPECT_EQ(controller->transitionToken(), 3);

    panel->finishAnimations();
    EXPECT_THAT(log(), Not(Contains("out")));
    EXPECT_TRUE(panel->isVisible());
    EXPECT_EQ(panel->alpha(), 1);
    EXPECT_EQ(panel->frame(), kOneSlot);
}

TEST_F(ShelfWindowControllerTest, HidingDuringTheSlideInStartsFromWhereThePanelStands) {
    controller->dragBegan();
    panel->standAt({1345, 46, 196, 144});
    log();
    controller->escape();
    EXPECT_THAT(log(), ElementsAre("animate 1559,46 196x144 alpha 0 0.2s ease-in"));
}

TEST_F(ShelfWindowControllerTest, ThePointerRestingNearTheShelfKeepsItUpUntilItMovesAway) {
    showForDrag();
    environment.pointer = {kOneSlot.minX() - 7, 100};
    endDragAndWait();
    clock.advance(3 * ShelfWindowController::kLookAgainDelay);
    EXPECT_TRUE(controller->isShown());

    environment.pointer = {kOneSlot.minX() - 8.5, 100};
    clock.advance(ShelfWindowController::kLookAgainDelay - 0.01);
    EXPECT_TRUE(controller->isShown());
    clock.advance(0.01);
    EXPECT_FALSE(controller->isShown());
    EXPECT_THAT(log(), ElementsAre(kSlideOut));
}

TEST_F(ShelfWindowControllerTest, ADragHoveringOverTheShelfKeepsItUpUntilItLeaves) {
    showForDrag();
    controller->dragEnded();
    panel->onTargetChange(true);
    EXPECT_TRUE(store.isTargeted());
    clock.advance(5);
    EXPECT_TRUE(controller->isShown());

    panel->onTargetChange(false);
    EXPECT_FALSE(store.isTargeted());
    clock.advance(ShelfWindowController::kTargetLeftDelay - 0.01);
    EXPECT_TRUE(controller->isShown());
    clock.advance(0.01);
    EXPECT_FALSE(controller->isShown());
}

TEST_F(ShelfWindowControllerTest, OnlyTheLatestRequestCounts) {
    showForDrag();
    controller->dragEnded();
    controller->applyPresentation(true, 1.0);
    clock.advance(0.5);
    EXPECT_TRUE(controller->isShown());
    clock.advance(0.5);
    EXPECT_FALSE(controller->isShown());

    showForDrag();
    controller->dragEnded();
    controller->applyPresentation(true, 0);  // replaces the pending request and decides now
    EXPECT_FALSE(controller->isShown());
    EXPECT_EQ(clock.pendingTimers(), 0u);
}

TEST_F(ShelfWindowControllerTest, AToggledAwayShelfStaysAwayUntilContentAppearsAgain) {
    controller->toggle();
    EXPECT_TRUE(controller->presentation().isSummoned);
    EXPECT_TRUE(controller->isShown());
    store.add({item()});
    clock.drain();

    controller->toggle();
    clock.advance(10);
    EXPECT_FALSE(controller->isShown());
    EXPECT_TRUE(controller->presentation().isSuppressed);
    EXPECT_FALSE(controller->presentation().isSummoned);

    store.removeAll();
    clock.drain();
    EXPECT_FALSE(controller->isShown());
    store.add({item()});
    clock.drain();
    EXPECT_TRUE(controller->isShown());
}

TEST_F(ShelfWindowControllerTest, OnlyAShelfThatIsUpTakesTheFocus) {
    controller->focusShelf();
    EXPECT_EQ(panelsMade, 0);
    controller->toggle();
    panel->finishAnimations();
    log();
    controller->focusShelf();
    EXPECT_EQ(log(), (std::vector<std::string>{"take focus"}));
    controller->toggle();
    panel->finishAnimations();
    log();
    controller->focusShelf();
    EXPECT_EQ(log(), std::vector<std::string>{});
}

TEST_F(ShelfWindowControllerTest, EscapeDuringAPreviewEndsItAndHides) {
    controller->previewPlacement();
    EXPECT_TRUE(controller->isShown());
    clock.advance(1);
    panel->onEscape();
    EXPECT_FALSE(controller->isShown());
    EXPECT_FALSE(controller->presentation().isPreviewing);
    EXPECT_TRUE(controller->presentation().isSuppressed);
    panel->finishAnimations();
    clock.advance(5);
    EXPECT_FALSE(panel->isVisible());
    EXPECT_EQ(clock.pendingTimers(), 0u);
}

TEST_F(ShelfWindowControllerTest, APreviewLastsFromTheLatestPick) {
    controller->previewPlacement();
    clock.advance(1);
    controller->previewPlacement();
    clock.advance(ShelfWindowController::kPreviewDuration - 0.01);
    EXPECT_TRUE(controller->isShown());
    clock.advance(0.01);
    EXPECT_FALSE(controller->isShown());
    EXPECT_FALSE(controller->presentation().isPreviewing);
}

TEST_F(ShelfWindowControllerTest, ReducedMotionOfTheDesktopOrThePreferenceShowsAndHidesAtOnce) {
    desktopMotion.reduces = true;
    controller->dragBegan();
    endDragAndWait();
    EXPECT_THAT(log(), ElementsAre("frame 1238,46 196x144", "alpha 1", "front", "out", "alpha 1"));

    desktopMotion.reduces = false;
    preferences.setReduceMotion(true);
    controller->dragBegan();
    endDragAndWait();
    EXPECT_THAT(log(), ElementsAre("frame 1238,46 196x144", "alpha 1", "front", "out", "alpha 1"));
}

TEST_F(ShelfWindowControllerTest, AShelfOpenedAtThePointerAppearsInPlaceAndForgetsTheAnchorOnHide) {
    controller->anchorToPointerIfAppearing();
    ASSERT_TRUE(controller->cursorAnchor());
    EXPECT_EQ(*controller->cursorAnchor(), (ScreenPoint{724, 522}));
    controller->dragBegan();
    EXPECT_THAT(log(), ElementsAre("frame 724,378 196x144", "alpha 1", "front"));

    environment.pointer = {100, 100};
    controller->anchorToPointerIfAppearing();
    EXPECT_EQ(*controller->cursorAnchor(), (ScreenPoint{724, 522}));

    endDragAndWait();
    EXPECT_FALSE(controller->isShown());
    EXPECT_FALSE(controller->cursorAnchor());
}

TEST_F(ShelfWindowControllerTest, WhereThePointerGoesStaleTheShelfNeitherOpensAtItNorWaitsForIt) {
    preferences.setShowTrigger(ShowTrigger::dragStartsAtCursor);
    controller->setPointerAlwaysKnown(false);
    controller->dragBegan();
    EXPECT_FALSE(controller->cursorAnchor());
    EXPECT_THAT(log(),
                ElementsAre("alpha 0", "frame 1238,46 196x144", "front", "frame 1452,46 196x144", kSlideIn));
    panel->finishAnimations();
    // Last seen over the shelf, then gone over another program's window without a word.
    environment.pointer = {1300, 100};
    endDragAndWait();
    EXPECT_FALSE(controller->isShown());
}

TEST_F(ShelfWindowControllerTest, MoreTilesOnAnAdaptiveShelfGrowItAnimated) {
    controller->summon();
    panel->finishAnimations();
    log();
    store.add({item(), item()});
    clock.drain();
    const std::vector<std::string> moves = log();
    EXPECT_THAT(moves, Not(IsEmpty()));
    EXPECT_THAT(moves, ::testing::Each(std::string("animate 1238,46 196x232 0.22s ease-out")));
}

TEST_F(ShelfWindowControllerTest, AStackCountsAsOneTile) {
    controller->summon();
    const QUuid batch = QUuid::createUuid();
    store.add({item(batch), item(batch), item(batch)});
    clock.drain();
    panel->finishAnimations();
    EXPECT_EQ(panel->frame(), kOneSlot);
}

TEST_F(ShelfWindowControllerTest, AChangedDisplayReplacesTheShelfWithoutAnimation) {
    showForDrag();
    environment.rearrange({{kMain.frame, {0, 80, 1440, 795}}});
    EXPECT_THAT(log(), ElementsAre("frame 1238,86 196x144"));
}

TEST_F(ShelfWindowControllerTest, MovingToAnotherDisplayJumpsInsteadOfSliding) {
    environment.displayList = {kMain, kSecond};
    showForDrag();
    environment.pointer = {2000, 500};
    controller->summon();
    EXPECT_THAT(log(), ElementsAre("frame 3158,6 196x144", "front"));
}

TEST_F(ShelfWindowControllerTest, HidingClearsTheSelection) {
    const ShelfItem held = item();
    store.add({held});
    clock.drain();
    store.setSelection({held.id});
    controller->escape();
    EXPECT_TRUE(store.selection().empty());
}

TEST_F(ShelfWindowControllerTest, RebuildingDropsThePanelAndShowsAFreshOneAtOnce) {
    controller->summon();
    controller->rebuildPanel();
    EXPECT_EQ(panelsMade, 2);
    EXPECT_TRUE(controller->isShown());
    EXPECT_THAT(log(), ElementsAre("frame 1238,46 196x144", "alpha 1", "front"));

    controller->escape();
    controller->rebuildPanel();
    EXPECT_EQ(panelsMade, 3) << "a hidden shelf is rebuilt too, to stand by for the next drag";
    ASSERT_NE(controller->panel(), nullptr);
    EXPECT_FALSE(controller->isShown());
    EXPECT_THAT(log(), ElementsAre("frame 1238,46 196x144", "out"));
}

// --- Standing by before the first drag ---------------------------------------------------------

TEST_F(ShelfWindowControllerTest, StandingByMakesThePanelPutAwayAtTheFrameItWillTake) {
    controller->resetToHidden();
    controller->standBy();
    ASSERT_EQ(panelsMade, 1);
    EXPECT_FALSE(controller->isShown());
    EXPECT_THAT(log(), ElementsAre("frame 1238,46 196x144", "out"));

    controller->standBy();
    EXPECT_EQ(panelsMade, 1);
    EXPECT_THAT(log(), IsEmpty()) << "once made, the panel is left as it is";
}

TEST_F(ShelfWindowControllerTest, SavedItemsArrivingAfterLaunchLeaveTheShelfAwayButCountAsContent) {
    ShelfItem saved = item();
    const auto original = freshFolder("originals") / "note.txt";
    writeFile(original, "x");
    saved.originURL = QUrl::fromLocalFile(QString::fromStdString(original.string()));
    ShelfSaveFile(store.saveFile().path()).write({saved}, 1);  // read when the clock first runs
    controller->resetToHidden();
    controller->standBy();
    log();
    clock.drain();
    ASSERT_EQ(store.items().size(), 1u);
    EXPECT_FALSE(controller->isShown()) << "a restored shelf stays away at launch";
    EXPECT_THAT(log(), Not(Contains(kSlideIn)));

    // It has content now: the end of a drag leaves it up.
    showForDrag();
    endDragAndWait();
    EXPECT_TRUE(controller->isShown());
}

TEST_F(ShelfWindowControllerTest, StandingByLeavesAShownShelfAlone) {
    controller->summon();
    log();
    controller->standBy();
    EXPECT_EQ(panelsMade, 1);
    EXPECT_TRUE(controller->isShown());
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(ShelfWindowControllerTest, APanelStandingAsideSlidesInFromBeyondTheEdgeWithoutAStopInPlace) {
    controller->standBy();
    panel->allowsAside = true;
    log();
    controller->dragBegan();
    EXPECT_EQ(panelsMade, 1) << "the drag finds the panel made before it";
    EXPECT_THAT(log(), ElementsAre("alpha 0", "frame 1452,46 196x144", "front", kSlideIn));

    panel->finishAnimations();
    endDragAndWait();
    panel->finishAnimations();
    log();
    controller->dragBegan();
    EXPECT_THAT(log(), ElementsAre("alpha 0", "frame 1452,46 196x144", "front", kSlideIn))
        << "and again after the slide out";
}

TEST_F(ShelfWindowControllerTest, APanelStandingAsideIsPlacedAtOnceWhenMotionIsReduced) {
    desktopMotion.reduces = true;
    controller->standBy();
    panel->allowsAside = true;
    log();
    controller->dragBegan();
    EXPECT_THAT(log(), ElementsAre("frame 1238,46 196x144", "alpha 1", "front"));
}

TEST_F(ShelfWindowControllerTest, PendingWorkDiesWithTheController) {
    controller->previewPlacement();
    controller->dragEnded();
    controller.reset();
    clock.advance(5);
    SUCCEED();
}

// --- Following the preferences ---------------------------------------------------------------

TEST_F(ShelfWindowControllerTest, APickedPositionMovesAShownShelfAnimated) {
    showForDrag();
    preferences.setPosition(ShelfPosition::leftTop);
    EXPECT_THAT(log(), IsEmpty());
    clock.drain();
    EXPECT_THAT(log(), ElementsAre("animate 6,725 196x144 0.22s ease-out"));
}

TEST_F(ShelfWindowControllerTest, TheLeftSideSlidesInAndOutToTheLeft) {
    preferences.setPosition(ShelfPosition::leftBottom);
    clock.drain();
    controller->dragBegan();
    EXPECT_THAT(log(), Contains("frame -208,46 196x144"));
    panel->finishAnimations();
    endDragAndWait();
    EXPECT_THAT(log(), ElementsAre("animate -208,46 196x144 alpha 0 0.2s ease-in"));
}

TEST_F(ShelfWindowControllerTest, TheEdgeTriggerShowsOnlyAtTheEdge) {
    controller->dragReachedEdge();
    EXPECT_FALSE(controller->presentation().isDragging);
    preferences.setShowTrigger(ShowTrigger::dragToScreenEdge);
    controller->dragBegan();
    EXPECT_EQ(panel, nullptr);
    controller->dragReachedEdge();
    EXPECT_TRUE(controller->isShown());
}

TEST_F(ShelfWindowControllerTest, WithoutAutomaticShowingDragsOnlyEnd) {
    preferences.setAutomaticallyShow(false);
    controller->dragBegan();
    EXPECT_EQ(panel, nullptr);
    EXPECT_FALSE(controller->presentation().isDragging);
}

TEST_F(ShelfWindowControllerTest, AnEmptiedShelfStaysUpUntilEmptyShelvesShouldHide) {
    preferences.setHideWhenEmpty(false);
    clock.drain();
    store.add({item()});
    clock.drain();
    ASSERT_TRUE(controller->isShown());
    store.removeAll();
    clock.drain();
    EXPECT_TRUE(controller->presentation().keepsEmptyShelfUp);
    EXPECT_FALSE(controller->presentation().isSummoned);
    EXPECT_TRUE(controller->isShown());

    preferences.setHideWhenEmpty(true);
    clock.drain();
    EXPECT_FALSE(controller->presentation().keepsEmptyShelfUp);
    EXPECT_FALSE(controller->isShown());
}

TEST_F(ShelfWindowControllerTest, ThePanelTakesTheAppearancePreference) {
    preferences.setAppearance(AppearanceMode::dark);
    clock.drain();
    controller->summon();
    EXPECT_EQ(panel->appearance(), AppearanceMode::dark);
    preferences.setAppearance(AppearanceMode::light);
    clock.drain();
    EXPECT_EQ(panel->appearance(), AppearanceMode::light);
}

}  // namespace

// Drags seen only as they start, their types and end hidden (KWin): a strip along the shelf's
// usable edge stands in for the shelf until a drag comes over it.
class UnseenDragStripTest : public ShelfWindowControllerTest {
protected:
    UnseenDragStripTest() { controller->setPointerAlwaysKnown(false); }

    // A drag the shelf takes comes over the strip, which grows into the shelf.
    void catchDrag() {
        controller->unreadableDragBegan();
        panel->onForeignDragEntered(true);
        panel->onTargetChange(true);
        panel->finishAnimations();
        log();
    }
};

const char* const kStrip = "frame 1436,40 4x835";

struct StripCase {
    const char* name;
    // Steps: "drag" (a drag starts); "files", "text", "refused" (a drag of files or of text, which
    // the shelf takes, or one it refuses, enters the panel); "left"; "+S" (seconds pass).
    const char* steps;
    std::vector<std::string> log;
    bool stripShown;
    bool shelfShown;
};

class UnseenDragStrip : public UnseenDragStripTest, public ::testing::WithParamInterface<StripCase> {};

TEST_P(UnseenDragStrip, Lifecycle) {
    const StripCase& c = GetParam();
    for (const QString& step : QString::fromLatin1(c.steps).split(u' ', Qt::SkipEmptyParts)) {
        if (step == u"drag")
            controller->unreadableDragBegan();
        else if (step == u"files") {
            panel->onForeignDragEntered(true);
            panel->onTargetChange(true);
        } else if (step == u"text") {  // taken on a drop, but no reason to come up
            panel->onForeignDragEntered(false);
            panel->onTargetChange(true);
        } else if (step == u"refused")
            panel->onForeignDragEntered(false);
        else if (step == u"left")
            panel->onTargetChange(false);
        else if (step.startsWith(u'+'))
            clock.advance(step.mid(1).toDouble());
        else
            ADD_FAILURE() << "unknown step " << step.toStdString();
    }
    EXPECT_THAT(log(), ::testing::ElementsAreArray(c.log)) << c.steps;
    EXPECT_EQ(controller->isStripShown(), c.stripShown) << c.steps;
    EXPECT_EQ(controller->isShown(), c.shelfShown) << c.steps;
}

const StripCase kStripCases[] = {
    {"stripAtTheUsableEdge", "drag", {"alpha 1", kStrip, "front"}, true, false},
    // Grown where it stands: a slide from beyond the edge would take the window from under the drag.
    {"growsForFiles",
     "drag files",
     {"alpha 1", kStrip, "front", "animate 1238,46 196x144 alpha 1 0.26s ease-out"},
     false,
     true},
    {"goesForTextAlone", "drag text", {"alpha 1", kStrip, "front", "out"}, false, false},
    {"goesForADragItRefuses", "drag refused", {"alpha 1", kStrip, "front", "out"}, false, false},
    {"goesWhenNoDragCame", "drag +5.9", {"alpha 1", kStrip, "front"}, true, false},
    {"goneAfterItsLifetime", "drag +6", {"alpha 1", kStrip, "front", "out"}, false, false},
    {"eachDragRestartsItsLifetime", "drag +5 drag +5", {"alpha 1", kStrip, "front"}, true, false},
    // The strip's lifetime no longer counts once it grew.
    {"grownShelfOutlivesTheStrip",
     "drag files +10",
     {"alpha 1", kStrip, "front", "animate 1238,46 196x144 alpha 1 0.26s ease-out"},
     false,
     true},
};

INSTANTIATE_TEST_SUITE_P(Table, UnseenDragStrip, ::testing::ValuesIn(kStripCases),
                         [](const ::testing::TestParamInfo<StripCase>& row) { return row.param.name; });

TEST_F(UnseenDragStripTest, AShelfLeftByTheDragGoesAfterADelayEvenWithThePointerSeeminglyOverIt) {
    catchDrag();
    // Through XWayland the pointer is reported where it last was over an X window: on the shelf.
    environment.pointer = {kOneSlot.center().x, kOneSlot.center().y};
    panel->onTargetChange(false);
    clock.advance(ShelfWindowController::kUnseenDragEndDelay - 0.1);
    EXPECT_TRUE(controller->isShown());
    // Coming back in time keeps it.
    panel->onTargetChange(true);
    clock.advance(10);
    EXPECT_TRUE(controller->isShown());

    panel->onTargetChange(false);
    clock.advance(ShelfWindowController::kUnseenDragEndDelay + ShelfWindowController::kDragEndedDelay);
    EXPECT_THAT(log(), Contains(kSlideOut));
    EXPECT_FALSE(controller->isShown());
}

TEST_F(UnseenDragStripTest, NoStripWhereTheShelfIsUpOrShouldNotComeByItself) {
    showForDrag();
    controller->unreadableDragBegan();
    EXPECT_THAT(log(), IsEmpty());
    EXPECT_FALSE(controller->isStripShown());

    controller->escape();
    panel->finishAnimations();
    log();
    preferences.setAutomaticallyShow(false);
    controller->unreadableDragBegan();
    EXPECT_THAT(log(), IsEmpty());
    EXPECT_FALSE(controller->isStripShown());
}

TEST_F(UnseenDragStripTest, SummonedOverTheStripTheShelfSlidesInAsUsual) {
    controller->unreadableDragBegan();
    log();
    controller->summon();
    EXPECT_FALSE(controller->isStripShown());
    EXPECT_TRUE(controller->isShown());
    EXPECT_THAT(log(), Contains(kSlideIn));
    clock.advance(ShelfWindowController::kStripLifetime);
    EXPECT_THAT(log(), Not(Contains("out")));
}
