#pragma once

#include <functional>
#include <vector>

#include "shelf/Display.h"

namespace mosswick {

// The displays and the pointer, in the shelf's screen coordinates. Asked afresh at every
// placement, so a display added or removed counts at the next one.
class DisplayEnvironment {
public:
    virtual ~DisplayEnvironment() = default;

    // In the desktop's order, the main display first. Never empty on a running desktop.
    virtual std::vector<Display> displays() const = 0;
    virtual ScreenPoint pointerLocation() const = 0;

    // Called on the main thread when a display is added, removed, moved or resized, or its visible
    // frame changes.
    std::function<void()> onParametersChanged;
};

}  // namespace mosswick
