#pragma once

#include <QString>

namespace mosswick::DesktopPortal {

// Where the desktop portals answer on the session bus; each portal is an interface of this one
// object.
inline const QString kService = QStringLiteral("org.freedesktop.portal.Desktop");
inline const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");

}  // namespace mosswick::DesktopPortal
