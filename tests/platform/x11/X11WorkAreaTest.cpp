// What the panels' struts leave of each monitor: worked out for a table of layouts, and read
// live from a private X server where the test plays both the panel and the window manager.
#include <gtest/gtest.h>

#include <vector>

#include "platform/x11/X11Connection.h"
#include "platform/x11/X11WorkArea.h"
#include "support/EventWaiting.h"
#include "support/XvfbServer.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>

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

// Another client: a panel's window, and the window manager's client list naming it.
class PanelProgram {
public:
    explicit PanelProgram(const QByteArray& displayName) : display_(XOpenDisplay(displayName.constData())) {}
    ~PanelProgram() {
        if (display_) XCloseDisplay(display_);
    }

    bool isConnected() const { return display_ != nullptr; }

    void reserve(const Strut& strut) {
        if (!window_)
            window_ = XCreateSimpleWindow(display_, DefaultRootWindow(display_), 0, 0, 10, 10, 0, 0, 0);
        const std::vector<long> values(strut.begin(), strut.end());
        XChangeProperty(display_, window_, XInternAtom(display_, "_NET_WM_STRUT_PARTIAL", False), XA_CARDINAL,
                        32, PropModeReplace, reinterpret_cast<const unsigned char*>(values.data()), 12);
        XSync(display_, False);
    }

    void listClients(bool withPanel) {
        const long windows[] = {static_cast<long>(window_)};
        XChangeProperty(display_, DefaultRootWindow(display_),
                        XInternAtom(display_, "_NET_CLIENT_LIST", False), XA_WINDOW, 32, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(windows), withPanel ? 1 : 0);
        XSync(display_, False);
    }

    QRect root() const {
        return QRect(0, 0, DisplayWidth(display_, DefaultScreen(display_)),
                     DisplayHeight(display_, DefaultScreen(display_)));
    }

private:
    Display* display_;
    Window window_ = 0;
};

TEST(X11WorkAreaLive, FollowsPanelsAsTheyComeChangeAndGo) {
    testing::XvfbServer server;
    if (!server.isRunning()) GTEST_SKIP() << server.problem().toStdString();
    auto connection = X11Connection::open(server.displayName());
    ASSERT_TRUE(connection);
    PanelProgram panel(server.displayName());
    ASSERT_TRUE(panel.isConnected());
    const QRect root = panel.root();

    X11WorkArea workArea(*connection);
    int changes = 0;
    workArea.onChanged = [&] { ++changes; };
    EXPECT_EQ(workArea.usableArea(root), root);

    const auto lastColumn = static_cast<quint32>(root.width() - 1);
    panel.reserve(bottomStrut(40, 0, lastColumn));
    panel.listClients(true);
    ASSERT_TRUE(testing::waitUntil([&] { return changes == 1; }));
    EXPECT_EQ(workArea.usableArea(root), root.adjusted(0, 0, 0, -40));

    panel.reserve(bottomStrut(60, 0, lastColumn));
    ASSERT_TRUE(testing::waitUntil([&] { return changes == 2; }));
    EXPECT_EQ(workArea.usableArea(root), root.adjusted(0, 0, 0, -60));

    panel.listClients(false);
    ASSERT_TRUE(testing::waitUntil([&] { return changes == 3; }));
    EXPECT_EQ(workArea.usableArea(root), root);

    // A property nobody reads changes nothing and costs no notice.
    panel.listClients(false);
    testing::keepRunning(100);
    EXPECT_EQ(changes, 3);
}

}  // namespace
}  // namespace mosswick
