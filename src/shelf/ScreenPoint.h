#pragma once

namespace mosswick {

// A point in the shelf's screen coordinates: origin at the lower left of the main display, y
// growing upwards, in device-independent pixels. Only the display backend converts to and from
// the toolkit's top-left convention, so a point of this type never goes to a widget unconverted.
struct ScreenPoint {
    double x = 0;
    double y = 0;

    bool operator==(const ScreenPoint&) const = default;
};

}  // namespace mosswick
