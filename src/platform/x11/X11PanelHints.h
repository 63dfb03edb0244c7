#pragma once

#include "shelf/PanelWindowHints.h"

namespace mosswick {

// The shelf window's hints through Qt's own XCB connection (the hints must reach the window
// before Qt maps it). Outside an xcb session it behaves as NoPanelWindowHints.
class X11PanelHints final : public PanelWindowHints {
public:
    void keepOffTaskbarOnAllWorkspaces(quintptr window) override;
    bool compositorRunning(quintptr window) const override;
};

}  // namespace mosswick
