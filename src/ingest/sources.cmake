# Drop ingestion and clipboard import.
set(MOSSWICK_INGEST_SOURCES
  FilePromise.h
  Pasteboard.h
  PlainText.h PlainText.cpp
  IngestServices.h IngestServices.cpp
  DroppedFileNames.h DroppedFileNames.cpp
  DesktopLinkFile.h DesktopLinkFile.cpp
  AliasFiles.h AliasFiles.cpp
  TypeByName.h TypeByName.cpp
  PasteboardTypes.h PasteboardTypes.cpp
  RichText.h RichText.cpp
  FileItems.h FileItems.cpp
  PromisedItems.h PromisedItems.cpp
  PromiseFolder.h PromiseFolder.cpp
  ContentItems.h ContentItems.cpp
  DropIngest.h DropIngest.cpp
  ClipboardImport.h ClipboardImport.cpp
)
