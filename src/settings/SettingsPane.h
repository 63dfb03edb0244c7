#pragma once

#include <QString>
#include <array>
#include <optional>

namespace mosswick {

// The settings window's panes, in sidebar order.
enum class SettingsPane { general, behavior, window, advanced, about };

namespace SettingsPanes {

constexpr std::array<SettingsPane, 5> kAll = {SettingsPane::general, SettingsPane::behavior,
                                              SettingsPane::window, SettingsPane::advanced,
                                              SettingsPane::about};

QString rawValue(SettingsPane pane);
std::optional<SettingsPane> fromRawValue(const QString& raw);
QString title(SettingsPane pane);
// Names from the freedesktop icon theme, the most specific first; the sidebar takes the first
// one the user's theme has.
QStringList iconNames(SettingsPane pane);

}  // namespace SettingsPanes

}  // namespace mosswick
