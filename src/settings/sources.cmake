# The settings window logic.
set(MOSSWICK_SETTINGS_SOURCES
)
