# The shelf window logic and its triggers: placement, presentation, controller, drag monitor, shortcut.
set(MOSSWICK_SHELF_SOURCES
)

# What the shelf's window takes from a drag, and the seam its drops go through.
list(APPEND MOSSWICK_SHELF_SOURCES
  DesktopMotionSetting.h
  NoDesktopMotionSetting.h
  ShelfDropHandler.h
  ShelfDropTypes.h ShelfDropTypes.cpp
)
# The shelf's window.
set(MOSSWICK_SHELF_VIEW_SOURCES
  X11PanelHints.h X11PanelHints.cpp
  ShelfContentView.h ShelfContentView.cpp
  ShelfPanel.h ShelfPanel.cpp
)
