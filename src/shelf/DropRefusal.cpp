#include "shelf/DropRefusal.h"

#include <unistd.h>

#include <sys/stat.h>

#include "model/LocalPath.h"

namespace mosswick::DropRefusal {

bool isReadable(const ShelfItem& item) {
    if (item.isPromised || !item.originURL) return true;
    const std::optional<std::filesystem::path> file = LocalPath::fromUrl(*item.originURL);
    if (!file) return true;
    struct stat info {};
    if (::stat(file->c_str(), &info) != 0) return false;
    const int wanted = S_ISDIR(info.st_mode) ? (R_OK | X_OK) : R_OK;
    return ::access(file->c_str(), wanted) == 0;
}

std::optional<QString> reason(const QStringList& offered, const std::vector<ShelfItem>& items,
                              const std::function<bool(const ShelfItem&)>& readable) {
    if (items.empty()) {
        if (offered.isEmpty()) return QStringLiteral("the drop named no data at all");
        return QStringLiteral(
                   "none of its data could be read (offered: %1); the source sent nothing the "
                   "shelf keeps")
            .arg(offered.join(QStringLiteral(", ")));
    }
    for (const ShelfItem& item : items) {
        if (readable(item)) continue;
        const QString name =
            item.originURL ? item.originURL->toString(QUrl::PreferLocalFile) : item.displayName;
        return QStringLiteral("%1 cannot be read, so it could not be copied onto the shelf").arg(name);
    }
    return std::nullopt;
}

}  // namespace mosswick::DropRefusal
