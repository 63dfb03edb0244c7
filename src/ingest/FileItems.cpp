#include "ingest/FileItems.h"

#include <sys/stat.h>

#include <QMimeDatabase>
#include <algorithm>
#include <memory>
#include <set>
#include <variant>

#include "model/FileBookmark.h"
#include "model/ItemStaging.h"
#include "model/LocalPath.h"
#include "model/Logging.h"
#include "model/Scheduler.h"
#include "model/ShelfStore.h"

namespace mosswick::FileItems {

namespace {

QString logName(const std::filesystem::path& path) { return QString::fromUtf8(LocalPath::bytes(path)); }

// What the background task learned.
struct Outcome {
    std::optional<std::filesystem::path> copy;
    std::string error;
    qint64 deepSize = 0;
    QString contentType;
    bool isDirectory = false;
};

bool isOnShelf(const ShelfStore& store, const QUuid& id) {
    const auto& items = store.items();
    return std::any_of(items.begin(), items.end(), [&](const ShelfItem& item) { return item.id == id; });
}

// Removed with undo: the copy stays until the removal is forgotten, which deletes it then.
bool canComeBack(const ShelfStore& store, const QUuid& id) {
    for (const ShelfStore::Batch& batch : store.removalHistory()) {
        if (std::any_of(batch.begin(), batch.end(), [&](const ShelfItem& item) { return item.id == id; }))
            return true;
    }
    return false;
}

void stage(Staging file, const IngestServices& services) {
    auto outcome = std::make_shared<Outcome>();
    const QUuid id = file.item.id;
    const std::filesystem::path source = file.source;
    ShelfStore& store = services.store;
    services.scheduler.background(
        [outcome, source, id] {
            const auto staged = ItemStaging::stage(source, id);
            if (const auto* copy = std::get_if<std::filesystem::path>(&staged)) {
                outcome->copy = *copy;
                outcome->deepSize = ItemStaging::deepFileSize(source);
                // The copy, not the original: the original may already be gone.
                outcome->contentType = ItemStaging::contentType(*copy);
                struct stat info {};
                outcome->isDirectory = ::stat(copy->c_str(), &info) == 0 && S_ISDIR(info.st_mode);
            } else {
                outcome->error = std::get<ItemStaging::Failure>(staged).message;
            }
        },
        [outcome, item = std::move(file.item), source, &store] {
            if (!outcome->copy) {
                qCWarning(lcIngest).noquote()
                    << "Could not keep a copy of" << logName(source) << "(" << outcome->error.c_str()
                    << "); the item refers to the original only";
                ItemStaging::discard(item.id);
                return;
            }
            if (!isOnShelf(store, item.id)) {
                if (!canComeBack(store, item.id)) ItemStaging::discard(item.id);
                return;
            }
            ShelfItem staged = item;
            staged.stagedURL = LocalPath::toUrl(*outcome->copy, outcome->isDirectory);
            staged.byteSize = outcome->deepSize;
            staged.contentTypeIdentifier = outcome->contentType;
            store.update(staged);
        });
}

}  // namespace

ShelfItem makeItem(const std::filesystem::path& file, std::optional<QUuid> batchID,
                   const IngestServices& services) {
    struct stat info {};
    const bool exists = ::stat(file.c_str(), &info) == 0;
    const bool isDirectory = exists && S_ISDIR(info.st_mode);

    ShelfItem item;
    item.id = QUuid::createUuid();
    item.displayName = LocalPath::displayName(file);
    item.originURL = LocalPath::toUrl(file, isDirectory);
    item.originBookmark = FileBookmark::create(file);
    if (!exists) {
        item.contentTypeIdentifier = QString::fromLatin1(ShelfItem::kGenericContentType);
    } else if (isDirectory) {
        item.contentTypeIdentifier = QStringLiteral("inode/directory");
    } else if (!S_ISREG(info.st_mode)) {
        item.contentTypeIdentifier = ItemStaging::contentType(file);  // devices and pipes are never read
    } else {
        const QMimeType type =
            QMimeDatabase().mimeTypeForFile(LocalPath::displayName(file), QMimeDatabase::MatchExtension);
        if (type.isValid()) item.contentTypeIdentifier = type.name();
    }
    item.byteSize = ItemStaging::fileSize(file);
    item.addedAt = Timestamp::fromDateTime(services.now());
    item.batchID = batchID;
    return item;
}

void stageLater(std::vector<Staging> files, const IngestServices& services) {
    if (files.empty()) return;
    // The timer holds its own handle: dropping a handle cancels the work.
    auto handle = std::make_shared<ScheduledTask>();
    *handle = services.scheduler.after(0, [handle, files = std::move(files), services]() mutable {
        std::set<QUuid> onShelf;
        for (const ShelfItem& item : services.store.items()) onShelf.insert(item.id);
        for (Staging& file : files) {
            if (onShelf.count(file.item.id) != 0) stage(std::move(file), services);
        }
    });
}

}  // namespace mosswick::FileItems
