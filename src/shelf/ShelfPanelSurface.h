#pragma once

#include <functional>
#include <optional>

#include "model/PreferenceEnums.h"
#include "shelf/ScreenRect.h"

namespace mosswick {

enum class AnimationCurve { easeIn, easeOut };

// One animation of the panel: the frame, and the opacity when given, move from where they stand
// now to these values.
struct PanelAnimation {
    ScreenRect frame;
    std::optional<double> alpha;
    double duration = 0;
    AnimationCurve curve = AnimationCurve::easeOut;
};

// The shelf's floating window as the window controller drives it. The controller alone decides
// when it is mapped, where it stands and how it moves; the window itself only carries that out.
// Frames are in the shelf's screen coordinates (see ScreenPoint); the window converts them.
class ShelfPanelSurface {
public:
    virtual ~ShelfPanelSurface() = default;

    // Where the panel stands now, part-way through an animation included. Tracked by the panel,
    // not read back from the window system, which may answer stale right after mapping.
    virtual ScreenRect frame() const = 0;
    virtual bool isVisible() const = 0;
    // Hidden but mapped outside every monitor: it can come in from wherever it is put, as the
    // window manager leaves it there.
    virtual bool standsAside() const { return false; }

    // Each of these stops a running animation of the property it sets.
    virtual void setFrame(const ScreenRect& frame) = 0;
    virtual void setAlpha(double alpha) = 0;

    // Maps the panel above other windows without taking the keyboard focus.
    virtual void orderFront() = 0;
    virtual void orderOut() = 0;
    // Gives the mapped panel the keyboard focus, as a click on it would; only for a request the
    // user made from the keyboard, never when the panel appears for a drag.
    virtual void takeFocus() {}

    // Animates the properties named by `animation` from their current values, taking over any
    // running animation of the same properties and leaving others running. `completion` runs on
    // the main thread once the animation has reached its end. When a later change cuts the
    // animation short, its completion may run late or not at all (the controller guards it), but
    // never inside the call that cut it short, and never once the panel is destroyed.
    virtual void animate(const PanelAnimation& animation, std::function<void()> completion) = 0;

    virtual void setAppearance(AppearanceMode mode) = 0;

    // Set by the controller when it makes the panel. A drag hovering over the panel (true) or
    // leaving it, ending or dropping (false); Escape pressed while the panel has the focus.
    std::function<void(bool targeted)> onTargetChange;
    std::function<void()> onEscape;
    // A drag from another program entered the panel; whether it carries what brings the shelf up
    // by itself (files, links, images: not text alone).
    std::function<void(bool bringsShelfUp)> onForeignDragEntered;
};

}  // namespace mosswick
