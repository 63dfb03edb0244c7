#include "model/LocalPath.h"

#include <sys/stat.h>

namespace mosswick::LocalPath {

namespace {
// Characters left as they are in a file URL's path besides the unreserved set.
const QByteArray kPathSafe = "/!$&'()*+,;=:@~";
}  // namespace

QByteArray bytes(const std::filesystem::path& path) {
    const std::string& native = path.native();
    return QByteArray(native.data(), static_cast<qsizetype>(native.size()));
}

std::filesystem::path fromBytes(const QByteArray& raw) {
    return std::filesystem::path(std::string(raw.constData(), static_cast<size_t>(raw.size())));
}

QByteArray toUri(const std::filesystem::path& path, bool isDirectory) {
    QByteArray raw = bytes(path.lexically_normal());
    if (raw.isEmpty() || raw.front() != '/') return {};
    if (isDirectory && !raw.endsWith('/')) raw.append('/');
    return "file://" + raw.toPercentEncoding(kPathSafe);
}

QUrl toUrl(const std::filesystem::path& path, bool isDirectory) {
    const QByteArray uri = toUri(path, isDirectory);
    return uri.isEmpty() ? QUrl() : QUrl::fromEncoded(uri, QUrl::StrictMode);
}

std::optional<std::filesystem::path> fromUrl(const QUrl& url) {
    if (!url.isValid() || !url.isLocalFile()) return std::nullopt;
    // A file on another machine is not at this path here.
    if (const QString host = url.host(); !host.isEmpty() && host != QLatin1StringView("localhost"))
        return std::nullopt;
    const QByteArray encoded = url.path(QUrl::FullyEncoded).toLatin1();
    // An escaped "/" or NUL cannot be part of a file name: decoded, it would name another file.
    const QByteArray lower = encoded.toLower();
    if (lower.contains("%2f") || lower.contains("%00")) return std::nullopt;
    QByteArray raw = QByteArray::fromPercentEncoding(encoded);
    if (raw.isEmpty() || raw.front() != '/') return std::nullopt;
    return fromBytes(raw);
}

QString displayName(const std::filesystem::path& path) {
    std::filesystem::path name = path.filename();
    if (name.empty()) name = path.parent_path().filename();  // "…/folder/" names the folder
    return QString::fromUtf8(bytes(name));
}

std::filesystem::path lastComponent(const QUrl& url) {
    const auto path = fromUrl(url);
    if (!path) return {};
    std::filesystem::path name = path->filename();
    if (name.empty()) name = path->parent_path().filename();
    return name;
}

bool exists(const std::filesystem::path& path) {
    struct stat info {};
    return ::lstat(path.c_str(), &info) == 0;
}

}  // namespace mosswick::LocalPath
