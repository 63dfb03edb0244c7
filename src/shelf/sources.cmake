# The shelf window logic and its triggers: placement, presentation, controller, drag monitor, shortcut.
set(MOSSWICK_SHELF_SOURCES
  ScreenPoint.h
  ScreenRect.h
  Display.h
  DisplayEnvironment.h
  DesktopMotionSetting.h
  WindowPlacement.h WindowPlacement.cpp
  ShelfPresentation.h ShelfPresentation.cpp
  ShelfPanelSurface.h
  ShelfWindowController.h ShelfWindowController.cpp
)
