# The shelf contents: items, the store, the staging area, preferences.
set(MOSSWICK_MODEL_SOURCES
  Logging.h Logging.cpp
  Scheduler.h Scheduler.cpp
  LocalPath.h LocalPath.cpp
  AtomicFile.h AtomicFile.cpp
  Timestamp.h Timestamp.cpp
  FileBookmark.h FileBookmark.cpp
  ShelfItem.h ShelfItem.cpp
  Lenient.h
  AppFiles.h AppFiles.cpp
  ItemStaging.h ItemStaging.cpp
  FileCopier.h FileCopier.cpp
  FileDescriptor.h
  FolderStack.h FolderStack.cpp
  TreeWalk.h TreeWalk.cpp
  CopyLadder.h CopyLadder.cpp
  FileRemover.h FileRemover.cpp
  WholeFile.h WholeFile.cpp
  DefaultsStore.h DefaultsStore.cpp
  JsonDefaultsStore.h JsonDefaultsStore.cpp
  PreferenceEnums.h PreferenceEnums.cpp
  Preferences.h Preferences.cpp
  ThumbnailCache.h
  ShelfTile.h
  RestoreCheck.h RestoreCheck.cpp
  ShelfStore.h ShelfStore.cpp
  ShelfSaveFile.h ShelfSaveFile.cpp
)
