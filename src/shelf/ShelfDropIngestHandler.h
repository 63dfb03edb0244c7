#pragma once

#include <functional>
#include <memory>

#include "ingest/IngestServices.h"
#include "shelf/ShelfDropHandler.h"

namespace mosswick {

class Pasteboard;

// The shelf's drop handler: the drop's data read as a pasteboard, turned into items by drop
// ingestion (promised files accepted), and put at the top of the shelf. A drop whose data cannot
// be read is refused and the reason logged (DropRefusal): the source keeps its files.
class ShelfDropIngestHandler final : public ShelfDropHandler {
public:
    // Reads a drop's data; the platform decides how (and how promised files are received).
    using PasteboardFactory = std::function<std::unique_ptr<Pasteboard>(const QMimeData& data)>;

    ShelfDropIngestHandler(PasteboardFactory makePasteboard, IngestServices services);

    bool drop(const QMimeData& data, const DropContext& context) override;

    // Told of every drop, taken or refused, once it is handled: the drag is over.
    std::function<void()> onDropped = [] {};

private:
    bool take(const QMimeData& data);

    PasteboardFactory makePasteboard_;
    IngestServices services_;
};

}  // namespace mosswick
