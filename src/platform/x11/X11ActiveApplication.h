#pragma once

#include "triggers/DesktopProbe.h"

namespace mosswick {

class X11Connection;

// Names the program whose window is active: by its desktop-file id (without ".desktop") where
// GTK and KDE programs say so on their windows, and by its WM_CLASS class. Empty without a window
// manager or an active window.
namespace X11ActiveApplication {

FrontmostApplication frontmost(X11Connection& connection);

}  // namespace X11ActiveApplication

}  // namespace mosswick
