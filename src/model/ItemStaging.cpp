#include "model/ItemStaging.h"

namespace mosswick::ItemStaging {
const std::filesystem::path& directory() {
    static std::filesystem::path p;
    return p;
}
std::filesystem::path itemFolder(const QUuid&) { return {}; }
Result<std::filesystem::path> stage(const std::filesystem::path&, const QUuid&) { return Failure{}; }
Result<std::filesystem::path> promiseDestination(const QUuid&) { return Failure{}; }
void pruneOrphans(const std::set<QUuid>&) {}
void discard(const QUuid&) {}
QString contentType(const std::filesystem::path&) { return {}; }
qint64 fileSize(const std::filesystem::path&) { return 0; }
qint64 deepFileSize(const std::filesystem::path&) { return 0; }
}  // namespace mosswick::ItemStaging
