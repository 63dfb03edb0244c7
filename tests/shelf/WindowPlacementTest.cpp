#include <gtest/gtest.h>

#include "support/GeometryPrinting.h"
#include "shelf/WindowPlacement.h"

using namespace mosswick;

namespace {

Display plainDisplay(ScreenRect frame) { return {frame, frame}; }

// A 1440 x 900 main display with a 25-point top bar and a 40-point bottom panel reserved.
const Display kMain{{0, 0, 1440, 900}, {0, 40, 1440, 835}};

Display withVisibleHeight(double height) { return {{0, 0, 1440, 2000}, {0, 0, 1440, height}}; }

struct SizeCase {
    const char* name;
    ShelfSize size;
    qint64 tiles;
    double visibleHeight;
    double expectedHeight;
};

void PrintTo(const SizeCase& row, std::ostream* os) { *os << row.name; }

class ShelfHeight : public ::testing::TestWithParam<SizeCase> {};

TEST_P(ShelfHeight, FollowsTheSizeRuleWithinTheSlotsThatFit) {
    const SizeCase& c = GetParam();
    const QSizeF size = WindowPlacement::size(c.size, c.tiles, withVisibleHeight(c.visibleHeight));
    EXPECT_EQ(size.width(), 196);
    EXPECT_EQ(size.height(), c.expectedHeight);
}

INSTANTIATE_TEST_SUITE_P(
    Sizes, ShelfHeight,
    ::testing::Values(
        SizeCase{"standardOnTallDisplay", ShelfSize::standard, 0, 388, 320},
        SizeCase{"standardJustFitsThree", ShelfSize::standard, 0, 332, 320},
        SizeCase{"standardShortOfThree", ShelfSize::standard, 0, 331, 232},
        SizeCase{"standardWhereOneDoesNotReallyFit", ShelfSize::standard, 0, 155, 144},
        SizeCase{"biggestFillsTheDisplay", ShelfSize::biggest, 0, 1000, 936},
        SizeCase{"biggestOnTinyDisplayStillOneSlot", ShelfSize::biggest, 0, 60, 144},
        SizeCase{"smallestIgnoresTiles", ShelfSize::smallest, 50, 1000, 144},
        SizeCase{"adaptiveStandardEmpty", ShelfSize::adaptiveStandard, 0, 1000, 320},
        SizeCase{"adaptiveStandardTwoTiles", ShelfSize::adaptiveStandard, 2, 1000, 320},
        SizeCase{"adaptiveStandardSevenTilesRoomForFive", ShelfSize::adaptiveStandard, 7, 508, 496},
        SizeCase{"adaptiveStandardRoomForTwo", ShelfSize::adaptiveStandard, 1, 244, 232},
        SizeCase{"adaptiveSmallestEmpty", ShelfSize::adaptiveSmallest, 0, 1000, 144},
        SizeCase{"adaptiveSmallestFourTilesRoomForNine", ShelfSize::adaptiveSmallest, 4, 860, 408},
        SizeCase{"adaptiveSmallestTwelveTilesRoomForNine", ShelfSize::adaptiveSmallest, 12, 860, 848}),
    [](const auto& row) { return row.param.name; });

struct EdgeCase {
    const char* name;
    ShelfPosition position;
    ScreenRect expected;
};

void PrintTo(const EdgeCase& row, std::ostream* os) { *os << row.name; }

class EdgeFrame : public ::testing::TestWithParam<EdgeCase> {};

TEST_P(EdgeFrame, DocksInsideTheVisibleFrame) {
    const EdgeCase& c = GetParam();
    EXPECT_EQ(WindowPlacement::edgeFrame(c.position, ShelfSize::standard, 0, kMain), c.expected);
}

// Visible frame y 40 to 875; 320 tall leaves 503 points of slack inside the insets.
INSTANTIATE_TEST_SUITE_P(
    Positions, EdgeFrame,
    ::testing::Values(EdgeCase{"leftTop", ShelfPosition::leftTop, {6, 549, 196, 320}},
                      EdgeCase{"leftCenter", ShelfPosition::leftCenter, {6, 297.5, 196, 320}},
                      EdgeCase{"leftBottom", ShelfPosition::leftBottom, {6, 46, 196, 320}},
                      EdgeCase{"rightTop", ShelfPosition::rightTop, {1238, 549, 196, 320}},
                      EdgeCase{"rightCenter", ShelfPosition::rightCenter, {1238, 297.5, 196, 320}},
                      EdgeCase{"rightBottom", ShelfPosition::rightBottom, {1238, 46, 196, 320}}),
    [](const auto& row) { return row.param.name; });

TEST(EdgeFrame, OnASecondDisplayUsesThatDisplaysEdge) {
    const Display second = plainDisplay({1440, 0, 1440, 900});
    EXPECT_EQ(WindowPlacement::edgeFrame(ShelfPosition::rightTop, ShelfSize::smallest, 0, second).x, 2678);
}

TEST(EdgeFrame, TallerThanTheVisibleFrameKeepsItsBottomAndRunsOffTheTop) {
    const Display shortDisplay{{0, 0, 800, 100}, {0, 10, 800, 90}};
    EXPECT_EQ(WindowPlacement::edgeFrame(ShelfPosition::leftTop, ShelfSize::smallest, 0, shortDisplay),
              (ScreenRect{6, 16, 196, 144}));
}

struct ClampCase {
    const char* name;
    ScreenRect rect;
    ScreenRect expected;
};

void PrintTo(const ClampCase& row, std::ostream* os) { *os << row.name; }

class Clamping : public ::testing::TestWithParam<ClampCase> {};

TEST_P(Clamping, MovesWithoutResizing) {
    EXPECT_EQ(WindowPlacement::clamped(GetParam().rect, kMain), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rects, Clamping,
    ::testing::Values(ClampCase{"inside", {100, 100, 196, 144}, {100, 100, 196, 144}},
                      ClampCase{"atLowerLeftInsets", {6, 46, 196, 144}, {6, 46, 196, 144}},
                      ClampCase{"atUpperRightInsets", {1238, 725, 196, 144}, {1238, 725, 196, 144}},
                      ClampCase{"offLeft", {-50, 100, 196, 144}, {6, 100, 196, 144}},
                      ClampCase{"offRight", {1400, 100, 196, 144}, {1238, 100, 196, 144}},
                      ClampCase{"belowVisibleFrame", {100, 0, 196, 144}, {100, 46, 196, 144}},
                      ClampCase{"aboveVisibleFrame", {100, 800, 196, 144}, {100, 725, 196, 144}},
                      ClampCase{"widerSticksToRightInset", {0, 100, 2000, 144}, {-566, 100, 2000, 144}},
                      ClampCase{"tallerSticksToTopInset", {100, 40, 196, 1000}, {100, -131, 196, 1000}}),
    [](const auto& row) { return row.param.name; });

struct CursorCase {
    const char* name;
    ScreenPoint pointer;
    ScreenRect expected;
};

void PrintTo(const CursorCase& row, std::ostream* os) { *os << row.name; }

class FrameAtCursor : public ::testing::TestWithParam<CursorCase> {};

TEST_P(FrameAtCursor, StandsBesideThePointer) {
    EXPECT_EQ(WindowPlacement::frameAtCursor(ShelfSize::smallest, 0, kMain, GetParam().pointer),
              GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Pointers, FrameAtCursor,
    ::testing::Values(CursorCase{"roomOnTheRight", {1140, 400}, {1164, 328, 196, 144}},
                      CursorCase{"noRoomOnTheRight", {1340, 400}, {1120, 328, 196, 144}},
                      // Fits by the bare edge, so it goes right and the inset pulls it back.
                      CursorCase{"exactlyFitsTheBareEdge", {1220, 400}, {1238, 328, 196, 144}},
                      CursorCase{"nearTheTop", {700, 870}, {724, 725, 196, 144}},
                      CursorCase{"nearTheBottom", {700, 50}, {724, 46, 196, 144}}),
    [](const auto& row) { return row.param.name; });

TEST(AnchoredFrame, HangsFromTheAnchorAndIsClamped) {
    EXPECT_EQ(WindowPlacement::anchoredFrame({100, 500}, ShelfSize::smallest, 0, kMain),
              (ScreenRect{100, 356, 196, 144}));
    EXPECT_EQ(WindowPlacement::anchoredFrame({100, 100}, ShelfSize::adaptiveSmallest, 2, kMain),
              (ScreenRect{100, 46, 196, 232}));
}

const Display kLeft = plainDisplay({0, 0, 1440, 900});
const Display kRight = plainDisplay({1440, 0, 1920, 1080});
const Display kAboveLeft = plainDisplay({-1280, 900, 1280, 1024});

struct ContainingCase {
    const char* name;
    ScreenPoint point;
    std::optional<Display> expected;
};

void PrintTo(const ContainingCase& row, std::ostream* os) { *os << row.name; }

class ScreenContaining : public ::testing::TestWithParam<ContainingCase> {};

TEST_P(ScreenContaining, CountsMinimumEdgesInsideAndMaximumEdgesOutside) {
    EXPECT_EQ(WindowPlacement::screen({kLeft, kRight, kAboveLeft}, GetParam().point), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Points, ScreenContaining,
                         ::testing::Values(ContainingCase{"origin", {0, 0}, kLeft},
                                           ContainingCase{"sharedEdgeGoesRight", {1440, 500}, kRight},
                                           ContainingCase{"justLeftOfSharedEdge", {1439.5, 500}, kLeft},
                                           ContainingCase{"topEdgeOfMain", {500, 900}, std::nullopt},
                                           ContainingCase{"rightEdgeOfAll", {3360, 10}, std::nullopt},
                                           ContainingCase{"bottomEdgeOfUpper", {-1, 900}, kAboveLeft}),
                         [](const auto& row) { return row.param.name; });

TEST(NearestScreen, PicksTheClosestAndOnTiesTheEarlier) {
    const Display a = plainDisplay({0, 0, 100, 100});
    const Display b = plainDisplay({200, 0, 100, 100});
    EXPECT_EQ(WindowPlacement::nearestScreen({a, b}, {150, 50}), a);
    EXPECT_EQ(WindowPlacement::nearestScreen({b, a}, {150, 50}), b);
    EXPECT_EQ(WindowPlacement::nearestScreen({a, b}, {151, 50}), b);
    EXPECT_EQ(WindowPlacement::nearestScreen({kLeft, kRight}, {1500, -10}), kRight);
    EXPECT_EQ(WindowPlacement::nearestScreen({kRight}, {-5000, -5000}), kRight);
}

TEST(PointerScreen, FallsBackToTheNearestWhenThePointerIsOnNone) {
    EXPECT_EQ(WindowPlacement::pointerScreen({kLeft, kRight}, {2000, 500}), kRight);
    EXPECT_EQ(WindowPlacement::pointerScreen({kLeft, kRight}, {2000, 1070}), kRight);
    EXPECT_EQ(WindowPlacement::pointerScreen({kLeft, kRight}, {700, 1000}), kLeft);
}

TEST(ScreenHolding, IsTheDisplayWithTheLargestShareOrNone) {
    EXPECT_EQ(WindowPlacement::screenHolding({kLeft, kRight}, {1400, 100, 196, 144}), kRight);
    EXPECT_EQ(WindowPlacement::screenHolding({kLeft, kRight}, {1340, 100, 196, 144}), kLeft);
    EXPECT_EQ(WindowPlacement::screenHolding({kLeft, kRight}, {3400, 100, 196, 144}), std::nullopt);
}

}  // namespace
