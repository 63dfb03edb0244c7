#pragma once

#include <QKeyCombination>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

#include "triggers/DesktopSession.h"
#include "triggers/KeyCombo.h"

namespace mosswick {

class KeyboardLayout;

// Mosswick's shortcut as an entry of the desktop's own keyboard settings: it runs
// `<executable> toggle` when its key is pressed.
struct DesktopShortcut {
    QString name;
    QString executable;
    KeyCombo combo;
};

// The desktop's own keyboard settings, where a shortcut may run a command (GNOME's custom
// shortcuts, KDE's global shortcuts). Used where no program can hold a key for itself.
class DesktopShortcutStore {
public:
    virtual ~DesktopShortcutStore() = default;
    // Creates Mosswick's entry, or updates the one created before; the user's other shortcuts
    // stay as they are. Empty on success, else why not, in words.
    virtual QString save(const DesktopShortcut& shortcut) = 0;
};

// What the desktops' stores write, worked out without them.
namespace DesktopShortcuts {

// The arguments after the program.
inline const QString kToggleArgument = QStringLiteral("toggle");

// GNOME's accelerator syntax: "<Control><Alt>space", "<Shift>F5". None when the key has no
// symbol name.
std::optional<QString> gnomeAccelerator(const KeyCombo& combo, const KeyboardLayout& layout);

// The key as Qt, and so KDE, names it ("Ctrl+Alt+Space" through QKeySequence). None when the
// key is not one Qt knows.
std::optional<QKeyCombination> qtKey(const KeyCombo& combo, const KeyboardLayout& layout);

// `executable toggle` as a command line that splits like a shell's: the program quoted when it
// holds anything but plain path characters.
QString commandLine(const QString& executable);

// GVariant's text form of a string ('…' with \ and ' escaped) and of an array of strings, as
// gsettings reads and prints them. Parsing gives none for anything it cannot read whole.
QString gvariantString(const QString& text);
QString gvariantStringArray(const QStringList& list);
std::optional<QStringList> parseGVariantStringArray(const QString& text);

// GNOME's list of custom shortcut paths with `path` added at the end, unless it is already there.
QStringList withEntry(QStringList paths, const QString& path);

}  // namespace DesktopShortcuts

// The Behavior pane's offer to put the shortcut into the desktop's keyboard settings: made only
// on Wayland sessions of a desktop with a store and only while the desktop does not hold the key
// for Mosswick itself (an X11 grab there hears only keys typed into X windows).
class DesktopShortcutOffer {
public:
    // `desktopHoldsShortcut` is asked each time: a portal may take or lose the key at any time.
    DesktopShortcutOffer(DesktopSession session, DesktopShortcutStore* store,
                         std::function<bool()> desktopHoldsShortcut, QString executable);

    bool isOffered() const;
    // "Add to GNOME Keyboard Shortcuts".
    QString buttonTitle() const;
    // Why the button is there.
    QString explanation() const;
    // The button: saves `combo` in the store; result() says how it went.
    void add(const KeyCombo& combo);
    // The button while Mosswick has no shortcut: there is nothing to add.
    void noShortcut();
    // "Added to …" or "Couldn't add the shortcut: …"; empty before the first press.
    const QString& result() const { return result_; }
    bool failed() const { return failed_; }

private:
    QString desktopName() const;

    DesktopSession session_;
    DesktopShortcutStore* store_;
    std::function<bool()> desktopHoldsShortcut_;
    QString executable_;
    QString result_;
    bool failed_ = false;
};

}  // namespace mosswick
