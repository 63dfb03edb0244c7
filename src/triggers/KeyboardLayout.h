#pragma once

#include <QString>
#include <optional>

namespace mosswick {

// The user's current keyboard layout, asked about one key at a time by evdev code.
class KeyboardLayout {
public:
    virtual ~KeyboardLayout() = default;

    // The key's symbol at the first shift level, as text ("a", "ä", "1"); none when the key
    // produces no character.
    virtual std::optional<QString> character(quint32 evdevCode) const = 0;
    // The key's symbol name at the first shift level ("a", "F5", "space"), the way desktop
    // shortcut settings spell keys; none when the layout has no symbol there.
    virtual std::optional<QString> symbolName(quint32 evdevCode) const = 0;

    // The process-wide layout; one that knows no keys unless one was installed.
    static const KeyboardLayout& shared();
    static void setShared(const KeyboardLayout* layout);
};

}  // namespace mosswick
