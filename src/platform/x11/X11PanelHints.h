#pragma once

#include "shelf/PanelWindowHints.h"

namespace mosswick {

class X11Atoms;

// The shelf window's hints through Qt's own XCB connection (the hints must reach the window
// before Qt maps it, and Qt may not have sent the window's creation yet: only its own connection
// is sure to come after it). Outside an xcb session it behaves as NoPanelWindowHints.
class X11PanelHints final : public PanelWindowHints {
public:
    // Atoms from the main thread's table: their numbers hold on Qt's connection too.
    explicit X11PanelHints(X11Atoms& atoms) : atoms_(atoms) {}

    void keepOffTaskbarOnAllWorkspaces(quintptr window) override;
    bool compositorRunning(quintptr window) const override;
    bool letStandOffScreen(quintptr window) override;
    void giveUpFocus(quintptr window) override;

private:
    X11Atoms& atoms_;
};

}  // namespace mosswick
