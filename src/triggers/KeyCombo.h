#pragma once

#include <QString>
#include <optional>

namespace mosswick {

class DefaultsStore;

// The global shortcut: a layout-independent key code and the modifiers held with it. Stored as
// JSON under "toggleHotKey"; an empty value means the user removed the shortcut.
struct KeyCombo {
    static constexpr quint64 kShift = 0x20000;
    static constexpr quint64 kControl = 0x40000;
    static constexpr quint64 kOption = 0x80000;    // Alt
    static constexpr quint64 kCommand = 0x100000;  // Super
    static constexpr quint64 kModifierMask = kShift | kControl | kOption | kCommand;
    static constexpr quint16 kF5 = 96;
    static inline const QString kDefaultsKey = QStringLiteral("toggleHotKey");

    quint16 keyCode = 0;
    quint64 modifierFlags = 0;

    friend bool operator==(const KeyCombo&, const KeyCombo&) = default;

    // The modifiers as "Ctrl+", "Alt+", "Shift+", "Super+" in that order, then the key's name.
    QString displayString() const;

    // Absent: the default, F5 alone. Present and readable: that combo. Empty or unreadable: none.
    static std::optional<KeyCombo> load(const DefaultsStore& store);
    // Writes the combo, or an empty value for none.
    static void save(DefaultsStore& store, const std::optional<KeyCombo>& combo);

    static QByteArray encode(const KeyCombo& combo);
    static std::optional<KeyCombo> decode(const QByteArray& data);
};

}  // namespace mosswick
