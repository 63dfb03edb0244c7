#include "interaction/ThumbnailFolder.h"

#include <fcntl.h>
#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

#include <QBuffer>
#include <QCryptographicHash>
#include <QFile>
#include <QImageReader>
#include <QImageWriter>
#include <QStandardPaths>
#include <memory>

#include "model/LocalPath.h"

Q_LOGGING_CATEGORY(lcPreviews, "mosswick.previews", QtWarningMsg)

namespace mosswick {

namespace {

constexpr ThumbnailSize kSizes[] = {ThumbnailSize::normal, ThumbnailSize::large, ThumbnailSize::xLarge,
                                    ThumbnailSize::xxLarge};

// Beyond the largest cache size: a file this big in the cache is not a thumbnail.
constexpr int kLargestThumbnailSide = 4096;

bool isUriSafe(unsigned char c) {
    if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9')) return true;
    static constexpr std::string_view kSafe = "-_.!~*'()/$&+,:=@";
    return kSafe.find(static_cast<char>(c)) != std::string_view::npos;
}

// Opens by the path's bytes: a QString could not hold every file name.
std::unique_ptr<QFile> openForReading(const std::filesystem::path& path) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return nullptr;
    auto file = std::make_unique<QFile>();
    if (!file->open(fd, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        ::close(fd);
        return nullptr;
    }
    return file;
}

// Every folder made here is the owner's alone; folders that already exist are left as they are.
bool makePrivateFolder(const std::filesystem::path& folder) {
    std::filesystem::path walked;
    for (const std::filesystem::path& part : folder) {
        walked /= part;
        if (::mkdir(walked.c_str(), 0700) != 0 && errno != EEXIST) return false;
    }
    return std::filesystem::is_directory(folder);
}

}  // namespace

std::optional<ThumbnailKeys> ThumbnailKeys::of(const std::filesystem::path& path, const QString& mimeType) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) return std::nullopt;
    const std::filesystem::path absolute = path.is_absolute() ? path : std::filesystem::absolute(path);
    return ThumbnailKeys{ThumbnailFolder::fileUri(absolute.lexically_normal()),
                         static_cast<qint64>(info.st_mtime), static_cast<qint64>(info.st_size), mimeType};
}

ThumbnailFolder::ThumbnailFolder(std::filesystem::path root) : root_(std::move(root)) {}

std::filesystem::path ThumbnailFolder::defaultRoot() {
    const QString cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    return LocalPath::fromBytes(QFile::encodeName(cache)) / "thumbnails";
}

QByteArray ThumbnailFolder::fileUri(const std::filesystem::path& absolute) {
    static constexpr char kHex[] = "0123456789ABCDEF";
    QByteArray uri = "file://";
    for (const char byte : absolute.native()) {
        const auto c = static_cast<unsigned char>(byte);
        if (isUriSafe(c)) {
            uri.append(byte);
        } else {
            uri.append('%').append(kHex[c >> 4]).append(kHex[c & 0xf]);
        }
    }
    return uri;
}

ThumbnailSize ThumbnailFolder::sizeFor(int pixels) {
    for (const ThumbnailSize size : kSizes) {
        if (ThumbnailFolder::pixels(size) >= pixels) return size;
    }
    return ThumbnailSize::xxLarge;
}

const char* ThumbnailFolder::folderName(ThumbnailSize size) {
    switch (size) {
        case ThumbnailSize::normal:
            return "normal";
        case ThumbnailSize::large:
            return "large";
        case ThumbnailSize::xLarge:
            return "x-large";
        case ThumbnailSize::xxLarge:
            return "xx-large";
    }
    return "normal";
}

std::filesystem::path ThumbnailFolder::pathOf(ThumbnailSize size, const QByteArray& uri) const {
    const QByteArray name = QCryptographicHash::hash(uri, QCryptographicHash::Md5).toHex() + ".png";
    return root_ / folderName(size) / name.toStdString();
}

std::filesystem::path ThumbnailFolder::failurePathOf(const QByteArray& uri) const {
    const QByteArray name = QCryptographicHash::hash(uri, QCryptographicHash::Md5).toHex() + ".png";
    return root_ / "fail" / kFailureFolder / name.toStdString();
}

