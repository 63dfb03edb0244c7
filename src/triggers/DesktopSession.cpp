#include "triggers/DesktopSession.h"

#include <QStringList>

namespace mosswick {

namespace {

// XDG_CURRENT_DESKTOP is a colon-separated list ("ubuntu:GNOME", "KDE"); any entry decides.
bool desktopListNames(const QString& list, std::initializer_list<const char*> names) {
    const QStringList entries = list.split(QLatin1Char(':'), Qt::SkipEmptyParts);
    for (const QString& entry : entries)
        for (const char* name : names)
            if (entry.compare(QLatin1String(name), Qt::CaseInsensitive) == 0) return true;
    return false;
}

}  // namespace

DesktopSession detectDesktopSession(const std::function<QString(const char*)>& variable) {
    const QString type = variable("XDG_SESSION_TYPE");
    const bool wayland = type.compare(QLatin1String("wayland"), Qt::CaseInsensitive) == 0 ||
                         (type.isEmpty() && !variable("WAYLAND_DISPLAY").isEmpty());
    if (!wayland) return DesktopSession::X11;

    const QString desktops =
        variable("XDG_CURRENT_DESKTOP") + QLatin1Char(':') + variable("XDG_SESSION_DESKTOP");
    if (desktopListNames(desktops, {"GNOME", "GNOME-Classic", "ubuntu", "Unity", "Pantheon", "Budgie"}))
        return DesktopSession::GnomeWayland;
    if (desktopListNames(desktops, {"KDE", "plasma", "plasmawayland"})) return DesktopSession::KdeWayland;
    if (!variable("SWAYSOCK").isEmpty() ||
        desktopListNames(desktops, {"sway", "wlroots", "Hyprland", "river", "labwc", "wayfire"}))
        return DesktopSession::WlrootsWayland;
    return DesktopSession::OtherWayland;
}

DesktopSession detectDesktopSession() {
    return detectDesktopSession([](const char* name) { return qEnvironmentVariable(name); });
}

bool isWayland(DesktopSession session) { return session != DesktopSession::X11; }

QString describeDesktopSession(DesktopSession session) {
    switch (session) {
        case DesktopSession::X11:
            return QStringLiteral("X11");
        case DesktopSession::GnomeWayland:
            return QStringLiteral("GNOME on Wayland (XWayland)");
        case DesktopSession::KdeWayland:
            return QStringLiteral("KDE on Wayland (XWayland)");
        case DesktopSession::WlrootsWayland:
            return QStringLiteral("wlroots on Wayland (XWayland)");
        case DesktopSession::OtherWayland:
            return QStringLiteral("Wayland (XWayland)");
    }
    return QStringLiteral("X11");
}

}  // namespace mosswick
