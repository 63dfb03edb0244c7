# The shelf window logic and its triggers: placement, presentation, controller, drag monitor, shortcut.
set(MOSSWICK_SHELF_SOURCES
  # Placement, presentation and the window controller.
  ScreenPoint.h
  ScreenRect.h
  Display.h
  DisplayEnvironment.h
  DesktopMotionSetting.h
  WindowPlacement.h WindowPlacement.cpp
  ShelfPresentation.h ShelfPresentation.cpp
  ShelfPanelSurface.h
  ShelfWindowController.h ShelfWindowController.cpp
  # Triggers: the drag monitor and the global shortcut.
  DesktopProbe.h
  DummyDesktopProbe.h
  DragMonitor.h
  DragMonitor.cpp
  EvdevKeyCodes.h
  EvdevKeyCodes.cpp
  KeyboardLayout.h
  KeyboardLayout.cpp
  KeyCodeNames.h
  KeyCodeNames.cpp
  KeyCombo.h
  KeyCombo.cpp
  HotKeyService.h
  DummyHotKeyService.h
  HotKeyManager.h
  HotKeyManager.cpp
  SystemLog.h
  SystemLog.cpp
)

# What the shelf's window takes from a drag, and the seam its drops go through.
list(APPEND MOSSWICK_SHELF_SOURCES
  NoDesktopMotionSetting.h
  ShelfDropHandler.h
  ShelfDropTypes.h ShelfDropTypes.cpp
  ShelfDropIngestHandler.h ShelfDropIngestHandler.cpp
)
# The shelf's window.
set(MOSSWICK_SHELF_VIEW_SOURCES
  X11PanelHints.h X11PanelHints.cpp
  ShelfContentView.h ShelfContentView.cpp
  ShelfPanel.h ShelfPanel.cpp
  QtShelfPanelSurface.h QtShelfPanelSurface.cpp
)
