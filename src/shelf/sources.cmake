# The shelf window logic and its triggers: placement, presentation, controller, drag monitor, shortcut.
set(MOSSWICK_SHELF_SOURCES
)
