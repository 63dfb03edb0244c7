#pragma once

#include "shelf/DesktopMotionSetting.h"

namespace mosswick {

// For desktops whose animation setting Mosswick cannot read: they never ask for less motion.
class NoDesktopMotionSetting final : public DesktopMotionSetting {
public:
    bool reducesMotion() const override { return false; }
};

}  // namespace mosswick
