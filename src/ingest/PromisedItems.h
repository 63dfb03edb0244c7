#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "ingest/IngestServices.h"
#include "model/ShelfItem.h"

namespace mosswick {

class FilePromise;

// Items for files a drag source writes only after the drop: a placeholder at once, completed or
// taken away when the source has answered.
namespace PromisedItems {

using OnUpdate = std::function<void(const ShelfItem&)>;

// The placeholder (`isPromised`, named by the first proposed name made safe, else
// "Incoming" with the type's extension), with the file asked for in the item's own folder. When
// the file arrives it is measured off the main thread and the completed item goes to `onUpdate`;
// when the source fails, the placeholder leaves the shelf without entering the removal history.
// When the item's folder cannot be made, nothing is asked for and the placeholder stays.
ShelfItem makeItem(const std::shared_ptr<FilePromise>& promise, std::optional<QUuid> batchID,
                   const OnUpdate& onUpdate, const IngestServices& services);

}  // namespace PromisedItems
}  // namespace mosswick
