#include "settings/SettingsPane.h"

#include <QStringList>

namespace mosswick::SettingsPanes {

namespace {

struct PaneCase {
    SettingsPane pane;
    const char* rawValue;
    const char* title;
    const char* icons;  // space-separated, best first
};

constexpr PaneCase kCases[] = {
    {SettingsPane::general, "general", "General", "preferences-system preferences-other"},
    {SettingsPane::behavior, "behavior", "Behavior",
     "preferences-desktop-peripherals input-mouse preferences-desktop"},
    {SettingsPane::window, "window", "Window", "preferences-system-windows window-new"},
    {SettingsPane::advanced, "advanced", "Advanced", "applications-system preferences-other emblem-system"},
    {SettingsPane::about, "about", "About", "help-about dialog-information"},
};

const PaneCase& caseOf(SettingsPane pane) {
    for (const PaneCase& c : kCases)
        if (c.pane == pane) return c;
    return kCases[0];
}

}  // namespace

QString rawValue(SettingsPane pane) { return QString::fromLatin1(caseOf(pane).rawValue); }

std::optional<SettingsPane> fromRawValue(const QString& raw) {
    for (const PaneCase& c : kCases)
        if (raw == QLatin1String(c.rawValue)) return c.pane;
    return std::nullopt;
}

QString title(SettingsPane pane) { return QString::fromLatin1(caseOf(pane).title); }

QStringList iconNames(SettingsPane pane) {
    return QString::fromLatin1(caseOf(pane).icons).split(QLatin1Char(' '));
}

}  // namespace mosswick::SettingsPanes
