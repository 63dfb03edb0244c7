# The shelf window logic: placement, presentation and the window controller.
set(MOSSWICK_SHELF_SOURCES
  ScreenPoint.h
  ScreenRect.h
  Display.h
  ScreenCoordinates.h ScreenCoordinates.cpp
  DisplayEnvironment.h
  MonitorWorkAreas.h
  DesktopMotionSetting.h
  WindowPlacement.h WindowPlacement.cpp
  ShelfPresentation.h ShelfPresentation.cpp
  ShelfPanelSurface.h
  ShelfWindowController.h ShelfWindowController.cpp
)

# What the shelf's window takes from a drag, and the seam its drops go through.
list(APPEND MOSSWICK_SHELF_SOURCES
  NoDesktopMotionSetting.h
  ReducedMotion.h ReducedMotion.cpp
  PanelWindowHints.h
  ShelfDropHandler.h
  DropRefusal.h DropRefusal.cpp
  ShelfDropIngestHandler.h ShelfDropIngestHandler.cpp
)
# The shelf's window.
set(MOSSWICK_SHELF_VIEW_SOURCES
  ShelfContentView.h ShelfContentView.cpp
  ShelfPanel.h ShelfPanel.cpp
  QtShelfPanelSurface.h QtShelfPanelSurface.cpp
  ShelfPanelFactory.h ShelfPanelFactory.cpp
)
