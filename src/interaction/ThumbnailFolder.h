#pragma once

#include <QByteArray>
#include <QImage>
#include <QLoggingCategory>
#include <QString>
#include <filesystem>
#include <optional>

Q_DECLARE_LOGGING_CATEGORY(lcPreviews)

namespace mosswick {

// The sizes of the desktop's shared thumbnail cache, each a folder of its own; a thumbnail fits
// a square of that many pixels.
enum class ThumbnailSize { normal = 128, large = 256, xLarge = 512, xxLarge = 1024 };

// What a cached thumbnail must say of its file to stand for it: the file's URI and modification
// time (whole seconds); the size and type are written for other readers' benefit.
struct ThumbnailKeys {
    QByteArray uri;
    qint64 mtime = 0;
    qint64 size = 0;
    QString mimeType;

    // Of the file at `path` as it is now; nothing when it is not a readable regular file.
    static std::optional<ThumbnailKeys> of(const std::filesystem::path& path, const QString& mimeType);
};

// The freedesktop thumbnail cache ($XDG_CACHE_HOME/thumbnails), shared with file managers and
// every other program that pictures files: thumbnails are PNG files named by the MD5 of the
// file's URI, valid only while their URI and modification time match the file. Reads and writes
// are safe from any thread; writing never fails loudly, since the cache is only ever a shortcut.
class ThumbnailFolder {
public:
    explicit ThumbnailFolder(std::filesystem::path root);
    static std::filesystem::path defaultRoot();

    // The URI every GLib program computes for the path (g_filename_to_uri): the path's bytes, with
    // all but letters, digits and -_.!~*'()/$&+,:=@ percent-encoded in upper case. Only an
    // identical URI gives the identical file name.
    static QByteArray fileUri(const std::filesystem::path& absolute);
    // The smallest size whose thumbnails are at least `pixels` wide (the largest when none is).
    static ThumbnailSize sizeFor(int pixels);
    static int pixels(ThumbnailSize size) { return static_cast<int>(size); }
    static const char* folderName(ThumbnailSize size);

    const std::filesystem::path& root() const { return root_; }
    std::filesystem::path pathOf(ThumbnailSize size, const QByteArray& uri) const;
    std::filesystem::path failurePathOf(const QByteArray& uri) const;

    // A valid thumbnail for the file at `size` or a larger one, scaled to fit `size`; nothing when
    // there is none or it belongs to another version of the file.
    std::optional<QImage> lookup(const ThumbnailKeys& keys, ThumbnailSize size) const;
    // True when this program already failed to picture this version of the file.
    bool hasFailure(const ThumbnailKeys& keys) const;

    // Both return false when nothing could be written (a read-only cache, a full disk).
    bool store(const ThumbnailKeys& keys, ThumbnailSize size, const QImage& image) const;
    bool recordFailure(const ThumbnailKeys& keys) const;

    // Whether a thumbnail file's own keys say it stands for this version of the file.
    static bool isValidFor(const std::filesystem::path& thumbnail, const ThumbnailKeys& keys);

    // Fails are kept per program and version, so a newer Mosswick (or another program) tries anew.
    static constexpr const char* kFailureFolder = "mosswick-1.0";

private:
    bool writePng(const std::filesystem::path& target, const QImage& image, const ThumbnailKeys& keys) const;

    std::filesystem::path root_;
};

}  // namespace mosswick
