# The application lifecycle logic.
set(MOSSWICK_APP_SOURCES
  AppDelegate.h AppDelegate.cpp
  MenuBarIcon.h MenuBarIcon.cpp
  CommandLine.h CommandLine.cpp
  QtPlatformChoice.h QtPlatformChoice.cpp
  ShelfCommands.h ShelfCommands.cpp
  UpdateFeed.h UpdateFeed.cpp
  UpdateSignature.h UpdateSignature.cpp
  UpdateVersion.h UpdateVersion.cpp
  Updater.h Updater.cpp
)
# The tray icon.
set(MOSSWICK_APP_VIEW_SOURCES
  StatusBarController.h StatusBarController.cpp
)
# The wiring: the one place that chooses the desktop's backends and hands them to the logic.
# Built into the executable only.
set(MOSSWICK_APP_WIRING_SOURCES
  BuildSettings.h BuildSettings.cpp
  CommandClient.h CommandClient.cpp
  SelfUpdate.h SelfUpdate.cpp
  DesktopBackends.h DesktopBackends.cpp
  main.cpp
)
