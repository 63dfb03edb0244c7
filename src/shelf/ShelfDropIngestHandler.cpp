#include "shelf/ShelfDropIngestHandler.h"

#include "ingest/DropIngest.h"
#include "ingest/Pasteboard.h"
#include "model/ShelfStore.h"

namespace mosswick {

ShelfDropIngestHandler::ShelfDropIngestHandler(PasteboardFactory makePasteboard, IngestServices services)
    : makePasteboard_(std::move(makePasteboard)), services_(std::move(services)) {}

bool ShelfDropIngestHandler::drop(const QMimeData& data, const DropContext&) {
    const std::unique_ptr<Pasteboard> pasteboard = makePasteboard_ ? makePasteboard_(data) : nullptr;
    if (!pasteboard) return false;
    ShelfStore& store = services_.store;
    std::vector<ShelfItem> items = DropIngest::items(
        *pasteboard, true, [&store](const ShelfItem& item) { store.update(item); }, services_);
    if (items.empty()) return false;
    store.add(std::move(items));
    return true;
}

}  // namespace mosswick
