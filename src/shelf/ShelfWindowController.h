#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "model/Scheduler.h"
#include "shelf/DesktopMotionSetting.h"
#include "shelf/DisplayEnvironment.h"
#include "shelf/ShelfPanelSurface.h"
#include "shelf/ShelfPresentation.h"

namespace mosswick {

class Preferences;
enum class Preference;
class ShelfStore;

// The one place that puts the shelf on screen or takes it away. Triggers call its transitions,
// which change the reasons in `presentation()` and apply them; the controller shows, hides, places
// and animates the panel accordingly, and keeps it placed as preferences, the tile count and the
// displays change. Main thread only.
class ShelfWindowController {
public:
    static constexpr double kSlideDistance = 214;
    static constexpr double kSlideInDuration = 0.26;
    static constexpr double kSlideOutDuration = 0.2;
    static constexpr double kMoveDuration = 0.22;
    static constexpr double kLingerMargin = 8;
    static constexpr double kLookAgainDelay = 0.5;
    static constexpr double kPreviewDuration = 1.8;
    static constexpr double kDragEndedDelay = 0.3;
    static constexpr double kTargetLeftDelay = 0.4;
    // Where drags are seen only as they start (KWin): the strip that stands in for the shelf.
    static constexpr double kStripWidth = 4;
    static constexpr double kStripLifetime = 6;
    // How long a shelf brought up by such a drag stays after the drag left it: nothing tells
    // whether it ended elsewhere or comes back.
    static constexpr double kUnseenDragEndDelay = 4;

    // Makes the panel, first placed at the given frame; called on the first show.
    using PanelFactory = std::function<std::unique_ptr<ShelfPanelSurface>(const ScreenRect& frame)>;

    struct Services {
        Preferences& preferences;
        ShelfStore& store;
        Scheduler& scheduler;
        DisplayEnvironment& displays;
        DesktopMotionSetting& desktopMotion;
        PanelFactory makePanel;
    };

    explicit ShelfWindowController(Services services);
    ~ShelfWindowController();
    ShelfWindowController(const ShelfWindowController&) = delete;
    ShelfWindowController& operator=(const ShelfWindowController&) = delete;

    // The process-wide controller, installed at start-up (it needs the desktop's backends).
    static ShelfWindowController& shared();
    static void setShared(ShelfWindowController* controller);

    // Why the shelf is up or away; changed only through the transitions below.
    const ShelfPresentation& presentation() const { return presentation_; }

    // Re-evaluates after `afterDelay` seconds (0: now). A newer request replaces a pending one.
    void applyPresentation(bool animated, double afterDelay);

    // The transitions.
    void toggle();
    // At start-up: hidden, with the restored shelf's content noted.
    void resetToHidden();
    void summon();
    // The shelf, when it is up, takes the keyboard focus: after the shortcut brought it up.
    void focusShelf();
    void escape();
    void dragBegan();
    void dragReachedEdge();
    void dragEnded();
    // A drag began whose types cannot be read from here, and whose end will not be seen. A slim
    // strip stands at the shelf's edge, where drags can reach it; it grows into the shelf when a
    // drag that would bring the shelf up enters it and goes away when another does, or when none
    // came for `kStripLifetime`.
    void unreadableDragBegan();
    bool isStripShown() const { return stripShown_; }
    // Shows where and how big the shelf will be after a position or size was picked.
    void previewPlacement();
    // Ends a preview without re-evaluating.
    void cancelPreview();
    // Before a drag under the at-pointer trigger: the next show opens beside the pointer.
    void anchorToPointerIfAppearing();
    // Where the pointer's position is current only over our own windows and stale elsewhere, above
    // all during other programs' drags (XWayland): a drag under the at-pointer trigger opens the
    // shelf at its edge (beside an old position is beside nothing the user looks at), and a shelf
    // going away does not wait for the pointer to leave it (the position last seen over it would
    // keep it up for good).
    void setPointerAlwaysKnown(bool known) { pointerAlwaysKnown_ = known; }
    // Makes the panel now, if it is not made yet, and puts it away: a panel that exists before a
    // drag begins is one every drag source can find once it slides in.
    void standBy();
    // Makes a new panel and re-applies without animation.
    void rebuildPanel();

    // Considered shown from the start of a slide-in until the start of a slide-out.
    bool isShown() const { return isShown_; }
    qint64 transitionToken() const { return transitionToken_; }
    std::optional<ScreenPoint> cursorAnchor() const { return cursorAnchor_; }
    ShelfPanelSurface* panel() const { return panel_.get(); }

private:
    void makePanelIfNeeded();
    void show(bool animated);
    void hide(bool animated);
    void reconcile(bool animated);
    void setFrame(const ScreenRect& frame, bool animated);
    ScreenRect targetFrame(const Display& display) const;
    Display pointerDisplay() const;
    qint64 tileCount() const;
    bool mayAnimate() const;
    double outwards() const;
    void placeAgainIfShown(bool animated);
    void targetChanged(bool targeted);
    ScreenRect stripFrame(const Display& display) const;
    void growFromStrip();
    void withdrawStrip();

    void observePreferences();
    void preferenceChanged(Preference preference);
    void restored();
    void itemsChanged();
    // Preference and store changes take effect on a later turn of the main loop, never inside the
    // setter that caused them.
    void deliverLater(std::function<void()> effect);

    Preferences& preferences_;
    ShelfStore& store_;
    Scheduler& scheduler_;
    DisplayEnvironment& displays_;
    DesktopMotionSetting& desktopMotion_;
    PanelFactory makePanel_;
    bool pointerAlwaysKnown_ = true;

    std::unique_ptr<ShelfPanelSurface> panel_;
    bool isShown_ = false;
    ShelfPresentation presentation_;
    ScheduledTask hideWorkItem_;
    ScheduledTask previewWorkItem_;
    std::optional<ScreenPoint> cursorAnchor_;
    qint64 transitionToken_ = 0;
    bool stripShown_ = false;
    ScheduledTask stripWorkItem_;
    // Set while the shelf is up for a drag whose end cannot be seen.
    bool holdsUnseenDrag_ = false;
    ScheduledTask unseenDragEndWorkItem_;

    QObject observations_;
    std::vector<ScheduledTask> deliveries_;
    bool lastHideWhenEmpty_ = false;
    bool lastHasContent_ = false;
    qint64 lastTileCount_ = 0;
    // Lets animation completions tell whether the controller still exists.
    std::shared_ptr<int> alive_ = std::make_shared<int>(0);
};

}  // namespace mosswick
