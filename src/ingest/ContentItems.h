#pragma once

#include <optional>

#include "ingest/IngestServices.h"
#include "model/ShelfItem.h"

namespace mosswick {

class Pasteboard;

// Items for what comes without a file of its own: a web link, an image, a text. Each is written
// as a file into a new item's folder in the staging area (atomically) and is complete at once.
// Nothing when the pasteboard holds no such thing or the file cannot be written (logged, as the
// dropped content is lost then).
namespace ContentItems {

// The first non-file URL, as a desktop link file named by its title (else its host, else
// "Link").
std::optional<ShelfItem> readWebURL(const Pasteboard& pasteboard, const IngestServices& services);

// The image as PNG, named by the moment it was added; else a PDF document as it came, named the
// same way.
std::optional<ShelfItem> readImage(const Pasteboard& pasteboard, const IngestServices& services);

// Texts this long (in UTF-16 units or bytes, about a megabyte) are written off the main thread.
constexpr qsizetype kLongText = 1 << 20;
// How much of a long text is decoded on the main thread, for its name.
constexpr qsizetype kTextHead = 64 * 1024;

// The whole plain text, untrimmed, as UTF-8, named by its first line. Nothing for a text of
// blanks and line breaks only. A long text's item waits for its file (as a promised one does)
// while the file is written in the background.
std::optional<ShelfItem> readText(const Pasteboard& pasteboard, const IngestServices& services);

}  // namespace ContentItems
}  // namespace mosswick
