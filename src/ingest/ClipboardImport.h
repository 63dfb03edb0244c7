#pragma once

#include <QStringList>
#include <functional>
#include <memory>
#include <vector>

#include "ingest/IngestServices.h"

namespace mosswick {

class Pasteboard;

// Puts the clipboard's contents on the shelf as if they had been dropped there (promised files
// aside), and brings the shelf up to show them. Main thread only.
namespace ClipboardImport {

// True when the clipboard offers a type worth importing (files, links, PNG, TIFF, PDF, rich or
// plain text; PasteboardTypes). Looser than ingestion: what passes may still yield nothing.
bool clipboardHasSomethingToAdd(const Pasteboard& clipboard);

struct Services {
    // The clipboard, read at the moment of the import.
    std::function<std::unique_ptr<Pasteboard>()> clipboard;
    // The desktop's beep: the only answer when there is nothing to add.
    std::function<void()> beep;
    // Brings the shelf into view (the window controller's summon).
    std::function<void()> summonShelf;
    IngestServices ingest;
};

// Adds what the clipboard holds at the top of the shelf and summons it; beeps and returns false
// when there was nothing to add.
bool addContentsOfClipboard(const Services& services);

}  // namespace ClipboardImport
}  // namespace mosswick
