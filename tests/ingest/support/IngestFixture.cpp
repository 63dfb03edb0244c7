#include "support/IngestFixture.h"

#include <QMutex>

#include "model/ItemStaging.h"
#include "model/LocalPath.h"

namespace mosswick::testing {

namespace {

QMutex logMutex;
QStringList& collected() {
    static QStringList messages;
    return messages;
}

void collect(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (type == QtDebugMsg || type == QtInfoMsg) return;
    if (QLatin1String(context.category) != QLatin1String("mosswick.ingest")) return;
    const QMutexLocker lock(&logMutex);
    collected() << message;
}

}  // namespace

IngestLog::IngestLog() : previous_(qInstallMessageHandler(collect)) {}

IngestLog::~IngestLog() {
    qInstallMessageHandler(previous_);
    const QMutexLocker lock(&logMutex);
    collected().clear();
}

QStringList IngestLog::warnings() const {
    const QMutexLocker lock(&logMutex);
    return collected();
}

StagingAreaBlocked::StagingAreaBlocked() {
    const auto& staging = ItemStaging::directory();
    aside_ = staging.parent_path() / "Staged.aside";
    std::filesystem::create_directories(staging);
    std::filesystem::rename(staging, aside_);
    writeFile(staging, "in the way");
}

StagingAreaBlocked::~StagingAreaBlocked() {
    const auto& staging = ItemStaging::directory();
    std::filesystem::remove(staging);
    std::filesystem::rename(aside_, staging);
}

std::vector<ShelfItem> IngestTest::drop(const Pasteboard& pasteboard, bool acceptsFilePromises) {
    std::vector<ShelfItem> items = DropIngest::items(
        pasteboard, acceptsFilePromises,
        [this](const ShelfItem& item) {
            updates.push_back(item);
            store.update(item);
        },
        services);
    if (!items.empty()) store.add(items);
    return items;
}

const ShelfItem* IngestTest::onShelf(const QUuid& id) const {
    for (const ShelfItem& item : store.items()) {
        if (item.id == id) return &item;
    }
    return nullptr;
}

std::filesystem::path IngestTest::itemFile(const ShelfItem& item) {
    if (!item.stagedURL) return {};
    return LocalPath::fromUrl(*item.stagedURL).value_or(std::filesystem::path());
}

}  // namespace mosswick::testing
