#pragma once

#include "platform/x11/X11PanelHints.h"

namespace mosswick {

// The shelf window's hints under sway and other wlroots compositors, through XWayland. sway
// centres and widens the X windows it manages, so the panel is one it does not manage
// (override-redirect), which lands where it is placed and stays wherever it is moved, off screen
// included. Such a window never has the focus, and wlroots hands an unfocused X window no data at
// a drop, but does while the drag is over it: the panel reads the drag's data as it enters.
class WlrootsPanelHints final : public PanelWindowHints {
public:
    explicit WlrootsPanelHints(X11Atoms& atoms) : x11_(atoms) {}

    void keepOffTaskbarOnAllWorkspaces(quintptr window) override {
        x11_.keepOffTaskbarOnAllWorkspaces(window);
    }
    bool compositorRunning(quintptr window) const override { return x11_.compositorRunning(window); }
    bool letStandOffScreen(quintptr) override { return true; }
    void giveUpFocus(quintptr window) override { x11_.giveUpFocus(window); }
    bool placesItself() const override { return true; }
    bool dataOnlyBeforeDrop() const override { return true; }

private:
    X11PanelHints x11_;
};

}  // namespace mosswick
