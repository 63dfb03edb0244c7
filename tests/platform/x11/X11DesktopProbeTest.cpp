// The X11 drag probe against a private X server: the mouse driven by xdotool, drag sources
// reduced to their selection.
#include <gtest/gtest.h>

#include <QStringList>
#include <algorithm>
#include <memory>
#include <vector>

#include "platform/x11/X11Connection.h"
#include "platform/x11/X11DesktopProbe.h"
#include "support/EventWaiting.h"
#include "FakeDragSource.h"
#include "support/XvfbServer.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>

using mosswick::DesktopProbe;
using mosswick::X11Connection;
using mosswick::X11DesktopProbe;
using mosswick::testing::FakeDragSource;
using mosswick::testing::keepRunning;
using mosswick::testing::waitUntil;
using mosswick::testing::XvfbServer;

namespace {

const QString kUriList = QStringLiteral("text/uri-list");
const QString kDirectSave = QStringLiteral("XdndDirectSave0");

class X11DesktopProbeTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!server.isRunning()) GTEST_SKIP() << server.problem().toStdString();
        connection = X11Connection::open(server.displayName());
        ASSERT_TRUE(connection);
        probe = X11DesktopProbe::create(*connection);
        ASSERT_TRUE(probe) << "the server lacks XFixes or XInput 2";
        ASSERT_TRUE(mouse({QStringLiteral("mousemove"), QStringLiteral("200"), QStringLiteral("200")}));
    }

    void watch() {
        probe->watch([this](DesktopProbe::Event event) { events.push_back(event); });
    }
    bool mouse(const QStringList& arguments) { return server.xdotool(arguments); }
    bool saw(DesktopProbe::Event event) const { return std::count(events.begin(), events.end(), event) > 0; }

    XvfbServer server;
    std::unique_ptr<X11Connection> connection;
    std::unique_ptr<X11DesktopProbe> probe;
    std::vector<DesktopProbe::Event> events;
};

TEST_F(X11DesktopProbeTest, SeesTheLeftButtonAndMotionOnlyWhileItIsDown) {
    watch();
    ASSERT_TRUE(mouse({QStringLiteral("mousemove_relative"), QStringLiteral("30"), QStringLiteral("0")}));
    keepRunning(100);
    EXPECT_FALSE(saw(DesktopProbe::Event::leftMouseDragged));

    ASSERT_TRUE(mouse({QStringLiteral("mousedown"), QStringLiteral("1")}));
    EXPECT_TRUE(waitUntil([&] { return saw(DesktopProbe::Event::leftMouseDown); }));
    EXPECT_TRUE(probe->isLeftButtonDown());
    ASSERT_TRUE(mouse({QStringLiteral("mousemove_relative"), QStringLiteral("40"), QStringLiteral("5")}));
    EXPECT_TRUE(waitUntil([&] { return saw(DesktopProbe::Event::leftMouseDragged); }));

    ASSERT_TRUE(mouse({QStringLiteral("mouseup"), QStringLiteral("1")}));
    EXPECT_TRUE(waitUntil([&] { return saw(DesktopProbe::Event::leftMouseUp); }));
    EXPECT_FALSE(probe->isLeftButtonDown());

    // Other buttons are not the drag button.
    events.clear();
    ASSERT_TRUE(mouse({QStringLiteral("click"), QStringLiteral("3")}));
    keepRunning(100);
    EXPECT_TRUE(events.empty());
}

TEST_F(X11DesktopProbeTest, FollowsTheDragWhileItsSourceHoldsThePointer) {
    watch();
    ASSERT_TRUE(mouse({QStringLiteral("mousedown"), QStringLiteral("1")}));
    EXPECT_TRUE(waitUntil([&] { return saw(DesktopProbe::Event::leftMouseDown); }));
    FakeDragSource source(server.displayName(), FakeDragSource::Style::refusesTargets, {kUriList});
    ASSERT_TRUE(source.grabPointer());
    ASSERT_TRUE(mouse({QStringLiteral("mousemove_relative"), QStringLiteral("40"), QStringLiteral("5")}));
    EXPECT_TRUE(waitUntil([&] { return saw(DesktopProbe::Event::leftMouseDragged); }));
    ASSERT_TRUE(mouse({QStringLiteral("mouseup"), QStringLiteral("1")}));
    EXPECT_TRUE(waitUntil([&] { return saw(DesktopProbe::Event::leftMouseUp); }));
}

