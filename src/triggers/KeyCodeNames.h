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

// The key's symbol name as desktop shortcut settings spell it ("a", "F5", "space", "Return"):
// the layout's, else the function keys' and Space's, which no layout renames; none otherwise.
std::optional<QString> symbol(quint16 keyCode, const KeyboardLayout& layout);

}  // namespace KeyCodeNames

}  // namespace mosswick
