#pragma once

#include <QString>
#include <functional>
#include <optional>

#include "triggers/KeyCombo.h"

namespace mosswick {

class HotKeyManager;

// The settings' control for the global shortcut, without its button: click to record, then the
// next key combination becomes the shortcut. A combination needs a modifier (Ctrl, Alt, Shift,
// Super) unless it is a function key, so a stray letter cannot take over typing everywhere.
// Escape alone cancels, Backspace alone removes the shortcut. The new key is grabbed at once; a
// key the desktop refuses (another program holds it) leaves the old shortcut in place and says so.
class ShortcutRecorder {
public:
    enum class Outcome {
        ignored,    // not recording, or a key that cannot be a shortcut; still recording
        cancelled,  // Escape: the shortcut is unchanged
        removed,    // Backspace: no shortcut
        recorded,   // the new shortcut is registered
        refused,    // the desktop refused it; the old shortcut is back
    };

    static constexpr quint16 kEscape = 53;
    static constexpr quint16 kBackspace = 51;

    explicit ShortcutRecorder(HotKeyManager& hotKeys);
    ~ShortcutRecorder();
    ShortcutRecorder(const ShortcutRecorder&) = delete;
    ShortcutRecorder& operator=(const ShortcutRecorder&) = delete;

    // Called after every change of what the control shows.
    std::function<void()> onChange = [] {};

    bool isRecording() const { return recording_; }
    // A click on the button: starts recording, or stops it when already recording.
    void toggleRecording();
    void stopRecording();

    // A key pressed while the control has the focus: `keyCode` is the stored (layout
    // independent) code, `modifierFlags` the KeyCombo bits held with it.
    Outcome keyPressed(quint16 keyCode, quint64 modifierFlags);
    // The remove button.
    void remove();

    // "Press keys…" while recording, "Click to record" without a shortcut, else the shortcut.
    QString buttonTitle() const;
    // Why the last recording was refused; empty once a later change succeeded.
    const QString& message() const { return message_; }

    static bool isFunctionKey(quint16 keyCode);
    static bool canBeShortcut(const KeyCombo& combo);

private:
    Outcome finish(Outcome outcome);
    // Puts `previous` back after the desktop refused `refused`, and says so.
    void restore(KeyCombo refused, std::optional<KeyCombo> previous);
    void lateRefusal(const KeyCombo& combo);

    HotKeyManager& hotKeys_;
    bool recording_ = false;
    QString message_;
    // The shortcut before the last one recorded, while the desktop may still refuse that one.
    std::optional<KeyCombo> recorded_;
    std::optional<KeyCombo> beforeRecorded_;
};

}  // namespace mosswick
