#pragma once

#include "shelf/ScreenRect.h"

namespace mosswick {

// One display as the shelf's geometry sees it: its whole frame and the part of it that windows
// may use (the frame less the desktop's panels and docks).
struct Display {
    ScreenRect frame;
    ScreenRect visibleFrame;

    bool operator==(const Display&) const = default;
};

}  // namespace mosswick
