# What brings the shelf up: the drag monitor and the global shortcut, with the key codes, key names
# and keyboard layout the shortcut is shown and stored with.
set(MOSSWICK_TRIGGERS_SOURCES
  DesktopProbe.h
  DesktopSession.h DesktopSession.cpp
  FallbackHotKeyService.h FallbackHotKeyService.cpp
  DummyDesktopProbe.h
  DragSight.h
  UnseenDragEnd.h UnseenDragEnd.cpp
  DragMonitor.h DragMonitor.cpp
  InstalledApplications.h
  IgnoredApplications.h IgnoredApplications.cpp
  EvdevKeyCodes.h EvdevKeyCodes.cpp
  KeyboardLayout.h KeyboardLayout.cpp
  KeyCodeNames.h KeyCodeNames.cpp
  KeyCombo.h KeyCombo.cpp
  HotKeyService.h
  DummyHotKeyService.h
  HotKeyManager.h HotKeyManager.cpp
  SystemLog.h SystemLog.cpp
  SleepWatch.h
)
