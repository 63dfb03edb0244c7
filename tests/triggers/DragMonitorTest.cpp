#include <gtest/gtest.h>

#include <QStringList>

#include "model/DefaultsStore.h"
#include "model/Preferences.h"
#include "triggers/DragMonitor.h"
#include "shelf/FakeDisplayEnvironment.h"
#include "support/ManualScheduler.h"

using mosswick::DesktopProbe;
using mosswick::Display;
using mosswick::DragMonitor;
using mosswick::DragSight;
using mosswick::MemoryDefaultsStore;
using mosswick::Preferences;
using mosswick::ScreenPoint;
using mosswick::ScreenRect;
using mosswick::ShelfPosition;
using mosswick::testing::FakeDisplayEnvironment;
using mosswick::testing::ManualScheduler;

namespace {

// The desktop as a script sets it: what the mouse and the drag pasteboard are doing.
class ScriptedDesktop final : public DesktopProbe {
public:
    void watch(EventHandler handler) override { handler_ = std::move(handler); }
    qint64 dragChangeCount() override { return changeCount; }
    QStringList dragTypes() override { return types; }
    bool isLeftButtonDown() override { return buttonDown; }
    bool isShiftDown() override { return shiftDown; }
    mosswick::FrontmostApplication frontmostApplication() override { return {frontmost, {}}; }

    bool isWatched() const { return static_cast<bool>(handler_); }
    void send(Event event) {
        if (handler_) handler_(event);
    }

    qint64 changeCount = 7;
    QStringList types;
    bool buttonDown = false;
    bool shiftDown = false;
    QString frontmost = QStringLiteral("org.example.Files");

private:
    EventHandler handler_;
};

const ScreenRect kDisplay{0, 0, 1920, 1080};

class DragMonitorTest : public ::testing::Test {
protected:
    DragMonitorTest() {
        monitor.onDragBegan = [this] { events << QStringLiteral("began"); };
        monitor.onDragEnded = [this] { events << QStringLiteral("ended"); };
        monitor.onDragReachedEdge = [this] { events << QStringLiteral("edge"); };
        monitor.onUnreadableDragBegan = [this] { events << QStringLiteral("unreadable"); };
        displays.displayList = {{kDisplay, kDisplay}};
        displays.pointer = {500, 500};
        preferences.setPosition(ShelfPosition::rightTop);
        preferences.setIgnoredApplications({QStringLiteral("org.example.Ignored")});
    }

    // Runs a script of space-separated steps; see the switch for their meaning.
    void run(const QString& script) {
        for (const QString& step : script.split(u' ', Qt::SkipEmptyParts)) {
            if (step.startsWith(u'+'))
                clock.advance(step.mid(1).toDouble());
            else if (step == u"down") {
                desktop.buttonDown = true;
                desktop.send(DesktopProbe::Event::leftMouseDown);
            } else if (step == u"drag")
                desktop.send(DesktopProbe::Event::leftMouseDragged);
            else if (step == u"up") {
                desktop.buttonDown = false;
                desktop.send(DesktopProbe::Event::leftMouseUp);
            } else if (step == u"lostUp")  // released without the event reaching us
                desktop.buttonDown = false;
            else if (step == u"notify")
                desktop.send(DesktopProbe::Event::dragPasteboardChanged);
            else if (step == u"file")
                putOnPasteboard({QStringLiteral("text/uri-list"), QStringLiteral("text/plain")});
            else if (step == u"looseFile")  // as some toolkits spell it
                putOnPasteboard({QStringLiteral("Text/URI-List")});
            else if (step == u"text")
                putOnPasteboard({QStringLiteral("UTF8_STRING"), QStringLiteral("text/plain")});
            else if (step == u"nothing")
                putOnPasteboard({});
            else if (step == u"addFile")  // the same change, filled in later
                desktop.types << QStringLiteral("text/uri-list");
            else if (step == u"shift")
                desktop.shiftDown = true;
            else if (step == u"unshift")
                desktop.shiftDown = false;
            else if (step == u"fromIgnored")
                desktop.frontmost = QStringLiteral("org.example.Ignored");
            else if (step == u"fromUnknown")
                desktop.frontmost.clear();
            else if (step == u"atEdge")
                displays.pointer = {kDisplay.maxX() - 6, 300};
            else if (step == u"nearEdge")
                displays.pointer = {kDisplay.maxX() - 7, 300};
            else if (step == u"over")
                monitor.shelfTargetChanged(true);
            else if (step == u"leave")
                monitor.shelfTargetChanged(false);
            else if (step == u"dropped")
                monitor.droppedOnShelf();
            else if (step == u"start")
                monitor.start();
            else if (step == u"stop")
                monitor.stop();
            else
                ADD_FAILURE() << "unknown step " << step.toStdString();
        }
    }

