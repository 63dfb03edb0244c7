#pragma once

#include <QWidget>

#include "settings/ShortcutRecorder.h"

class QLabel;
class QPushButton;
class QToolButton;

namespace mosswick {

// The recorder's button, its remove button and the line under them that explains a refusal.
// While recording the button keeps the keyboard to itself, so Tab and Escape are keys to record
// (Escape cancels) rather than moves through the window.
class ShortcutRecorderView final : public QWidget {
    Q_OBJECT

public:
    explicit ShortcutRecorderView(HotKeyManager& hotKeys, QWidget* parent = nullptr);

    QPushButton* button() const { return button_; }
    // Stops a recording left running, as when the window closes.
    void stopRecording() { recorder_.stopRecording(); }
    void refresh();

    // The KeyCombo bits of Qt's modifiers.
    static quint64 modifierFlags(Qt::KeyboardModifiers modifiers);
    static bool isModifierKey(int key);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    ShortcutRecorder recorder_;
    QPushButton* button_;
    QToolButton* remove_;
    QLabel* message_;
};

}  // namespace mosswick
