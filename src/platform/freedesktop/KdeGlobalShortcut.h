#pragma once

#include <QByteArray>
#include <QDBusConnection>
#include <QStringList>

#include "settings/DesktopShortcut.h"

namespace mosswick {

class KeyboardLayout;

// Mosswick's shortcut among KDE's global shortcuts (KDE Frameworks 5, Plasma 5.27): a hidden
// desktop entry, mosswick-toggle.desktop in the user's applications folder, whose launch action
// ("_launch") holds the key. KDE's shortcut service (kglobalaccel, inside KWin on Wayland) runs an
// entry's Exec line when the key of a ".desktop" component is pressed. While it runs it owns its
// store (kglobalshortcutsrc) and rewrites it, so it is told over D-Bus, and takes the key at once
// and keeps it; otherwise the store is written with kwriteconfig5 and read at its next start.
class KdeGlobalShortcut final : public DesktopShortcutStore {
public:
    static inline const QString kComponent = QStringLiteral("mosswick-toggle.desktop");
    static inline const QString kAction = QStringLiteral("_launch");
    static inline const QString kService = QStringLiteral("org.kde.kglobalaccel");

    // `applications` is the folder the desktop entry goes into.
    KdeGlobalShortcut(const QDBusConnection& bus, const KeyboardLayout& layout, QString applications);

    // $XDG_DATA_HOME/applications.
    static QString defaultApplicationsFolder();
    static QByteArray desktopEntry(const DesktopShortcut& shortcut);
    // The action as kglobalaccel names it: component, action, and their names for people.
    static QStringList actionId(const DesktopShortcut& shortcut);

    QString save(const DesktopShortcut& shortcut) override;

private:
    QString tellService(const DesktopShortcut& shortcut, int key);
    QString writeStore(const DesktopShortcut& shortcut, const QString& key);

    QDBusConnection bus_;
    const KeyboardLayout& layout_;
    QString applications_;
};

}  // namespace mosswick
