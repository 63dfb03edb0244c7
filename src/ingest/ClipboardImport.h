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

// One kind of content that makes the clipboard worth importing, with the names it goes by.
struct InterestingType {
    const char* kind;
    QStringList names;
};

// Seven kinds, in order: file URLs, URL, PNG, TIFF, PDF, rich text, plain text.
const std::vector<InterestingType>& interestingTypes();

// True when the clipboard offers any name of an interesting type (case and blanks around
// parameters aside). Looser than ingestion: rich text or PDF alone passes, and may yield nothing.
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
