#include <gtest/gtest.h>

#include <QStringList>

#include <map>
#include <string>

#include "triggers/DesktopSession.h"
#include "triggers/DragSight.h"

using mosswick::DesktopSession;
using mosswick::detectDesktopSession;

namespace {

DesktopSession detect(const std::map<std::string, QString>& environment) {
    return detectDesktopSession([&](const char* name) {
        const auto found = environment.find(name);
        return found == environment.end() ? QString() : found->second;
    });
}

}  // namespace

TEST(DesktopSessionTest, TellsTheCompositorsApartFromTheSessionVariables) {
    struct Case {
        std::map<std::string, QString> environment;
        DesktopSession expected;
    };
    const Case cases[] = {
        {{}, DesktopSession::X11},
        {{{"XDG_SESSION_TYPE", "x11"}, {"XDG_CURRENT_DESKTOP", "GNOME"}}, DesktopSession::X11},
        // An X11 session that merely has a Wayland socket lying around stays X11.
        {{{"XDG_SESSION_TYPE", "x11"}, {"WAYLAND_DISPLAY", "wayland-0"}}, DesktopSession::X11},
        {{{"WAYLAND_DISPLAY", "wayland-0"}, {"XDG_CURRENT_DESKTOP", "ubuntu:GNOME"}},
         DesktopSession::GnomeWayland},
        {{{"XDG_SESSION_TYPE", "wayland"}, {"XDG_CURRENT_DESKTOP", "KDE"}}, DesktopSession::KdeWayland},
        {{{"XDG_SESSION_TYPE", "wayland"}, {"XDG_SESSION_DESKTOP", "plasmawayland"}},
         DesktopSession::KdeWayland},
        {{{"XDG_SESSION_TYPE", "wayland"}, {"SWAYSOCK", "/run/sway.sock"}}, DesktopSession::WlrootsWayland},
        {{{"XDG_SESSION_TYPE", "wayland"}, {"XDG_CURRENT_DESKTOP", "Hyprland"}},
         DesktopSession::WlrootsWayland},
        {{{"XDG_SESSION_TYPE", "wayland"}, {"XDG_CURRENT_DESKTOP", "weston"}}, DesktopSession::OtherWayland},
    };
    for (const Case& c : cases) {
        QStringList shown;
        for (const auto& [name, value] : c.environment) shown << QString::fromStdString(name) + "=" + value;
        EXPECT_EQ(detect(c.environment), c.expected) << shown.join(' ').toStdString();
    }
}

TEST(DesktopSessionTest, OnlyGnomeLetsAnXClientReadTheTypesOfADragThroughXWayland) {
    using mosswick::DragSight;
    struct Case {
        DesktopSession session;
        bool followsPointer;
        bool readsTypes;
    };
    const Case cases[] = {
        {DesktopSession::X11, true, true},
        {DesktopSession::GnomeWayland, false, true},
        {DesktopSession::KdeWayland, false, false},
        {DesktopSession::WlrootsWayland, false, false},
    };
    for (const Case& c : cases) {
        const DragSight sight = DragSight::of(c.session);
        EXPECT_EQ(sight.followsPointer, c.followsPointer) << static_cast<int>(c.session);
        EXPECT_EQ(sight.readsTypes, c.readsTypes) << static_cast<int>(c.session);
    }
}
