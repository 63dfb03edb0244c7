#pragma once

#include "platform/x11/X11PanelHints.h"

namespace mosswick {

// The shelf window's hints under KWin on Wayland, through XWayland. KWin hands a drag's data only
// to a managed window that accepts the focus (it activates one when a drag enters it), hides the
// utility windows of a program none of whose windows is active, and keeps no window beyond the
// screens for us: the panel is an ordinary window there, withdrawn while hidden.
class KWinPanelHints final : public PanelWindowHints {
public:
    explicit KWinPanelHints(X11Atoms& atoms) : x11_(atoms) {}

    void keepOffTaskbarOnAllWorkspaces(quintptr window) override {
        x11_.keepOffTaskbarOnAllWorkspaces(window);
    }
    bool compositorRunning(quintptr window) const override { return x11_.compositorRunning(window); }
    bool letStandOffScreen(quintptr) override { return false; }
    void giveUpFocus(quintptr window) override { x11_.giveUpFocus(window); }
    bool dropsNeedFocusableWindow() const override { return true; }

private:
    X11PanelHints x11_;
};

}  // namespace mosswick
