// What the panels' struts leave of each monitor, worked out for a table of layouts. Reading them
// live, as panels come and go, is shown by the desktop test shelf_workarea.
#include <gtest/gtest.h>

#include <vector>

#include "platform/x11/X11WorkArea.h"

namespace mosswick {
namespace {

using Strut = X11WorkArea::Strut;

// Two monitors with their tops aligned, as xrandr lays them side by side: the root is 2304x800.
const QSize kRoot(2304, 800);
const QRect kFirst(0, 0, 1280, 800);
const QRect kSecond(1280, 0, 1024, 768);

Strut bottomStrut(quint32 rows, quint32 firstColumn, quint32 lastColumn) {
    return {0, 0, 0, rows, 0, 0, 0, 0, 0, 0, firstColumn, lastColumn};
}

struct Layout {
    const char* name;
    QRect monitor;
    QSize root;
    std::vector<Strut> struts;
    QRect usable;
};

class X11WorkAreaLayout : public ::testing::TestWithParam<Layout> {};

TEST_P(X11WorkAreaLayout, LeavesWhatThePanelsDoNotReserve) {
    const Layout& layout = GetParam();
    EXPECT_EQ(X11WorkArea::usableArea(layout.monitor, layout.root, layout.struts), layout.usable);
}

const Layout kLayouts[] = {
    {"noPanel", kSecond, kRoot, {}, kSecond},
    // 40 px on the shorter monitor: 32 rows of the root lie below it, so 72 are reserved.
    {"bottomPanelOnItsMonitor", kSecond, kRoot, {bottomStrut(72, 1280, 2303)}, QRect(1280, 0, 1024, 728)},
    {"bottomPanelOfTheOtherMonitor", kFirst, kRoot, {bottomStrut(72, 1280, 2303)}, kFirst},
    {"bottomPanelOnTheTallerMonitor", kFirst, kRoot, {bottomStrut(40, 0, 1279)}, QRect(0, 0, 1280, 760)},
    {"tallerMonitorsPanelBelowTheShorter", kSecond, kRoot, {bottomStrut(40, 0, 1279)}, kSecond},
    // Counted from the root's left edge, it covers the whole first monitor: it is the second's.
    {"leftPanelOfTheSecondMonitor", kFirst, kRoot, {{1330, 0, 0, 0, 0, 767, 0, 0, 0, 0, 0, 0}}, kFirst},
    {"leftPanelOnItsMonitor",
     kSecond,
     kRoot,
     {{1330, 0, 0, 0, 0, 767, 0, 0, 0, 0, 0, 0}},
     QRect(1330, 0, 974, 768)},
    {"rightPanelOfTheFirstMonitor",
     kFirst,
     kRoot,
     {{0, 1074, 0, 0, 0, 0, 0, 799, 0, 0, 0, 0}},
     QRect(0, 0, 1230, 800)},
    {"topPanelOnBoth",
     kSecond,
     kRoot,
     {{0, 0, 24, 0, 0, 0, 0, 0, 0, 2303, 0, 0}},
     QRect(1280, 24, 1024, 744)},
    {"theDeeperOfTwoPanelsOnOneEdge",
     kFirst,
     kRoot,
     {bottomStrut(30, 0, 1279), bottomStrut(50, 0, 1279)},
     QRect(0, 0, 1280, 750)},
    {"panelsLeavingNothingAreIgnored",
     kFirst,
     kRoot,
     {{1000, 1604, 0, 0, 0, 799, 0, 799, 0, 0, 0, 0}},
     kFirst},
};

INSTANTIATE_TEST_SUITE_P(Table, X11WorkAreaLayout, ::testing::ValuesIn(kLayouts),
                         [](const ::testing::TestParamInfo<Layout>& row) { return row.param.name; });

}  // namespace
}  // namespace mosswick
