#pragma once

#include "settings/DesktopShortcut.h"

namespace mosswick {

class KeyboardLayout;

// Mosswick's shortcut among GNOME's custom keyboard shortcuts (the media-keys plugin's
// custom-keybindings list and one relocatable entry of its own), written through gsettings so
// the schemas check every value and the session's own backend (dconf) stores it. The entry's
// fields are written before its path joins the list, so GNOME never sees half an entry; the
// list is written only when it could be read, and read back to be sure the store kept it.
class GnomeCustomShortcut final : public DesktopShortcutStore {
public:
    static inline const QString kSchema = QStringLiteral("org.gnome.settings-daemon.plugins.media-keys");
    static inline const QString kEntrySchema =
        QStringLiteral("org.gnome.settings-daemon.plugins.media-keys.custom-keybinding");
    static inline const QString kListKey = QStringLiteral("custom-keybindings");
    static inline const QString kEntryPath =
        QStringLiteral("/org/gnome/settings-daemon/plugins/media-keys/custom-keybindings/mosswick/");

    explicit GnomeCustomShortcut(const KeyboardLayout& layout);

    QString save(const DesktopShortcut& shortcut) override;

private:
    const KeyboardLayout& layout_;
};

}  // namespace mosswick
