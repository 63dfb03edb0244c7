#include "triggers/DragMonitor.h"

#include "ingest/PasteboardTypes.h"
#include "model/Preferences.h"
#include "shelf/WindowPlacement.h"
#include "triggers/DummyDesktopProbe.h"
#include "triggers/IgnoredApplications.h"

namespace mosswick {

namespace {

DragMonitor* installed = nullptr;

// Before start-up installs the real one: no display, so no edge.
class NoDisplays final : public DisplayEnvironment {
public:
    std::vector<Display> displays() const override { return {}; }
    ScreenPoint pointerLocation() const override { return {}; }
};

}  // namespace

DragMonitor::DragMonitor(DesktopProbe& probe, DisplayEnvironment& displays, Scheduler& scheduler,
                         Preferences& preferences)
    : probe_(probe),
      displays_(displays),
      scheduler_(scheduler),
      preferences_(preferences),
      lastChangeCount_(probe.dragChangeCount()),
      unseenEnd_(scheduler, [this] { settleGesture(); }) {}

DragMonitor::~DragMonitor() {
    if (started_) probe_.watch({});
    if (installed == this) installed = nullptr;
}

DragMonitor& DragMonitor::shared() {
    if (!installed) {
        static DummyDesktopProbe nothingToSee;
        static NoDisplays noDisplays;
        static DragMonitor fallback(nothingToSee, noDisplays, Scheduler::shared(), Preferences::shared());
        installed = &fallback;
    }
    return *installed;
}

void DragMonitor::setShared(DragMonitor* monitor) { installed = monitor; }

void DragMonitor::setInstalledApplications(InstalledApplications* applications) {
    installedApplications_ = applications;
}

void DragMonitor::shelfTargetChanged(bool targeted) {
    if (isDragging_) unseenEnd_.overShelf(targeted);
}

void DragMonitor::droppedOnShelf() {
    if (isDragging_) unseenEnd_.dropped();
}

void DragMonitor::start() {
    if (started_) return;
    started_ = true;
    lastChangeCount_ = probe_.dragChangeCount();
    pendingChange_.reset();
    if (installedApplications_ && !preferences_.ignoredApplications().isEmpty())
        installedApplications_->prepare();
    probe_.watch([this](DesktopProbe::Event event) { handle(event); });
}

void DragMonitor::stop() {
    if (!started_) return;
    started_ = false;
    probe_.watch({});
    pollTimer_.cancel();
    unseenEnd_.forget();
    isDragging_ = false;
    pendingChange_.reset();
}

void DragMonitor::handle(DesktopProbe::Event event) {
    switch (event) {
        case DesktopProbe::Event::leftMouseDown:
            startPolling();
            break;
        case DesktopProbe::Event::leftMouseUp:
            settleGesture();
            break;
        case DesktopProbe::Event::leftMouseDragged:
            evaluate();
            break;
        // Looking at once, rather than at the next tick, is what lets the shelf arrive while the
        // drag is still leaving its source.
        case DesktopProbe::Event::dragPasteboardChanged:
            evaluate();
            break;
    }
}

void DragMonitor::startPolling() {
    if (pollTimer_.isPending()) return;
    pollTimer_ = scheduler_.after(kPollInterval, [this] { tick(); });
}

void DragMonitor::tick() {
    // The timer repeats by scheduling its next run before acting, so settleGesture() can stop it.
    pollTimer_ = scheduler_.after(kPollInterval, [this] { tick(); });
    if (probe_.isLeftButtonDown())
        evaluate();
    else
        settleGesture();
}

void DragMonitor::evaluate() {
    const qint64 changeCount = probe_.dragChangeCount();
    if (isDragging_) {
        if (sight_.followsPointer || changeCount == lastChangeCount_) {
            checkEdgeProximity();
            return;
        }
        // A new drag has begun, so the one whose end went unseen is over.
        endDrag();
    }
    if (changeCount == lastChangeCount_) return;
    if (sight_.followsPointer && !probe_.isLeftButtonDown()) {
        // Put there by a drag that has already ended.
        lastChangeCount_ = changeCount;
        pendingChange_.reset();
        return;
    }
    if (!sight_.readsTypes) {
        lastChangeCount_ = changeCount;
        pendingChange_.reset();
        if (probe_.isShiftDown() || !shouldReactToCurrentApp()) return;
        onUnreadableDragBegan();
        return;
    }
    if (!carriesSomethingShelvable()) {
        holdForRestaging(changeCount);
        return;
    }
    lastChangeCount_ = changeCount;
    pendingChange_.reset();
    // The change is consumed either way: Shift or an ignored program keeps the shelf away for the
    // whole of this drag, even if Shift is let go later.
    if (probe_.isShiftDown() || !shouldReactToCurrentApp()) return;
    isDragging_ = true;
    hasReportedEdge_ = false;
    if (!sight_.followsPointer) {
        // Polling would find the button up and end the drag at once. Nor can the pointer be
        // followed to the edge: the edge trigger brings the shelf up at its edge now.
        unseenEnd_.began();
        onDragBegan();
        if (isDragging_ && !hasReportedEdge_) {
            hasReportedEdge_ = true;
            onDragReachedEdge();
        }
        return;
    }
    startPolling();
    onDragBegan();
}

void DragMonitor::holdForRestaging(qint64 changeCount) {
    // Some sources fill the pasteboard in steps, so a change without anything shelvable yet gets a
    // short grace before it is written off.
    if (pendingChange_ && pendingChange_->changeCount == changeCount) {
        if (scheduler_.now() - pendingChange_->firstSeen >= kStagingGrace) {
            lastChangeCount_ = changeCount;
            pendingChange_.reset();
        }
        return;
    }
    pendingChange_ = PendingChange{changeCount, scheduler_.now()};
}

void DragMonitor::checkEdgeProximity() {
    if (hasReportedEdge_) return;
    const std::vector<Display> displays = displays_.displays();
    if (displays.empty()) return;
    // Points, as the shelf measures everything: on a display scaled twice the edge is as near to
    // the hand as on one that is not.
    const ScreenPoint pointer = displays_.pointerLocation();
    // Between displays of different heights the pointer can be on none: the nearest one's edge
    // is the one it is heading for.
    const ScreenRect frame = WindowPlacement::pointerScreen(displays, pointer).frame;
    const double distance = WindowPlacement::isLeftSide(preferences_.position()) ? pointer.x - frame.minX()
                                                                                 : frame.maxX() - pointer.x;
    if (distance > kEdgeThreshold) return;
    hasReportedEdge_ = true;
    onDragReachedEdge();
}

void DragMonitor::settleGesture() {
    if (isDragging_) endDrag();
    pollTimer_.cancel();
    lastChangeCount_ = probe_.dragChangeCount();
    pendingChange_.reset();
}

void DragMonitor::endDrag() {
    isDragging_ = false;
    hasReportedEdge_ = false;
    unseenEnd_.forget();
    onDragEnded();
}

bool DragMonitor::carriesSomethingShelvable() { return PasteboardTypes::bringsShelfUp(probe_.dragTypes()); }

bool DragMonitor::shouldReactToCurrentApp() {
    const QStringList& ignored = preferences_.ignoredApplications();
    if (ignored.isEmpty()) return true;
    static NoInstalledApplications noneKnown;
    return !IgnoredApplications::includes(ignored, probe_.frontmostApplication(),
                                          installedApplications_ ? *installedApplications_ : noneKnown);
}

}  // namespace mosswick
