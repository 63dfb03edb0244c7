#include "ingest/DropIngest.h"

#include <variant>

#include "ingest/AliasFiles.h"
#include "ingest/ContentItems.h"
#include "ingest/FileItems.h"
#include "ingest/Pasteboard.h"
#include "ingest/PromisedItems.h"
#include "model/LocalPath.h"
#include "model/Preferences.h"

namespace mosswick::DropIngest {

namespace {

// Step 1: files, folders and promised files, or nothing when every object is skipped.
std::vector<ShelfItem> fileItems(const Pasteboard& pasteboard, bool acceptsFilePromises,
                                 const OnUpdate& onUpdate, const IngestServices& services) {
    Pasteboard::Kinds kinds = Pasteboard::Kind::fileURL;
    if (acceptsFilePromises) kinds |= Pasteboard::Kind::filePromise;
    const std::vector<Pasteboard::Object> objects = pasteboard.objects(kinds);
    if (objects.empty()) return {};

    // Counted before any object is turned into an item.
    std::optional<QUuid> batchID;
    if (objects.size() >= 2) batchID = QUuid::createUuid();

    TypeByName types;
    std::vector<ShelfItem> items;
    std::vector<FileItems::Staging> staging;
    items.reserve(objects.size());
    staging.reserve(objects.size());
    for (const Pasteboard::Object& object : objects) {
        if (const auto* promise = std::get_if<std::shared_ptr<FilePromise>>(&object)) {
            if (*promise && acceptsFilePromises)
                items.push_back(PromisedItems::makeItem(*promise, batchID, onUpdate, services));
            continue;
        }
        const QUrl& url = std::get<QUrl>(object);
        if (const std::optional<std::filesystem::path> file = LocalPath::fromUrl(url))
            items.push_back(fileItem(*file, url, batchID, types, staging, services));
    }
    FileItems::stageLater(std::move(staging), services);
    return items;
}

}  // namespace

std::vector<ShelfItem> items(const Pasteboard& pasteboard, bool acceptsFilePromises, const OnUpdate& onUpdate,
                             const IngestServices& services) {
    if (auto files = fileItems(pasteboard, acceptsFilePromises, onUpdate, services); !files.empty())
        return files;
    if (auto link = ContentItems::readWebURL(pasteboard, services)) return {std::move(*link)};
    if (auto image = ContentItems::readImage(pasteboard, services)) return {std::move(*image)};
    if (auto text = ContentItems::readText(pasteboard, services)) return {std::move(*text)};
    return {};
}

std::optional<ShelfItem> makeItem(const QUrl& fileURL, std::optional<QUuid> batchID,
                                  const IngestServices& services) {
    const std::optional<std::filesystem::path> file = LocalPath::fromUrl(fileURL);
    if (!file) return std::nullopt;
    TypeByName types;
    ShelfItem item = FileItems::makeItem(*file, fileURL, batchID, types, services);
    FileItems::stageLater({{item, *file}}, services);
    return item;
}

ShelfItem fileItem(const std::filesystem::path& file, const std::optional<QUrl>& droppedURL,
                   std::optional<QUuid> batchID, TypeByName& types, std::vector<FileItems::Staging>& staging,
                   const IngestServices& services) {
    const std::filesystem::path resolved =
        services.preferences.resolveAliasFiles() ? AliasFiles::resolve(file) : file;
    ShelfItem item = FileItems::makeItem(resolved, droppedURL, batchID, types, services);
    staging.push_back({item, resolved});
    return item;
}

}  // namespace mosswick::DropIngest
