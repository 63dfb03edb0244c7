#include "triggers/DragMonitor.h"

#include "model/Preferences.h"
#include "triggers/DummyDesktopProbe.h"
#include "triggers/IgnoredApplications.h"

namespace mosswick {

namespace {

DragMonitor* installed = nullptr;

bool isLeftPosition(ShelfPosition position) {
    return position == ShelfPosition::leftTop || position == ShelfPosition::leftCenter ||
           position == ShelfPosition::leftBottom;
}

}  // namespace

DragMonitor::DragMonitor(DesktopProbe& probe, Scheduler& scheduler, Preferences& preferences)
    : probe_(probe),
      scheduler_(scheduler),
      preferences_(preferences),
      lastChangeCount_(probe.dragChangeCount()) {}

DragMonitor::~DragMonitor() {
    if (started_) probe_.watch({});
    if (installed == this) installed = nullptr;
}

DragMonitor& DragMonitor::shared() {
    if (!installed) {
        static DummyDesktopProbe nothingToSee;
        static DragMonitor fallback(nothingToSee, Scheduler::shared(), Preferences::shared());
        installed = &fallback;
    }
    return *installed;
}

void DragMonitor::setShared(DragMonitor* monitor) { installed = monitor; }

void DragMonitor::setInstalledApplications(InstalledApplications* applications) {
    installedApplications_ = applications;
}

const QStringList& DragMonitor::shelvableTypes() {
    // The file URL type, the URL types browsers use for links, and X Direct Save's promise.
    static const QStringList types{QStringLiteral("text/uri-list"), QStringLiteral("text/x-moz-url"),
                                   QStringLiteral("_NETSCAPE_URL"), QStringLiteral("XdndDirectSave0")};
    return types;
}

void DragMonitor::start() {
    if (started_) return;
    started_ = true;
    lastChangeCount_ = probe_.dragChangeCount();
    pendingChange_.reset();
    probe_.watch([this](DesktopProbe::Event event) { handle(event); });
}

void DragMonitor::stop() {
    if (!started_) return;
    started_ = false;
    probe_.watch({});
    pollTimer_.cancel();
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
    if (isDragging_) {
        checkEdgeProximity();
        return;
    }
    const qint64 changeCount = probe_.dragChangeCount();
    if (changeCount == lastChangeCount_) return;
    if (!probe_.isLeftButtonDown()) {
        // Put there by a drag that has already ended.
        lastChangeCount_ = changeCount;
        pendingChange_.reset();
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
    const QPointF pointer = probe_.pointerLocation();
    const std::optional<QRectF> display = displayFrameAt(pointer);
    if (!display) return;
    const double distance = isLeftPosition(preferences_.position()) ? pointer.x() - display->left()
                                                                    : display->right() - pointer.x();
    if (distance > kEdgeThreshold) return;
    hasReportedEdge_ = true;
    onDragReachedEdge();
}

void DragMonitor::settleGesture() {
    if (isDragging_) {
        isDragging_ = false;
        hasReportedEdge_ = false;
        onDragEnded();
    }
    pollTimer_.cancel();
    lastChangeCount_ = probe_.dragChangeCount();
    pendingChange_.reset();
}

bool DragMonitor::carriesSomethingShelvable() {
    const QStringList types = probe_.dragTypes();
    for (const QString& type : shelvableTypes())
        if (types.contains(type)) return true;
    return false;
}

bool DragMonitor::shouldReactToCurrentApp() {
    const QStringList& ignored = preferences_.ignoredApplications();
    if (ignored.isEmpty()) return true;
    static NoInstalledApplications noneKnown;
    return !IgnoredApplications::includes(ignored, probe_.frontmostApplication(),
                                          installedApplications_ ? *installedApplications_ : noneKnown);
}

}  // namespace mosswick
