#pragma once

#include <QUrl>
#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

#include "ingest/FileItems.h"
#include "ingest/IngestServices.h"
#include "ingest/TypeByName.h"
#include "model/ShelfItem.h"

namespace mosswick {

class Pasteboard;

// Turns what is dropped on the shelf, or sits on the clipboard, into shelf items. The pasteboard
// is read in a fixed order, and the first step that yields anything ends it:
//   1. files and folders (and, when accepted, files still to be delivered by the drag source);
//   2. a web link, kept as a desktop link file;
//   3. an image, kept as PNG;
//   4. a text, kept as a UTF-8 text file.
// A drop of two or more files shares one batch ID (the shelf shows them as one stack). Links,
// images and texts are written into the staging area at once; copies of files are made in the
// background. No state of its own; main thread only.
namespace DropIngest {

using OnUpdate = std::function<void(const ShelfItem&)>;

// The new items in pasteboard order, possibly none. The caller puts them on the shelf at once
// (ShelfStore::add): files are copied only for items on the shelf by the next turn of the main
// loop. `onUpdate` is called later, on the main thread, with each promised file's completed item.
std::vector<ShelfItem> items(const Pasteboard& pasteboard, bool acceptsFilePromises, const OnUpdate& onUpdate,
                             const IngestServices& services = IngestServices::shared());

// An item referring to one file URL (nothing for a URL that names no local file), with its copy
// staged as for a drop.
std::optional<ShelfItem> makeItem(const QUrl& fileURL, std::optional<QUuid> batchID,
                                  const IngestServices& services = IngestServices::shared());

// The item for one dropped file or folder (an alias file resolved when the preferences ask), and
// its staging, to be handed to FileItems::stageLater once the item is on the shelf. For callers
// that gather one batch over several turns of the main loop.
ShelfItem fileItem(const std::filesystem::path& file, const std::optional<QUrl>& droppedURL,
                   std::optional<QUuid> batchID, TypeByName& types, std::vector<FileItems::Staging>& staging,
                   const IngestServices& services = IngestServices::shared());

}  // namespace DropIngest
}  // namespace mosswick