TEST_F(X11DesktopProbeTest, TypesFromTargetsWhenTheSourceAnswersIt) {
    watch();
    FakeDragSource source(server.displayName(), FakeDragSource::Style::answersTargets,
                          {kUriList, QStringLiteral("text/plain")});
    source.takeSelection();
    EXPECT_TRUE(waitUntil([&] { return !probe->dragTypes().isEmpty(); }, 5000, [&] { source.pump(); }));
    EXPECT_EQ(probe->dragChangeCount(), 1);
    EXPECT_EQ(probe->dragTypes(), QStringList({kUriList, QStringLiteral("text/plain")}));
    EXPECT_EQ(source.requestedTargets(), QStringList{QStringLiteral("TARGETS")});
    // Told of the change, and again once its types were known.
    EXPECT_EQ(std::count(events.begin(), events.end(), DesktopProbe::Event::dragPasteboardChanged), 2);
}

TEST_F(X11DesktopProbeTest, UriListProbeAtTheChangeTimeWhenTargetsIsRefused) {
    watch();
    FakeDragSource source(server.displayName(), FakeDragSource::Style::refusesTargets,
                          {kDirectSave, kUriList});
    source.takeSelection();
    EXPECT_TRUE(waitUntil([&] { return !probe->dragTypes().isEmpty(); }, 5000, [&] { source.pump(); }));
    EXPECT_EQ(probe->dragTypes(), QStringList{kUriList});
    EXPECT_EQ(source.requestedTargets(), QStringList({QStringLiteral("TARGETS"), kUriList}));
    for (const auto& request : source.requests()) EXPECT_NE(request.time, 0ul) << "asked at CurrentTime";
}

TEST_F(X11DesktopProbeTest, APromiseIsNeverConvertedToFindOut) {
    watch();
    FakeDragSource source(server.displayName(), FakeDragSource::Style::refusesTargets, {kDirectSave});
    source.takeSelection();
    EXPECT_TRUE(waitUntil([&] { return source.requests().size() >= 2; }, 5000, [&] { source.pump(); }));
    keepRunning(100, [&] { source.pump(); });
    EXPECT_EQ(source.requestedTargets(), QStringList({QStringLiteral("TARGETS"), kUriList}));
    EXPECT_TRUE(probe->dragTypes().isEmpty());
}

TEST_F(X11DesktopProbeTest, EachNewOwnershipIsAChangeButNothingIsAskedUnwatched) {
    FakeDragSource source(server.displayName(), FakeDragSource::Style::answersTargets, {kUriList});
    source.takeSelection();
    EXPECT_TRUE(waitUntil([&] { return probe->dragChangeCount() == 1; }, 5000, [&] { source.pump(); }));
    source.takeSelection();
    EXPECT_TRUE(waitUntil([&] { return probe->dragChangeCount() == 2; }, 5000, [&] { source.pump(); }));
    keepRunning(100, [&] { source.pump(); });
    EXPECT_TRUE(source.requests().empty());
    EXPECT_TRUE(probe->dragTypes().isEmpty());
}

// Sets the root window's active window, as a window manager would, to a fresh window with the
// given properties.
class ActiveWindow {
public:
    explicit ActiveWindow(const QByteArray& displayName) : display_(XOpenDisplay(displayName.constData())) {
        window_ = XCreateSimpleWindow(display_, DefaultRootWindow(display_), 0, 0, 10, 10, 0, 0, 0);
        XChangeProperty(display_, DefaultRootWindow(display_),
                        XInternAtom(display_, "_NET_ACTIVE_WINDOW", False), XA_WINDOW, 32, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(&window_), 1);
    }
    ~ActiveWindow() { XCloseDisplay(display_); }

    void set(const char* property, const QByteArray& value) {
        XChangeProperty(display_, window_, XInternAtom(display_, property, False),
                        XInternAtom(display_, "UTF8_STRING", False), 8, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(value.constData()),
                        static_cast<int>(value.size()));
        XSync(display_, False);
    }

private:
    Display* display_;
    Window window_ = 0;
};

TEST_F(X11DesktopProbeTest, FrontmostApplicationByDesktopIdAndWindowClass) {
    auto names = [this] {
        const mosswick::FrontmostApplication app = probe->frontmostApplication();
        return (app.applicationId + QLatin1Char('|') + app.windowClass).toStdString();
    };
    EXPECT_EQ(names(), "|");  // no window manager, no active window
    ActiveWindow active(server.displayName());
    active.set("WM_CLASS", QByteArray("files\0Files\0", 12));
    EXPECT_EQ(names(), "|Files");
    active.set("_KDE_NET_WM_DESKTOP_FILE", "org.kde.dolphin");
    EXPECT_EQ(names(), "org.kde.dolphin|Files");
    active.set("_GTK_APPLICATION_ID", "org.gnome.Nautilus.desktop");
    EXPECT_EQ(names(), "org.gnome.Nautilus|Files");
}

}  // namespace
