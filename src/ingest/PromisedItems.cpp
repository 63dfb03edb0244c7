#include "ingest/PromisedItems.h"

#include <sys/stat.h>

#include <QMimeDatabase>
#include <variant>

#include "ingest/DroppedFileNames.h"
#include "ingest/FilePromise.h"
#include "model/ItemStaging.h"
#include "model/LocalPath.h"
#include "model/Logging.h"
#include "model/Scheduler.h"
#include "model/ShelfStore.h"

namespace mosswick::PromisedItems {

namespace {

QString promisedType(const FilePromise& promise) {
    const QStringList types = promise.fileTypes();
    if (!types.isEmpty()) {
        const QMimeType type = QMimeDatabase().mimeTypeForName(types.first());
        if (type.isValid()) return type.name();
    }
    return QString::fromLatin1(ShelfItem::kGenericContentType);
}

struct Measured {
    qint64 size = 0;
    QString contentType;
    bool isDirectory = false;
};

void arrived(const ShelfItem& placeholder, const std::filesystem::path& file, const OnUpdate& onUpdate,
             Scheduler& scheduler) {
    auto measured = std::make_shared<Measured>();
    scheduler.background(
        [measured, file] {
            // A source may deliver a folder (an archive's directory): count what is inside.
            measured->size = ItemStaging::deepFileSize(file);
            measured->contentType = ItemStaging::contentType(file);
            struct stat info {};
            measured->isDirectory = ::stat(file.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
        },
        [measured, placeholder, file, onUpdate] {
            ShelfItem item = placeholder;
            item.displayName = LocalPath::displayName(file);
            item.stagedURL = LocalPath::toUrl(file, measured->isDirectory);
            item.byteSize = measured->size;
            item.contentTypeIdentifier = measured->contentType;
            item.isPromised = false;
            if (onUpdate) onUpdate(item);
        });
}

}  // namespace

ShelfItem makeItem(const std::shared_ptr<FilePromise>& promise, std::optional<QUuid> batchID,
                   const OnUpdate& onUpdate, const IngestServices& services) {
    ShelfItem placeholder;
    placeholder.id = QUuid::createUuid();
    placeholder.contentTypeIdentifier = promisedType(*promise);
    const std::vector<QByteArray> names = promise->fileNames();
    const QByteArray name = DroppedFileNames::forPromise(names.empty() ? QByteArray() : names.front(),
                                                         placeholder.contentTypeIdentifier);
    placeholder.displayName = QString::fromUtf8(name);
    placeholder.byteSize = 0;
    placeholder.isPromised = true;
    placeholder.batchID = batchID;
    placeholder.addedAt = Timestamp::fromDateTime(services.now());

    const auto destination = ItemStaging::promiseDestination(placeholder.id);
    const auto* folder = std::get_if<std::filesystem::path>(&destination);
    if (!folder) {
        qCWarning(lcIngest) << "No folder to receive" << placeholder.displayName
                            << "in; it stays a placeholder:"
                            << std::get<ItemStaging::Failure>(destination).message.c_str();
        return placeholder;
    }

    Scheduler& scheduler = services.scheduler;
    ShelfStore& store = services.store;
    promise->receive({*folder, LocalPath::fromBytes(name)},
                     [placeholder, onUpdate, &scheduler, &store](const FilePromise::Delivery& delivery) {
                         if (delivery.file) {
                             arrived(placeholder, *delivery.file, onUpdate, scheduler);
                             return;
                         }
                         qCWarning(lcIngest) << "The drag source did not deliver" << placeholder.displayName
                                             << ":" << delivery.problem;
                         store.remove({placeholder.id}, false);
                     });
    return placeholder;
}

}  // namespace mosswick::PromisedItems
