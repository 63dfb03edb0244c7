#include <gtest/gtest.h>

#include "support/GeometryPrinting.h"
#include "shelf/ScreenCoordinates.h"
#include "shelf/WindowPlacement.h"

using namespace mosswick;

namespace {

struct LayoutCase {
    const char* name;
    QRect main;
    QRect geometry;
    QRect available;
    Display expected;
};

void PrintTo(const LayoutCase& row, std::ostream* os) { *os << row.name; }

class QtToScreenCoordinates : public ::testing::TestWithParam<LayoutCase> {};

TEST_P(QtToScreenCoordinates, PutsTheOriginAtTheMainDisplaysLowerLeftWithYUp) {
    const LayoutCase& c = GetParam();
    const ScreenCoordinates coordinates(c.main);
    EXPECT_EQ(coordinates.display(c.geometry, c.available), c.expected);
    EXPECT_EQ(coordinates.toQt(c.expected.frame), QRectF(c.geometry));
    EXPECT_EQ(coordinates.toQt(c.expected.visibleFrame), QRectF(c.available));
}

const QRect kMainAtOrigin(0, 0, 1920, 1080);
const QRect kMainRightOfAnother(1280, 100, 1920, 1080);

INSTANTIATE_TEST_SUITE_P(MultiScreen, QtToScreenCoordinates,
                         ::testing::Values(LayoutCase{"mainWithBottomPanel",
                                                      kMainAtOrigin,
                                                      kMainAtOrigin,
                                                      {0, 0, 1920, 1040},
                                                      {{0, 0, 1920, 1080}, {0, 40, 1920, 1040}}},
                                           LayoutCase{"rightOfMainAndRaised",
                                                      kMainAtOrigin,
                                                      {1920, -200, 1280, 1024},
                                                      {1920, -200, 1280, 1024},
                                                      {{1920, 256, 1280, 1024}, {1920, 256, 1280, 1024}}},
                                           LayoutCase{"aboveMain",
                                                      kMainAtOrigin,
                                                      {0, -1080, 1920, 1080},
                                                      {0, -1080, 1920, 1080},
                                                      {{0, 1080, 1920, 1080}, {0, 1080, 1920, 1080}}},
                                           LayoutCase{"leftOfMainWithTopBar",
                                                      kMainAtOrigin,
                                                      {-1280, 0, 1280, 1024},
                                                      {-1280, 30, 1280, 994},
                                                      {{-1280, 56, 1280, 1024}, {-1280, 56, 1280, 994}}},
                                           LayoutCase{"mainNotAtQtOrigin",
                                                      kMainRightOfAnother,
                                                      kMainRightOfAnother,
                                                      kMainRightOfAnother,
                                                      {{0, 0, 1920, 1080}, {0, 0, 1920, 1080}}},
                                           LayoutCase{"besideMainNotAtQtOrigin",
                                                      kMainRightOfAnother,
                                                      {0, 0, 1280, 1024},
                                                      {0, 0, 1280, 1024},
                                                      {{-1280, 156, 1280, 1024}, {-1280, 156, 1280, 1024}}}),
                         [](const auto& row) { return row.param.name; });

TEST(ScreenCoordinates, ThePointerStandsForTheCentreOfItsPixel) {
    const ScreenCoordinates coordinates(kMainAtOrigin);
    EXPECT_EQ(coordinates.pointerFromQt({0, 0}), (ScreenPoint{0.5, 1079.5}));
    EXPECT_EQ(coordinates.pointerFromQt({100, 1079}), (ScreenPoint{100.5, 0.5}));
}

TEST(ScreenCoordinates, APointerOnTheTopRowIsNotTakenForTheDisplayAbove) {
    const ScreenCoordinates coordinates(kMainAtOrigin);
    const Display main = coordinates.display(kMainAtOrigin, kMainAtOrigin);
    const Display above = coordinates.display({0, -1080, 1920, 1080}, {0, -1080, 1920, 1080});
    EXPECT_EQ(WindowPlacement::screen({above, main}, coordinates.pointerFromQt({500, 0})), main);
    EXPECT_EQ(WindowPlacement::screen({main, above}, coordinates.pointerFromQt({500, -1})), above);
}

}  // namespace
