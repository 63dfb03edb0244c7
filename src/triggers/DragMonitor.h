#pragma once

#include <QStringList>
#include <functional>
#include <optional>

#include "model/Scheduler.h"
#include "shelf/DisplayEnvironment.h"
#include "triggers/DesktopProbe.h"
#include "triggers/DragSight.h"
#include "triggers/UnseenDragEnd.h"

namespace mosswick {

class InstalledApplications;
class Preferences;

// Watches the whole desktop for the start of a drag that the shelf could hold. Other programs'
// drags cannot be seen directly, so a drag is inferred from the left button being down while the
// drag pasteboard has changed since the last gesture; only the pasteboard's types are read, never
// its contents. Polls the pointer only between button down and up. The screen edge is measured
// in the shelf's coordinates (points), on the display the pointer is on or else the nearest.
// Where the button and the pointer cannot be followed during a drag (XWayland: see DragSight), a
// new pasteboard change with something shelvable is taken as a drag on its own, the edge counts as
// reached at once (the shelf comes at its edge when the drag starts), and the drag's end is
// decided by UnseenDragEnd from what the shelf sees of it. Main thread only.
class DragMonitor {
public:
    static constexpr double kStagingGrace = 0.5;
    static constexpr double kPollInterval = 0.05;
    static constexpr double kEdgeThreshold = 6;

    DragMonitor(DesktopProbe& probe, DisplayEnvironment& displays, Scheduler& scheduler,
                Preferences& preferences);
    ~DragMonitor();
    DragMonitor(const DragMonitor&) = delete;
    DragMonitor& operator=(const DragMonitor&) = delete;

    // The process-wide monitor; one over a probe that sees nothing unless one was installed first.
    static DragMonitor& shared();
    static void setShared(DragMonitor* monitor);

    std::function<void()> onDragBegan = [] {};
    std::function<void()> onDragEnded = [] {};
    std::function<void()> onDragReachedEdge = [] {};
    // A drag began whose types cannot be read from here (only where `DragSight::readsTypes` is
    // off): it may carry nothing the shelf takes. Its end is never reported.
    std::function<void()> onUnreadableDragBegan = [] {};

    // What this session shows of other programs' drags; a plain X server's sight until set.
    void setSight(DragSight sight) { sight_ = sight; }
    const DragSight& sight() const { return sight_; }
    // What the shelf's own window saw of a drag: it came over the shelf or left it, or dropped
    // there. Only a drag whose end cannot be seen otherwise goes by these.
    void shelfTargetChanged(bool targeted);
    void droppedOnShelf();

    // Where a window known only by its class finds its desktop-file id; none until set.
    void setInstalledApplications(InstalledApplications* applications);

    void start();
    // Ends watching without reporting the end of a drag in progress.
    void stop();

    bool isStarted() const { return started_; }
    bool isDragging() const { return isDragging_; }

private:
    struct PendingChange {
        qint64 changeCount;
        double firstSeen;
    };

    void handle(DesktopProbe::Event event);
    void startPolling();
    void tick();
    void evaluate();
    void settleGesture();
    void endDrag();
    void checkEdgeProximity();
    void holdForRestaging(qint64 changeCount);
    bool carriesSomethingShelvable();
    bool shouldReactToCurrentApp();

    DesktopProbe& probe_;
    DisplayEnvironment& displays_;
    Scheduler& scheduler_;
    Preferences& preferences_;
    bool started_ = false;
    bool isDragging_ = false;
    ScheduledTask pollTimer_;
    qint64 lastChangeCount_ = 0;
    bool hasReportedEdge_ = false;
    std::optional<PendingChange> pendingChange_;
    InstalledApplications* installedApplications_ = nullptr;
    DragSight sight_;
    UnseenDragEnd unseenEnd_;
};

}  // namespace mosswick
