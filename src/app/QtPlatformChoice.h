#pragma once

#include <QByteArray>
#include <QString>
#include <functional>

namespace mosswick {

// Which Qt platform plugin Mosswick asks for. Only an X client sees other programs' drags begin
// (on Wayland through XWayland), so wherever an X display is there and the user named no platform,
// X11 comes first; with Qt's Wayland plugin installed, Qt would otherwise pick it on a Wayland
// desktop and Mosswick would quietly never see a drag. Wayland stays as a fall-back, so a broken X
// display still leaves a shelf that works by shortcut and command.
namespace QtPlatformChoice {

// The value for QT_QPA_PLATFORM, empty to leave Qt to choose. `variable` returns an empty string
// for an unset variable.
QByteArray preferred(const std::function<QString(const char*)>& variable);

}  // namespace QtPlatformChoice
}  // namespace mosswick
