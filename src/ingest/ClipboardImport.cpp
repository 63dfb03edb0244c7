#include "ingest/ClipboardImport.h"

#include "ingest/DropIngest.h"
#include "ingest/Pasteboard.h"
#include "ingest/TypeNameSet.h"
#include "model/ShelfStore.h"

namespace mosswick::ClipboardImport {

const std::vector<InterestingType>& interestingTypes() {
    static const std::vector<InterestingType> types = {
        {"file URLs", {QStringLiteral("text/uri-list"), QStringLiteral("x-special/gnome-copied-files")}},
        {"URL", {QStringLiteral("text/x-moz-url"), QStringLiteral("_NETSCAPE_URL")}},
        {"PNG", {QStringLiteral("image/png")}},
        {"TIFF", {QStringLiteral("image/tiff")}},
        {"PDF", {QStringLiteral("application/pdf")}},
        {"rich text",
         {QStringLiteral("text/rtf"), QStringLiteral("application/rtf"), QStringLiteral("text/html")}},
        {"plain text",
         {QStringLiteral("text/plain"), QStringLiteral("text/plain;charset=utf-8"),
          QStringLiteral("UTF8_STRING"), QStringLiteral("STRING"), QStringLiteral("TEXT")}},
    };
    return types;
}

bool clipboardHasSomethingToAdd(const Pasteboard& clipboard) {
    static const TypeNameSet names = [] {
        QStringList all;
        for (const InterestingType& type : interestingTypes()) all << type.names;
        return TypeNameSet(all);
    }();
    return names.containsAnyOf(clipboard.types());
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
