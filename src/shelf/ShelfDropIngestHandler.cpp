#include "shelf/ShelfDropIngestHandler.h"

#include "ingest/DropIngest.h"
#include "ingest/Pasteboard.h"
#include "model/ItemStaging.h"
#include "model/Logging.h"
#include "model/ShelfStore.h"
#include "shelf/DropRefusal.h"

namespace mosswick {

ShelfDropIngestHandler::ShelfDropIngestHandler(PasteboardFactory makePasteboard, IngestServices services)
    : makePasteboard_(std::move(makePasteboard)), services_(std::move(services)) {}

bool ShelfDropIngestHandler::drop(const QMimeData& data, const DropContext&) {
    const bool taken = take(data);
    onDropped();
    return taken;
}

bool ShelfDropIngestHandler::take(const QMimeData& data) {
    const std::unique_ptr<Pasteboard> pasteboard = makePasteboard_ ? makePasteboard_(data) : nullptr;
    if (!pasteboard) return false;
    ShelfStore& store = services_.store;
    std::vector<ShelfItem> items = DropIngest::items(
        *pasteboard, true, [&store](const ShelfItem& item) { store.update(item); }, services_);
    if (const std::optional<QString> refusal = DropRefusal::reason(pasteboard->types(), items)) {
        qCWarning(lcIngest).noquote() << "Refused a drop:" << *refusal;
        // What was written for it already (a text, a link) goes; files are copied only for items
        // that reach the shelf, so none was.
        for (const ShelfItem& item : items) ItemStaging::discard(item.id);
        return false;
    }
    store.add(std::move(items));
    return true;
}

}  // namespace mosswick
