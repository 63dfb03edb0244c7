# Dragging out, menus and the shelf view logic.
set(MOSSWICK_INTERACTION_SOURCES
)
