#pragma once

#include "shelf/DesktopMotionSetting.h"
#include "shelf/DisplayEnvironment.h"

namespace mosswick::testing {

// Displays and a pointer set by the test.
class FakeDisplayEnvironment final : public DisplayEnvironment {
public:
    std::vector<Display> displays() const override { return displayList; }
    ScreenPoint pointerLocation() const override { return pointer; }

    // Changes the arrangement and tells the listener, as the desktop would.
    void rearrange(std::vector<Display> displays) {
        displayList = std::move(displays);
        if (onParametersChanged) onParametersChanged();
    }

    std::vector<Display> displayList;
    ScreenPoint pointer;
};

class FakeDesktopMotionSetting final : public DesktopMotionSetting {
public:
    bool reducesMotion() const override { return reduces; }
    bool reduces = false;
};

}  // namespace mosswick::testing
