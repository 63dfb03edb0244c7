# The settings window's logic: the panes, the shortcut recorder, start at login and the ignore
# list's choices.
set(MOSSWICK_SETTINGS_SOURCES
  SettingsPane.h SettingsPane.cpp
  PaneState.h PaneState.cpp
  ShortcutRecorder.h ShortcutRecorder.cpp
  LoginItem.h LoginItem.cpp
  DesktopShortcut.h DesktopShortcut.cpp
  ApplicationCatalog.h ApplicationCatalog.cpp
)
# The window itself.
set(MOSSWICK_SETTINGS_VIEW_SOURCES
  ShortcutRecorderView.h ShortcutRecorderView.cpp
  IgnoredApplicationsView.h IgnoredApplicationsView.cpp
  SettingsWindow.h SettingsWindow.cpp
)
