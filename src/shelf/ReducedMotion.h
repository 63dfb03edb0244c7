#pragma once

namespace mosswick {

class DesktopMotionSetting;
class Preferences;

// Whether the shelf's animations are skipped: the user's preference or the desktop's own
// setting asks for it. Asked at the moment an animation would start, so either can change at any
// time. A small value holding references; both must outlive it.
class ReducedMotion {
public:
    ReducedMotion(const Preferences& preferences, const DesktopMotionSetting& desktop)
        : preferences_(&preferences), desktop_(&desktop) {}

    bool applies() const;

private:
    const Preferences* preferences_;
    const DesktopMotionSetting* desktop_;
};

}  // namespace mosswick
