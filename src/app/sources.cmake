# The application lifecycle logic.
set(MOSSWICK_APP_SOURCES
  AppDelegate.h AppDelegate.cpp
  MenuBarIcon.h MenuBarIcon.cpp
)
# The tray icon.
set(MOSSWICK_APP_VIEW_SOURCES
  StatusBarController.h StatusBarController.cpp
)
# The wiring: the one place that chooses the desktop's backends and hands them to the logic.
# Built into the executable only.
set(MOSSWICK_APP_WIRING_SOURCES
  DesktopBackends.h DesktopBackends.cpp
  main.cpp
)