namespace {

// Read whole: Qt's readers give the keys intact only on the decoded image (its text lookup before
// decoding splits "Thumb::URI" at the first colon). Thumbnails are small.
std::optional<QImage> readThumbnail(const std::filesystem::path& path, const ThumbnailKeys& keys) {
    auto file = openForReading(path);
    if (!file) return std::nullopt;
    QImageReader reader(file.get(), "png");
    const QSize stored = reader.size();
    if (!stored.isValid() || stored.width() > kLargestThumbnailSide ||
        stored.height() > kLargestThumbnailSide)
        return std::nullopt;
    QImage image = reader.read();
    if (image.isNull()) return std::nullopt;
    bool isNumber = false;
    const qint64 mtime = image.text(QStringLiteral("Thumb::MTime")).toLongLong(&isNumber);
    if (!isNumber || mtime != keys.mtime || image.text(QStringLiteral("Thumb::URI")).toUtf8() != keys.uri) {
        qCDebug(lcPreviews) << "thumbnail of another version ignored:" << path.c_str();
        return std::nullopt;
    }
    return image;
}

}  // namespace

bool ThumbnailFolder::isValidFor(const std::filesystem::path& thumbnail, const ThumbnailKeys& keys) {
    return readThumbnail(thumbnail, keys).has_value();
}

std::optional<QImage> ThumbnailFolder::lookup(const ThumbnailKeys& keys, ThumbnailSize size) const {
    for (const ThumbnailSize candidate : kSizes) {
        if (candidate < size) continue;
        std::optional<QImage> image = readThumbnail(pathOf(candidate, keys.uri), keys);
        if (!image) continue;
        const int side = pixels(size);
        if (image->width() > side || image->height() > side)
            return image->scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
        return image;
    }
    return std::nullopt;
}

bool ThumbnailFolder::hasFailure(const ThumbnailKeys& keys) const {
    return isValidFor(failurePathOf(keys.uri), keys);
}

bool ThumbnailFolder::store(const ThumbnailKeys& keys, ThumbnailSize size, const QImage& image) const {
    return writePng(pathOf(size, keys.uri), image, keys);
}

bool ThumbnailFolder::recordFailure(const ThumbnailKeys& keys) const {
    QImage mark(1, 1, QImage::Format_ARGB32);
    mark.fill(Qt::transparent);
    return writePng(failurePathOf(keys.uri), mark, keys);
}

bool ThumbnailFolder::writePng(const std::filesystem::path& target, const QImage& image,
                               const ThumbnailKeys& keys) const {
    // A bare copy of the pixels: whatever text the source image carried stays out of the cache.
    // The keys go on the image, not the writer, whose text is split at the first colon.
    QImage bare(image.constBits(), image.width(), image.height(), image.bytesPerLine(), image.format());
    bare.setColorTable(image.colorTable());
    QImage tagged = bare.copy();
    tagged.setText(QStringLiteral("Thumb::URI"), QString::fromUtf8(keys.uri));
    tagged.setText(QStringLiteral("Thumb::MTime"), QString::number(keys.mtime));
    tagged.setText(QStringLiteral("Thumb::Size"), QString::number(keys.size));
    if (!keys.mimeType.isEmpty()) tagged.setText(QStringLiteral("Thumb::Mimetype"), keys.mimeType);
    tagged.setText(QStringLiteral("Software"), QStringLiteral("Mosswick"));
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    if (!QImageWriter(&buffer, "png").write(tagged)) return false;

    const std::filesystem::path folder = target.parent_path();
    if (!makePrivateFolder(folder)) return false;
    // Beside the target, so the rename is atomic; readers see the old thumbnail or the new one.
    std::string temporary = (folder / (target.filename().native() + ".XXXXXX")).native();
    const int fd = ::mkostemp(temporary.data(), O_CLOEXEC);
    if (fd < 0) {
        qCDebug(lcPreviews) << "thumbnail cache not writable:" << folder.c_str();
        return false;
    }
    const QByteArray& bytes = buffer.data();
    bool written = ::fchmod(fd, 0600) == 0;
    for (qsizetype done = 0; written && done < bytes.size();) {
        const ssize_t n = ::write(fd, bytes.constData() + done, static_cast<size_t>(bytes.size() - done));
        if (n < 0 && errno == EINTR) continue;
        written = n > 0;
        if (written) done += n;
    }
    written = ::close(fd) == 0 && written;
    if (!written || ::rename(temporary.c_str(), target.c_str()) != 0) {
        ::unlink(temporary.c_str());
        return false;
    }
    return true;
}

}  // namespace mosswick
