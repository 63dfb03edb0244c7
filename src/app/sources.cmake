# The application lifecycle logic.
set(MOSSWICK_APP_SOURCES
  AppDelegate.h AppDelegate.cpp
)
