#pragma once

#include <QString>
#include <optional>

namespace mosswick {

class KeyboardLayout;

// The printable name of a stored key code: a fixed name for function, editing and arrow keys,
// else the character the keyboard layout gives the key, else "Key" and the number.
namespace KeyCodeNames {

QString name(quint16 keyCode);
QString name(quint16 keyCode, const KeyboardLayout& layout);

// The fixed names, consulted first.
std::optional<QString> special(quint16 keyCode);

}  // namespace KeyCodeNames

}  // namespace mosswick
