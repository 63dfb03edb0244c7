#pragma once

#include <filesystem>
#include <optional>
#include <vector>

#include "ingest/IngestServices.h"
#include "ingest/TypeByName.h"
#include "model/ShelfItem.h"

namespace mosswick {

// Items for dropped files and folders: made at once, referring to the original, and completed
// in the background with the shelf's own copy.
namespace FileItems {

// An item referring to `file` (absolute; `droppedURL` is how the drop named it, kept as the origin
// when it names the same file): its name, origin URL, bookmark and size, and a type told by the
// name alone. Reading the contents for the type waits for the background copy: a thousand files
// cannot be read on the main thread while the user waits for the drop.
ShelfItem makeItem(const std::filesystem::path& file, const std::optional<QUrl>& droppedURL,
                   std::optional<QUuid> batchID, TypeByName& types, const IngestServices& services);

// How long finished copies wait to be handed to the store together.
constexpr double kUpdateInterval = 0.05;

struct Staging {
    ShelfItem item;  // as it was handed to the store
    std::filesystem::path source;
};

// Copies each file into its item's folder in the staging area, one background task a file, then
// hands the item with its copy, its deep size and the type read from its contents to the store's
// `update` on the main thread (the copies finished within kUpdateInterval of each other together). Starts on
// the next turn of the main loop, and only for items still on the shelf then: items a full shelf trimmed away
// at once are never copied. A copy that fails is logged and leaves the item referring to its original; a copy
// finished for an item that has left the shelf for good is deleted.
void stageLater(std::vector<Staging> files, const IngestServices& services);

}  // namespace FileItems
}  // namespace mosswick
