#pragma once

#include <QStringList>
#include <QStringView>

#include "triggers/DesktopProbe.h"
#include "triggers/InstalledApplications.h"

namespace mosswick {

// Whether the program a drag starts in is one the user asked the shelf to ignore. Ignored
// programs are stored by desktop-file id; a window names its program by an application id, or only
// by its window class, which an installed entry's StartupWMClass may tie to a desktop-file id.
class IgnoredApplications {
public:
    IgnoredApplications() = delete;

    static bool includes(const QStringList& ignored, const FrontmostApplication& frontmost,
                         InstalledApplications& installed);

    // Desktop-file ids are file names: "org.gnome.Nautilus.desktop" and "org.gnome.nautilus" name
    // the same entry. Case is folded for ASCII letters only, as file systems fold nothing else.
    static bool sameDesktopId(QStringView a, QStringView b);
};

}  // namespace mosswick
