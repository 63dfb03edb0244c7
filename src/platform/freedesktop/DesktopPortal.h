#pragma once

#include <QDBusVariant>
#include <QString>
#include <QVariant>

namespace mosswick::DesktopPortal {

// Where the desktop portals answer on the session bus; each portal is an interface of this one
// object.
inline const QString kService = QStringLiteral("org.freedesktop.portal.Desktop");
inline const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");

inline const QString kSettingsInterface = QStringLiteral("org.freedesktop.portal.Settings");

// A setting's value as the settings portal sends it: the old Read wraps it in a second variant,
// ReadOne and SettingChanged do not.
inline QVariant plainSettingValue(QVariant value) {
    while (value.userType() == qMetaTypeId<QDBusVariant>()) value = value.value<QDBusVariant>().variant();
    return value;
}

}  // namespace mosswick::DesktopPortal