    void putOnPasteboard(QStringList types) {
        ++desktop.changeCount;
        desktop.types = std::move(types);
    }

    ManualScheduler clock;
    MemoryDefaultsStore store;
    Preferences preferences{store};
    ScriptedDesktop desktop;
    FakeDisplayEnvironment displays;
    DragMonitor monitor{desktop, displays, clock, preferences};
    QStringList events;
};

struct Gesture {
    const char* name;
    const char* script;
    const char* events;
};

class DragMonitorGestures : public DragMonitorTest, public ::testing::WithParamInterface<Gesture> {};

TEST_P(DragMonitorGestures, ReportsWhatTheScriptExpects) {
    const Gesture& gesture = GetParam();
    if (!QString::fromLatin1(gesture.script).startsWith(QLatin1String("stop"))) monitor.start();
    run(QString::fromLatin1(gesture.script));
    EXPECT_EQ(events.join(u' ').toStdString(), gesture.events) << gesture.script;
}

const Gesture kGestures[] = {
    // Dragging a window or selecting text leaves the drag pasteboard as it was.
    {"windowMove", "down drag drag +0.2 drag up", ""},
    {"fileDrag", "down file drag drag up", "began ended"},
    {"fileTypeSpelledLoosely", "down looseFile drag up", "began ended"},
    {"textOnly", "down text drag +0.3 drag +0.3 drag up", ""},
    {"emptyTypeList", "down nothing drag +0.1 drag up", ""},
    // The pasteboard being filled in steps: still within the grace period, then after it.
    {"restagedWithinGrace", "down nothing drag +0.2 addFile drag up", "began ended"},
    {"restagedAfterGrace", "down nothing drag +0.5 drag addFile drag +0.1 up", ""},
    {"graceCountsFromFirstSight", "down nothing drag +0.45 drag addFile drag up", "began ended"},
    // The poll timer alone finds a drag and its end, without any event from the pointer.
    {"foundByTick", "down file +0.05", "began"},
    {"endFoundByTick", "down file drag lostUp +0.05", "began ended"},
    {"noTickBeforeButtonDown", "file +1", ""},
    // A pasteboard change is looked at the moment it is announced.
    {"announcedChange", "down file notify", "began"},
    {"changeAnnouncedAfterRelease", "file notify down drag up", ""},
    {"typesArriveLater", "down nothing notify addFile notify", "began"},
    // Shift at first sight keeps the shelf away for the whole drag.
    {"shiftHeld", "down file shift drag unshift drag +0.2 up", ""},
    {"shiftPressedLater", "down file drag shift drag up", "began ended"},
    {"ignoredApplication", "fromIgnored down file drag up", ""},
    {"unknownApplication", "fromUnknown down file drag up", "began ended"},
    // The edge is reported once per drag, and only for a drag that began.
    {"edgeOnce", "down file drag nearEdge drag atEdge drag drag +0.1 up", "began edge ended"},
    {"edgeByTick", "down file drag atEdge +0.05", "began edge"},
    {"edgeWithoutDrag", "atEdge down text drag drag up", ""},
    {"edgeAgainNextDrag", "atEdge down file drag drag up down file drag drag up",
     "began edge ended began edge ended"},
    // One change, one drag: the next gesture needs a new change.
    {"changeUsedOnce", "down file drag up down drag up", "began ended"},
    {"nextDragReported", "down file drag up down file drag up", "began ended began ended"},
    // stop() ends watching without an end event; a change made while stopped is old news.
    {"stopDuringDrag", "down file drag stop up +1", "began"},
    {"changeWhileStopped", "stop file start down drag up", ""},
    {"restartAfterStop", "stop start down file drag up", "began ended"},
    // Where the button is seen, it alone ends a drag: the shelf's own events change nothing.
    {"shelfEventsIgnored", "down file drag over dropped leave +10", "began"},
};

INSTANTIATE_TEST_SUITE_P(Table, DragMonitorGestures, ::testing::ValuesIn(kGestures),
                         [](const ::testing::TestParamInfo<Gesture>& row) { return row.param.name; });

// Through XWayland: no button, no pointer, no end. Nothing presses the button in these scripts.
class DragMonitorUnseen : public DragMonitorTest, public ::testing::WithParamInterface<Gesture> {};

TEST_P(DragMonitorUnseen, ReportsWhatTheScriptExpects) {
    const Gesture& gesture = GetParam();
    monitor.setSight({false});
    monitor.start();
    run(QString::fromLatin1(gesture.script));
    EXPECT_EQ(events.join(u' ').toStdString(), gesture.events) << gesture.script;
}

const Gesture kUnseenGestures[] = {
    // A change with files is a drag; the edge cannot be watched for, so it counts as reached.
    {"fileDrag", "file notify", "began edge"},
    {"typesArriveLater", "nothing notify addFile notify", "began edge"},
    {"sameChangeOnce", "file notify notify +1 notify", "began edge"},
    {"textOnly", "text notify +20", ""},
    {"shiftStillCounts", "shift file notify", ""},
    // The end: a drop on the shelf, the next drag, a button seen again, or the time running out
    // while the drag is not over the shelf.
    {"dropOnShelf", "file notify over dropped +20", "began edge ended"},
    {"timesOut", "file notify +7.9", "began edge"},
    {"timedOut", "file notify +8", "began edge ended"},
    {"hoveringNeverTimesOut", "file notify +7 over +60", "began edge"},
    {"leavingStartsTheTimeAgain", "file notify +7 over +60 leave +7.9", "began edge"},
    {"leftAndTimedOut", "file notify over leave +8", "began edge ended"},
    {"nextFileDrag", "file notify +2 file notify", "began edge ended began edge"},
    {"nextTextDrag", "file notify +2 text notify +20", "began edge ended"},
    {"buttonSeenAgain", "file notify down up", "began edge ended"},
    {"pressFoundUp", "file notify down lostUp +0.05", "began edge ended"},
    {"stopForgetsTheTime", "file notify stop +20", "began edge"},
    {"shelfEventsWithoutDrag", "over dropped leave +20", ""},
    {"afterTheEndNothingMore", "file notify over dropped leave +20 notify", "began edge ended"},
};

INSTANTIATE_TEST_SUITE_P(Table, DragMonitorUnseen, ::testing::ValuesIn(kUnseenGestures),
                         [](const ::testing::TestParamInfo<Gesture>& row) { return row.param.name; });

TEST_F(DragMonitorTest, UnseenDragsRunNoPollTimer) {
    monitor.setSight({false});
    monitor.start();
    run("file notify");
    // Only the time-out waits.
    EXPECT_EQ(clock.pendingTimers(), 1u);
    run("over");
    EXPECT_EQ(clock.pendingTimers(), 0u);
}

TEST_F(DragMonitorTest, RunsNoTimerWhileTheButtonIsUp) {
    monitor.start();
    run("file notify +1");
    EXPECT_EQ(clock.pendingTimers(), 0u);
    run("down");
    EXPECT_EQ(clock.pendingTimers(), 1u);
    run("file drag +0.2 up");
    EXPECT_EQ(clock.pendingTimers(), 0u);
    run("down drag lostUp +0.05");
    EXPECT_EQ(clock.pendingTimers(), 0u);
    run("down file drag stop");
    EXPECT_EQ(clock.pendingTimers(), 0u);
    EXPECT_FALSE(desktop.isWatched());
    EXPECT_FALSE(monitor.isDragging());
}

TEST_F(DragMonitorTest, StartingTwiceKeepsTheFirstBaseline) {
    monitor.start();
    run("file");
    monitor.start();
    run("down drag up");
    EXPECT_EQ(events, QStringList({QStringLiteral("began"), QStringLiteral("ended")}));
}

// A display of points, whatever its scale: a 3840-pixel-wide display at x2 is 1920 wide here.
// The second display stands to the right of the main one and is taller (bottoms aligned), so
// above the main display there is a strip that belongs to no display.
const ScreenRect kTaller{1920, 0, 1280, 1440};

struct EdgeCase {
    const char* name;
    ShelfPosition position;
    std::vector<ScreenRect> displays;
    ScreenPoint pointer;
    bool reported;
};

class DragMonitorEdge : public DragMonitorTest, public ::testing::WithParamInterface<EdgeCase> {};

TEST_P(DragMonitorEdge, MeasuresInPointsFromTheShelfSide) {
    const EdgeCase& edge = GetParam();
    preferences.setPosition(edge.position);
    displays.displayList.clear();
    for (const ScreenRect& frame : edge.displays) displays.displayList.push_back({frame, frame});
    displays.pointer = edge.pointer;
    monitor.start();
    run("down file drag drag");
    EXPECT_EQ(events.contains(QStringLiteral("edge")), edge.reported);
}

const EdgeCase kEdgeCases[] = {
    {"rightAtThreshold", ShelfPosition::rightTop, {kDisplay}, {1914, 540}, true},
    {"rightJustInside", ShelfPosition::rightTop, {kDisplay}, {1913.5, 540}, false},
    {"rightAtLeftEdge", ShelfPosition::rightTop, {kDisplay}, {0.5, 540}, false},
    {"rightOnTheLastPixel", ShelfPosition::rightBottom, {kDisplay}, {1919.5, 540}, true},
    {"leftAtThreshold", ShelfPosition::leftCenter, {kDisplay}, {6, 540}, true},
    {"leftJustInside", ShelfPosition::leftBottom, {kDisplay}, {6.5, 540}, false},
    {"leftAtRightEdge", ShelfPosition::leftTop, {kDisplay}, {1919.5, 540}, false},
    // Nine device pixels from the edge of a display scaled x2 are 4.5 points: near enough.
    {"scaledTwiceNinePixelsIn", ShelfPosition::rightTop, {kDisplay}, {1915.5, 540}, true},
    {"scaledTwiceFourteenPixelsIn", ShelfPosition::rightTop, {kDisplay}, {1913, 540}, false},
    {"secondDisplayRight", ShelfPosition::rightCenter, {kDisplay, kTaller}, {3195, 700}, true},
    {"secondDisplayLeft", ShelfPosition::leftTop, {kDisplay, kTaller}, {1925, 700}, true},
    {"secondDisplayLeftInside", ShelfPosition::leftTop, {kDisplay, kTaller}, {1927, 700}, false},
    // Above the main display, beside the taller one: on no display, the nearest one counts.
    {"onNoDisplayNearestIsMain", ShelfPosition::leftTop, {kDisplay, kTaller}, {3, 1300}, true},
    {"onNoDisplayMainRightEdge", ShelfPosition::rightTop, {kDisplay, kTaller}, {100, 1300}, false},
    {"onNoDisplayNearestIsTaller", ShelfPosition::leftTop, {kDisplay, kTaller}, {1916, 1300}, true},
    {"onNoDisplayTallerFarSide", ShelfPosition::rightTop, {kDisplay, kTaller}, {1916, 1300}, false},
};

INSTANTIATE_TEST_SUITE_P(Table, DragMonitorEdge, ::testing::ValuesIn(kEdgeCases),
                         [](const ::testing::TestParamInfo<EdgeCase>& row) { return row.param.name; });

TEST_F(DragMonitorTest, NoDisplayNoEdge) {
    displays.displayList.clear();
    monitor.start();
    run("atEdge down file drag drag up");
    EXPECT_EQ(events, QStringList({QStringLiteral("began"), QStringLiteral("ended")}));
}

}  // namespace

