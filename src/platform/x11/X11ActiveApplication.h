#pragma once

#include <QString>

namespace mosswick {

class X11Connection;

// Names the program whose window is active, the way ignored applications are stored: by its
// desktop-file id (without ".desktop"). GTK and KDE programs say so on their windows; others are
// known by their WM_CLASS class. Empty without a window manager or an active window.
namespace X11ActiveApplication {

QString id(X11Connection& connection);

}  // namespace X11ActiveApplication

}  // namespace mosswick
