#pragma once

#include <QtGlobal>
#include <optional>

namespace mosswick {

// Stored key codes are layout independent and keep the numbering the shortcut has always been
// saved in (F5 is 96). Linux names the same physical keys by evdev code (the X keycode minus 8);
// a key outside the stored numbering is stored as kEvdevBase plus its evdev code.
namespace EvdevKeyCodes {

constexpr quint16 kEvdevBase = 512;

std::optional<quint32> toEvdev(quint16 keyCode);
quint16 fromEvdev(quint32 evdevCode);

}  // namespace EvdevKeyCodes

}  // namespace mosswick