// Under KWin a drag between Wayland programs shows only as its pasteboard change: no button and
// no types, so each change is reported once as a drag whose types are unknown.
struct SightCase {
    const char* name;
    DragSight sight;
    const char* script;
    const char* events;
};

class DragMonitorSight : public DragMonitorTest, public ::testing::WithParamInterface<SightCase> {};

TEST_P(DragMonitorSight, ReportsEachStartAndNoEnd) {
    const SightCase& c = GetParam();
    monitor.setSight(c.sight);
    monitor.start();
    run(QString::fromLatin1(c.script));
    EXPECT_EQ(events.join(u' ').toStdString(), c.events) << c.script;
    // Nothing to poll: the button would always read as up.
    EXPECT_EQ(clock.pendingTimers(), 0u);
}

constexpr DragSight kNothing{.followsPointer = false, .readsTypes = false};

const SightCase kSightCases[] = {
    {"unreadable", kNothing, "nothing notify +1", "unreadable"},
    {"unreadableEvenWithTypes", kNothing, "file notify", "unreadable"},
    {"unreadableEachChangeOnce", kNothing, "nothing notify notify nothing notify", "unreadable unreadable"},
    {"unreadableShift", kNothing, "shift nothing notify", ""},
    {"unreadableFromIgnored", kNothing, "fromIgnored nothing notify", ""},
};

INSTANTIATE_TEST_SUITE_P(Table, DragMonitorSight, ::testing::ValuesIn(kSightCases),
                         [](const ::testing::TestParamInfo<SightCase>& row) { return row.param.name; });
