#include "ingest/ClipboardImport.h"

#include "ingest/DropIngest.h"
#include "ingest/Pasteboard.h"
#include "ingest/PasteboardTypes.h"
#include "model/ShelfStore.h"

namespace mosswick::ClipboardImport {

bool clipboardHasSomethingToAdd(const Pasteboard& clipboard) {
    return PasteboardTypes::takenFromClipboard(clipboard.types());
}

bool addContentsOfClipboard(const Services& services) {
    const std::unique_ptr<Pasteboard> clipboard = services.clipboard ? services.clipboard() : nullptr;
    if (!clipboard || !clipboardHasSomethingToAdd(*clipboard)) {
        if (services.beep) services.beep();
        return false;
    }
    ShelfStore& store = services.ingest.store;
    std::vector<ShelfItem> items = DropIngest::items(
        *clipboard, false, [&store](const ShelfItem& item) { store.update(item); }, services.ingest);
    if (items.empty()) {
        if (services.beep) services.beep();
        return false;
    }
    store.add(std::move(items));
    if (services.summonShelf) services.summonShelf();
    return true;
}

}  // namespace mosswick::ClipboardImport
