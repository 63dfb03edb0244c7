#include "ingest/FileItems.h"

#include <sys/stat.h>

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

// Removed with undo: the copy stays until the removal is forgotten, which deletes it then.
bool canComeBack(const ShelfStore& store, const QUuid& id) {
    for (const ShelfStore::Batch& batch : store.removalHistory()) {
        if (std::any_of(batch.begin(), batch.end(), [&](const ShelfItem& item) { return item.id == id; }))
            return true;
    }
    return false;
}

// The finished copies of one drop, handed to the store together: a shelf that redraws on every
// change would otherwise redraw once a file.
struct Handover {
    Scheduler& scheduler;
    ShelfStore& store;
    std::vector<ShelfItem> ready;
    ScheduledTask delivery;

    void add(ShelfItem item, const std::shared_ptr<Handover>& self) {
        ready.push_back(std::move(item));
        if (delivery.isPending()) return;
        delivery = scheduler.after(kUpdateInterval, [self] { self->deliver(); });
    }

    void deliver() {
        std::set<QUuid> onShelf;
        for (const ShelfItem& item : store.items()) onShelf.insert(item.id);
        std::vector<ShelfItem> updates;
        for (ShelfItem& item : ready) {
            if (onShelf.count(item.id) != 0) {
                updates.push_back(std::move(item));
            } else if (!canComeBack(store, item.id)) {
                ItemStaging::discard(item.id);
            }
        }
        ready.clear();
        if (!updates.empty()) store.update(updates);
    }
};

void stage(Staging file, const std::shared_ptr<Handover>& handover, Scheduler& scheduler) {
    auto outcome = std::make_shared<Outcome>();
    const QUuid id = file.item.id;
    const std::filesystem::path source = file.source;
    scheduler.background(
        [outcome, source, id] {
            const auto staged = ItemStaging::stage(source, id);
            if (const auto* copy = std::get_if<std::filesystem::path>(&staged)) {
                // Measured on the copy, which is the original's twin: the original may be gone by now.
                outcome->copy = *copy;
                outcome->deepSize = ItemStaging::deepFileSize(*copy);
                outcome->contentType = ItemStaging::contentType(*copy);
                struct stat info {};
                outcome->isDirectory = ::stat(copy->c_str(), &info) == 0 && S_ISDIR(info.st_mode);
            } else {
                outcome->error = std::get<ItemStaging::Failure>(staged).message;
            }
        },
        [outcome, item = std::move(file.item), source, handover]() mutable {
            if (!outcome->copy) {
                ItemStaging::discard(item.id);
                struct stat info {};
                if (::stat(source.c_str(), &info) != 0) {
                    // No copy and no original: a tile that could never be dragged or opened.
                    qCWarning(lcIngest).noquote()
                        << logName(source) << "was gone before a copy could be made ("
                        << outcome->error.c_str() << "); it leaves the shelf";
                    handover->store.remove({item.id}, false);
                    return;
                }
                qCWarning(lcIngest).noquote()
                    << "Could not keep a copy of" << logName(source) << "(" << outcome->error.c_str()
                    << "); the item refers to the original only";
                item.copyProblem = QString::fromStdString(outcome->error);
                handover->store.update(item);
                return;
            }
            item.stagedURL = LocalPath::toUrl(*outcome->copy, outcome->isDirectory);
            item.byteSize = outcome->deepSize;
            item.contentTypeIdentifier = outcome->contentType;
            handover->add(std::move(item), handover);
        });
}

}  // namespace

ShelfItem makeItem(const std::filesystem::path& file, const std::optional<QUrl>& droppedURL,
                   std::optional<QUuid> batchID, TypeByName& types, const IngestServices& services) {
    struct stat info {};
    const bool exists = ::stat(file.c_str(), &info) == 0;
    const bool isDirectory = exists && S_ISDIR(info.st_mode);

    ShelfItem item;
    item.id = QUuid::createUuid();
    item.displayName = LocalPath::displayName(file);
    // A folder's URL ends in "/", which drops often leave out.
    const bool sameFile = droppedURL && !isDirectory && LocalPath::fromUrl(*droppedURL) == file;
    item.originURL = sameFile ? *droppedURL : LocalPath::toUrl(file, isDirectory);
    item.originBookmark = FileBookmark::create(file);
    if (!exists) {
        item.contentTypeIdentifier = QString::fromLatin1(ShelfItem::kGenericContentType);
    } else if (isDirectory) {
        item.contentTypeIdentifier = QStringLiteral("inode/directory");
    } else if (!S_ISREG(info.st_mode)) {
        item.contentTypeIdentifier = ItemStaging::contentType(file);  // devices and pipes are never read
    } else {
        item.contentTypeIdentifier = types.of(file);
    }
    item.byteSize = ItemStaging::fileSize(file);
    item.addedAt = Timestamp::fromDateTime(services.now());
    item.batchID = batchID;
    return item;
}

void stageLater(std::vector<Staging> files, const IngestServices& services) {
    if (files.empty()) return;
    Scheduler& scheduler = services.scheduler;
    auto handover = std::make_shared<Handover>(Handover{scheduler, services.store, {}, {}});
    // The timer holds its own handle: dropping a handle cancels the work.
    auto handle = std::make_shared<ScheduledTask>();
    *handle = scheduler.after(0, [handle, handover, files = std::move(files), &scheduler]() mutable {
        std::set<QUuid> onShelf;
        for (const ShelfItem& item : handover->store.items()) onShelf.insert(item.id);
        for (Staging& file : files) {
            if (onShelf.count(file.item.id) != 0) stage(std::move(file), handover, scheduler);
        }
    });
}

}  // namespace mosswick::FileItems
