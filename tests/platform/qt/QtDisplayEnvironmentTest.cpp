// The displays as Qt reports them on two screens scaled x2 (the offscreen platform with two
// screens of 1600x1200 device pixels side by side, scaled by QT_SCALE_FACTOR as on X11):
// everything comes out in points, and the panels' reservations, known in device pixels, are
// scaled to match.
#include <gtest/gtest.h>

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

#include "platform/qt/QtDisplayEnvironment.h"

namespace mosswick {
namespace {

// A bottom panel of 80 device pixels on the second monitor.
class PanelOnTheSecond final : public MonitorWorkAreas {
public:
    std::optional<QRect> usableArea(const QRect& monitor) const override {
        asked.push_back(monitor);
        if (monitor.left() < 1600) return monitor;
        return monitor.adjusted(0, 0, 0, -80);
    }
    mutable std::vector<QRect> asked;
};

class ScaledScreens : public ::testing::Test {
protected:
    void SetUp() override {
        if (QGuiApplication::screens().size() != 2 ||
            QGuiApplication::primaryScreen()->devicePixelRatio() != 2)
            GTEST_SKIP() << "the offscreen platform did not take two-screens.json";
    }
};

TEST_F(ScaledScreens, PanelsOnOneOfSeveralScreensAreLeftOutInPoints) {
    auto areas = std::make_unique<PanelOnTheSecond>();
    PanelOnTheSecond& panel = *areas;
    QtDisplayEnvironment environment(std::move(areas));
    int notices = 0;
    environment.onParametersChanged = [&] { ++notices; };

    const std::vector<Display> displays = environment.displays();
    ASSERT_EQ(displays.size(), 2u);
    // Qt keeps a screen's corner in device pixels and halves its size.
    EXPECT_EQ(panel.asked, (std::vector<QRect>{{0, 0, 1600, 1200}, {1600, 0, 1600, 1200}}));
    EXPECT_EQ(displays[0].frame, (ScreenRect{0, 0, 800, 600}));
    EXPECT_EQ(displays[0].visibleFrame, displays[0].frame);
    EXPECT_EQ(displays[1].frame, (ScreenRect{1600, 0, 800, 600}));
    EXPECT_EQ(displays[1].visibleFrame, (ScreenRect{1600, 40, 800, 560}));

    panel.onChanged();
    EXPECT_EQ(notices, 1);
}

TEST_F(ScaledScreens, ThePointerIsInPoints) {
    QtDisplayEnvironment environment;
    QCursor::setPos(QPoint(795, 300));
    EXPECT_EQ(environment.pointerLocation(), (ScreenPoint{795.5, 299.5}));
}

}  // namespace
}  // namespace mosswick

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" MOSSWICK_TWO_SCREENS);
    qputenv("QT_SCALE_FACTOR", "2");
    QGuiApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
