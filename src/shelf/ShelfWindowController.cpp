#include "shelf/ShelfWindowController.h"

#include <algorithm>

#include "model/Logging.h"
#include "model/Preferences.h"
#include "model/ShelfStore.h"
#include "shelf/ReducedMotion.h"
#include "shelf/WindowPlacement.h"

namespace mosswick {

namespace {
ShelfWindowController* installed = nullptr;
}

ShelfWindowController::ShelfWindowController(Services services)
    : preferences_(services.preferences),
      store_(services.store),
      scheduler_(services.scheduler),
      displays_(services.displays),
      desktopMotion_(services.desktopMotion),
      makePanel_(std::move(services.makePanel)) {
    displays_.onParametersChanged = [this] { placeAgainIfShown(false); };
    observePreferences();
}

ShelfWindowController::~ShelfWindowController() {
    displays_.onParametersChanged = nullptr;
    if (installed == this) installed = nullptr;
}

ShelfWindowController& ShelfWindowController::shared() {
    if (!installed) qFatal("Mosswick: the shelf window controller is used before start-up installed it");
    return *installed;
}

void ShelfWindowController::setShared(ShelfWindowController* controller) { installed = controller; }

// --- Transitions -------------------------------------------------------------------------------

void ShelfWindowController::toggle() {
    presentation_.toggle();
    // Put away: a pending preview's end has nothing left to do.
    if (presentation_.isSuppressed) cancelPreview();
    applyPresentation(true, 0);
}

void ShelfWindowController::summon() {
    presentation_.summon();
    applyPresentation(true, 0);
}

void ShelfWindowController::focusShelf() {
    if (isShown_ && panel_) panel_->takeFocus();
}

void ShelfWindowController::escape() {
    qCDebug(lcShelf) << "escape";
    cancelPreview();
    presentation_.dismiss();
    applyPresentation(true, 0);
}

void ShelfWindowController::resetToHidden() {
    cancelPreview();
    presentation_.resetHidden(!store_.items().empty());
    applyPresentation(false, 0);
}

void ShelfWindowController::dragBegan() {
    if (!preferences_.automaticallyShow()) return;
    const ShowTrigger trigger = preferences_.showTrigger();
    if (trigger == ShowTrigger::dragToScreenEdge) return;
    presentation_.dragBegan();
    if (trigger == ShowTrigger::dragStartsAtCursor && pointerAlwaysKnown_) anchorToPointerIfAppearing();
    applyPresentation(true, 0);
}

void ShelfWindowController::dragReachedEdge() {
    if (!preferences_.automaticallyShow() || preferences_.showTrigger() != ShowTrigger::dragToScreenEdge)
        return;
    presentation_.dragBegan();
    applyPresentation(true, 0);
}

void ShelfWindowController::dragEnded() {
    presentation_.dragEnded();
    applyPresentation(true, kDragEndedDelay);
}

void ShelfWindowController::unreadableDragBegan() {
    if (!preferences_.automaticallyShow() || isShown_) return;
    makePanelIfNeeded();
    if (!stripShown_) {
        stripShown_ = true;
        ++transitionToken_;
        panel_->setAlpha(1);
        panel_->setFrame(stripFrame(pointerDisplay()));
        panel_->orderFront();
    }
    // Each new drag is one more that may come this way.
    stripWorkItem_ = scheduler_.after(kStripLifetime, [this] {
        stripWorkItem_ = {};
        withdrawStrip();
    });
}

void ShelfWindowController::previewPlacement() {
    cancelPreview();
    presentation_.startPreview();
    applyPresentation(true, 0);
    previewWorkItem_ = scheduler_.after(kPreviewDuration, [this] {
        previewWorkItem_ = {};
        presentation_.endPreview();
        applyPresentation(true, 0);
    });
}

void ShelfWindowController::cancelPreview() {
    previewWorkItem_ = {};
    presentation_.endPreview();
}

void ShelfWindowController::anchorToPointerIfAppearing() {
    if (isShown_ || cursorAnchor_) return;
    const Display display = pointerDisplay();
    const ScreenRect frame = WindowPlacement::frameAtCursor(preferences_.size(), tileCount(), display,
                                                            displays_.pointerLocation());
    cursorAnchor_ = ScreenPoint{frame.minX(), frame.maxY()};
}

void ShelfWindowController::standBy() {
    if (isShown_ || panel_) return;
    makePanelIfNeeded();
    panel_->setFrame(targetFrame(pointerDisplay()));
    panel_->orderOut();
}

void ShelfWindowController::rebuildPanel() {
    if (panel_) panel_->orderOut();
    panel_.reset();
    isShown_ = false;
    stripShown_ = false;
    applyPresentation(false, 0);
    standBy();
}

// --- Deciding ----------------------------------------------------------------------------------

void ShelfWindowController::applyPresentation(bool animated, double afterDelay) {
    hideWorkItem_ = {};
    if (afterDelay <= 0) {
        reconcile(animated);
        return;
    }
    // Dropping the handle cancels it, so a controller that is gone is never called back.
    hideWorkItem_ = scheduler_.after(afterDelay, [this, animated] { reconcile(animated); });
}

void ShelfWindowController::reconcile(bool animated) {
    presentation_.contentChanged(!store_.items().empty(), preferences_.hideWhenEmpty());
    qCDebug(lcShelf) << "reconcile: wanted" << presentation_.wantsToBeShown() << "shown" << isShown_
                     << "targeted" << store_.isTargeted();
    if (presentation_.wantsToBeShown()) {
        show(animated);
        return;
    }
    if (!isShown_) return;
    // Not from under the pointer or a hovering drag: look again until they have left.
    const ScreenRect lingerArea =
        panel_ ? panel_->frame().insetBy(-kLingerMargin, -kLingerMargin) : ScreenRect{};
    const bool pointerNear =
        pointerAlwaysKnown_ && panel_ && lingerArea.contains(displays_.pointerLocation());
    if (pointerNear || store_.isTargeted()) {
        applyPresentation(animated, kLookAgainDelay);
        return;
    }
    hide(animated);
}

// --- Moving the panel --------------------------------------------------------------------------

void ShelfWindowController::makePanelIfNeeded() {
    if (panel_) return;
    const ScreenRect frame = WindowPlacement::edgeFrame(preferences_.position(), preferences_.size(),
                                                        tileCount(), pointerDisplay());
    panel_ = makePanel_(frame);
    panel_->onTargetChange = [this](bool targeted) { targetChanged(targeted); };
    panel_->onEscape = [this] { escape(); };
    panel_->onForeignDragEntered = [this](bool bringsShelfUp) {
        if (!stripShown_) return;
        // Text and the like: the strip only stood there in case the drag brought files.
        if (bringsShelfUp)
            growFromStrip();
        else
            withdrawStrip();
    };
    panel_->setAppearance(preferences_.appearance());
}

void ShelfWindowController::show(bool animated) {
    makePanelIfNeeded();
    const ScreenRect frame = targetFrame(pointerDisplay());
    if (isShown_) {
        setFrame(frame, animated);
        return;
    }
    // Summoned over the strip: the panel is mapped already and comes in as it always does.
    stripShown_ = false;
    stripWorkItem_ = {};
    isShown_ = true;
    ++transitionToken_;
    // A shelf opened at the pointer appears in place: sliding in from the edge would make no sense.
    if (animated && mayAnimate() && !cursorAnchor_) {
        panel_->setAlpha(0);
        if (panel_->standsAside()) {
            // Already mapped: the window manager lets it come in from wherever it is put.
            panel_->setFrame(frame.offsetBy(outwards(), 0));
            panel_->orderFront();
        } else {
            // Mapped at its place first: a window manager pulls a window mapped off-screen back on.
            panel_->setFrame(frame);
            panel_->orderFront();
            panel_->setFrame(frame.offsetBy(outwards(), 0));
        }
        panel_->animate({frame, 1.0, kSlideInDuration, AnimationCurve::easeOut}, {});
    } else {
        panel_->setFrame(frame);
        panel_->setAlpha(1);
        panel_->orderFront();
    }
}

void ShelfWindowController::hide(bool animated) {
    if (!panel_ || !isShown_) return;
    isShown_ = false;
    holdsUnseenDrag_ = false;
    unseenDragEndWorkItem_ = {};
    const qint64 token = ++transitionToken_;
    cursorAnchor_.reset();
    store_.setSelection({});
    if (animated && mayAnimate()) {
        const ScreenRect target = panel_->frame().offsetBy(outwards(), 0);
        std::weak_ptr<int> alive = alive_;
        panel_->animate({target, 0.0, kSlideOutDuration, AnimationCurve::easeIn}, [this, alive, token] {
            // A show or hide since then owns the panel now.
            if (alive.expired() || transitionToken_ != token || !panel_) return;
            panel_->orderOut();
            panel_->setAlpha(1);
        });
    } else {
        panel_->orderOut();
        panel_->setAlpha(1);
    }
}

void ShelfWindowController::setFrame(const ScreenRect& frame, bool animated) {
    if (!panel_) return;
    const std::vector<Display> displays = displays_.displays();
    const std::optional<Display> target = WindowPlacement::screen(displays, frame.center());
    const std::optional<Display> current = WindowPlacement::screenHolding(displays, panel_->frame());
    const bool visible = panel_->isVisible();
    const bool changesDisplay = visible && target && (!current || *current != *target);
    if (!animated) {
        panel_->setFrame(frame);
        if (visible && !current && target) panel_->orderFront();
        return;
    }
    // Sliding across the gap between two displays would show the panel torn between them.
    if (mayAnimate() && !changesDisplay) {
        panel_->animate({frame, std::nullopt, kMoveDuration, AnimationCurve::easeOut}, {});
        return;
    }
    panel_->setFrame(frame);
    if (changesDisplay) panel_->orderFront();
}

ScreenRect ShelfWindowController::targetFrame(const Display& display) const {
    if (cursorAnchor_)
        return WindowPlacement::anchoredFrame(*cursorAnchor_, preferences_.size(), tileCount(), display);
    return WindowPlacement::edgeFrame(preferences_.position(), preferences_.size(), tileCount(), display);
}

Display ShelfWindowController::pointerDisplay() const {
    return WindowPlacement::pointerScreen(displays_.displays(), displays_.pointerLocation());
}

qint64 ShelfWindowController::tileCount() const {
    return static_cast<qint64>(ShelfStore::tiles(store_.items()).size());
}

bool ShelfWindowController::mayAnimate() const {
    return !ReducedMotion(preferences_, desktopMotion_).applies();
}

double ShelfWindowController::outwards() const {
    return WindowPlacement::isLeftSide(preferences_.position()) ? -kSlideDistance : kSlideDistance;
}

void ShelfWindowController::placeAgainIfShown(bool animated) {
    if (panel_ && isShown_) setFrame(targetFrame(pointerDisplay()), animated);
}

void ShelfWindowController::targetChanged(bool targeted) {
    store_.setTargeted(targeted);
    if (targeted) {
        // A drag hovering over the shelf must not be cut short by a pending hide.
        hideWorkItem_ = {};
        unseenDragEndWorkItem_ = {};
        return;
    }
    // Left or dropped, a drag whose end is never seen is taken as over after a while.
    if (holdsUnseenDrag_)
        unseenDragEndWorkItem_ = scheduler_.after(kUnseenDragEndDelay, [this] {
            unseenDragEndWorkItem_ = {};
            holdsUnseenDrag_ = false;
            dragEnded();
        });
    applyPresentation(true, kTargetLeftDelay);
}

// --- The strip of drags seen only as they start ------------------------------------------------

ScreenRect ShelfWindowController::stripFrame(const Display& display) const {
    // Along the whole usable edge on the shelf's side: a drag heading for the shelf meets it
    // wherever it reaches that edge.
    const ScreenRect& usable = display.visibleFrame;
    const double x =
        WindowPlacement::isLeftSide(preferences_.position()) ? usable.minX() : usable.maxX() - kStripWidth;
    return {x, usable.minY(), kStripWidth, usable.height};
}

void ShelfWindowController::growFromStrip() {
    stripShown_ = false;
    stripWorkItem_ = {};
    holdsUnseenDrag_ = true;
    presentation_.dragBegan();
    isShown_ = true;
    ++transitionToken_;
    // Grown in place, not slid in from beyond the edge: the drag is over the window, and a window
    // that left the pointer even for a moment would lose it.
    const ScreenRect frame = targetFrame(pointerDisplay());
    if (mayAnimate())
        panel_->animate({frame, 1.0, kSlideInDuration, AnimationCurve::easeOut}, {});
    else
        panel_->setFrame(frame);
}

void ShelfWindowController::withdrawStrip() {
    if (!stripShown_) return;
    stripShown_ = false;
    stripWorkItem_ = {};
    ++transitionToken_;
    if (panel_) panel_->orderOut();
}

// --- Observations ------------------------------------------------------------------------------

void ShelfWindowController::observePreferences() {
    lastHideWhenEmpty_ = preferences_.hideWhenEmpty();
    lastHasContent_ = !store_.items().empty();
    lastTileCount_ = tileCount();
    QObject::connect(&preferences_, &Preferences::changed, &observations_,
                     [this](Preference preference) { preferenceChanged(preference); });
    QObject::connect(&store_, &ShelfStore::restored, &observations_, [this] { restored(); });
    QObject::connect(&store_, &ShelfStore::itemsChanged, &observations_, [this] { itemsChanged(); });
}

void ShelfWindowController::preferenceChanged(Preference preference) {
    switch (preference) {
        case Preference::position:
        case Preference::size:
            deliverLater([this] { placeAgainIfShown(true); });
            break;
        case Preference::appearance:
            deliverLater([this] {
                if (panel_) panel_->setAppearance(preferences_.appearance());
            });
            break;
        case Preference::hideWhenEmpty:
            deliverLater([this, hideWhenEmpty = preferences_.hideWhenEmpty()] {
                if (hideWhenEmpty == lastHideWhenEmpty_) return;
                lastHideWhenEmpty_ = hideWhenEmpty;
                if (hideWhenEmpty) presentation_.emptyShelvesHide();
                applyPresentation(true, 0);
            });
            break;
        default:
            break;
    }
}

void ShelfWindowController::restored() {
    // Delivered before the itemsChanged() that comes with it, which then finds nothing new.
    deliverLater([this, hasContent = !store_.items().empty()] {
        if (hasContent == lastHasContent_) return;
        lastHasContent_ = hasContent;
        presentation_.contentRestored(hasContent);
        applyPresentation(false, 0);
    });
}

void ShelfWindowController::itemsChanged() {
    const bool hasContent = !store_.items().empty();
    const qint64 tiles = tileCount();
    deliverLater([this, hasContent, tiles] {
        if (hasContent != lastHasContent_) {
            lastHasContent_ = hasContent;
            presentation_.contentChanged(hasContent, preferences_.hideWhenEmpty());
            applyPresentation(true, 0);
        }
        if (tiles != lastTileCount_) {
            lastTileCount_ = tiles;
            if (isAdaptive(preferences_.size())) placeAgainIfShown(true);
        }
    });
}

void ShelfWindowController::deliverLater(std::function<void()> effect) {
    std::erase_if(deliveries_, [](const ScheduledTask& task) { return !task.isPending(); });
    deliveries_.push_back(scheduler_.after(0, std::move(effect)));
}

}  // namespace mosswick
