#pragma once

#include <QtGlobal>

namespace mosswick {

// The window-manager hints Qt does not set for the shelf, and whether a compositor runs. Outside
// an X11 session every call does nothing, and a compositor is taken to run (Wayland always
// composites).
class X11PanelHints {
public:
    X11PanelHints() = delete;

    // Keeps the window out of task bars and pagers and on every workspace. Read by the window
    // manager when the window is mapped, and dropped by it when the window is withdrawn: call it
    // before every map, on the unmapped window.
    static void keepOffTaskbarOnAllWorkspaces(quintptr window);
    // True when the compositing manager's selection of the window's screen has an owner.
    static bool compositorRunning(quintptr window);
};

}  // namespace mosswick
