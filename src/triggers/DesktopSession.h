#pragma once

#include <QString>

#include <functional>

namespace mosswick {

// The kind of desktop session Mosswick runs in. Mosswick always talks X11 (on Wayland through
// XWayland), but what an X client can see of other programs' drags, and which windows the
// compositor lets it show, differ per compositor: every behaviour that depends on it asks here.
enum class DesktopSession {
    X11,             // a plain X server: everything is visible
    GnomeWayland,    // mutter / gnome-shell with XWayland
    KdeWayland,      // KWin with XWayland
    WlrootsWayland,  // sway and other wlroots compositors with XWayland
    OtherWayland,    // some other Wayland compositor with XWayland
};

// Decides from the session's environment variables (XDG_SESSION_TYPE, WAYLAND_DISPLAY,
// XDG_CURRENT_DESKTOP, XDG_SESSION_DESKTOP, SWAYSOCK). `variable` returns an empty string for an
// unset variable.
DesktopSession detectDesktopSession(const std::function<QString(const char*)>& variable);

// The same, from this process's environment.
DesktopSession detectDesktopSession();

bool isWayland(DesktopSession session);

// "X11", "GNOME on Wayland (XWayland)", ... for the start-up log line.
QString describeDesktopSession(DesktopSession session);

}  // namespace mosswick
