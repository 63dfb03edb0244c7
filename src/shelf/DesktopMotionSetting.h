#pragma once

namespace mosswick {

// The desktop's own "fewer animations" setting, which silences the shelf's slides just as the
// user's reduce-motion preference does.
class DesktopMotionSetting {
public:
    virtual ~DesktopMotionSetting() = default;
    virtual bool reducesMotion() const = 0;
};

}  // namespace mosswick
