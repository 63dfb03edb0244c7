# Dragging out, menus and the shelf view logic.
set(MOSSWICK_INTERACTION_SOURCES
  ShelfLayout.h ShelfLayout.cpp
  ShelfToolbarState.h ShelfToolbarState.cpp
  TileDescription.h TileDescription.cpp
  ItemIcon.h ItemIcon.cpp
  ShelfPalette.h ShelfPalette.cpp
  ShelfColors.h ShelfColors.cpp
  ReducedMotion.h ReducedMotion.cpp
  SpringCurve.h SpringCurve.cpp
)
