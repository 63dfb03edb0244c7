#include "settings/ShortcutRecorder.h"

#include "triggers/EvdevKeyCodes.h"
#include "triggers/HotKeyManager.h"

namespace mosswick {

ShortcutRecorder::ShortcutRecorder(HotKeyManager& hotKeys) : hotKeys_(hotKeys) {
    hotKeys_.onLateRefusal = [this](const KeyCombo& combo) { lateRefusal(combo); };
}

ShortcutRecorder::~ShortcutRecorder() {
    hotKeys_.onLateRefusal = [](const KeyCombo&) {};
}

void ShortcutRecorder::toggleRecording() {
    recording_ = !recording_;
    onChange();
}

void ShortcutRecorder::stopRecording() {
    if (!recording_) return;
    recording_ = false;
    onChange();
}

bool ShortcutRecorder::isFunctionKey(quint16 keyCode) {
    const std::optional<quint32> evdev = EvdevKeyCodes::toEvdev(keyCode);
    if (!evdev) return false;
    // F1–F10, F11, F12, then F13–F24 in the evdev numbering.
    return (*evdev >= 59 && *evdev <= 68) || *evdev == 87 || *evdev == 88 || (*evdev >= 183 && *evdev <= 194);
}

bool ShortcutRecorder::canBeShortcut(const KeyCombo& combo) {
    return (combo.modifierFlags & KeyCombo::kModifierMask) != 0 || isFunctionKey(combo.keyCode);
}

ShortcutRecorder::Outcome ShortcutRecorder::keyPressed(quint16 keyCode, quint64 modifierFlags) {
    if (!recording_) return Outcome::ignored;
    const KeyCombo combo{keyCode, modifierFlags & KeyCombo::kModifierMask};
    if (combo.modifierFlags == 0 && keyCode == kEscape) {
        message_.clear();
        return finish(Outcome::cancelled);
    }
    if (combo.modifierFlags == 0 && keyCode == kBackspace) {
        remove();
        return Outcome::removed;
    }
    if (!canBeShortcut(combo)) return Outcome::ignored;

    const std::optional<KeyCombo> previous = hotKeys_.combo();
    hotKeys_.registerCombo(combo);
    if (hotKeys_.isRegistered()) {
        message_.clear();
        recorded_ = combo;
        beforeRecorded_ = previous;
        return finish(Outcome::recorded);
    }
    restore(combo, previous);
    return finish(Outcome::refused);
}

void ShortcutRecorder::restore(KeyCombo refused, std::optional<KeyCombo> previous) {
    // Give the old key back (and store it again) so the user is never left without the shortcut
    // that worked a moment ago.
    recorded_.reset();
    hotKeys_.registerCombo(previous);
    message_ = QStringLiteral("%1 is already taken by another program. ").arg(refused.displayString());
    message_ += previous ? QStringLiteral("The shortcut is still %1.").arg(previous->displayString())
                         : QStringLiteral("There is still no shortcut.");
}

void ShortcutRecorder::lateRefusal(const KeyCombo& combo) {
    // Only a refusal of what was just recorded here undoes anything; one of the shortcut the
    // user has had all along is logged and left alone.
    if (recorded_ != combo) return;
    restore(combo, beforeRecorded_);
    onChange();
}

void ShortcutRecorder::remove() {
    recorded_.reset();
    hotKeys_.registerCombo(std::nullopt);
    message_.clear();
    recording_ = false;
    onChange();
}

ShortcutRecorder::Outcome ShortcutRecorder::finish(Outcome outcome) {
    recording_ = false;
    onChange();
    return outcome;
}

QString ShortcutRecorder::buttonTitle() const {
    if (recording_) return QStringLiteral("Press keys…");
    if (!hotKeys_.combo()) return QStringLiteral("Click to record");
    return hotKeys_.combo()->displayString();
}

}  // namespace mosswick
