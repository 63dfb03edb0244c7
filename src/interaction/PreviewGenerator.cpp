#include "interaction/PreviewGenerator.h"

#include <fcntl.h>
#include <unistd.h>

#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QMimeDatabase>
#include <QSet>

namespace mosswick {

namespace {

const QSet<QString>& readableTypes() {
    static const QSet<QString> types = [] {
        QSet<QString> names;
        for (const QByteArray& name : QImageReader::supportedMimeTypes())
            names.insert(QString::fromLatin1(name));
        // Pictured by the desktop's own thumbnailer, which draws them at their intended size.
        names.remove(QStringLiteral("image/svg+xml"));
        names.remove(QStringLiteral("image/svg+xml-compressed"));
        return names;
    }();
    return types;
}

}  // namespace

PreviewGenerator::PreviewGenerator(ThumbnailFolder cache, Thumbnailers thumbnailers, Limits limits)
    : cache_(std::move(cache)), thumbnailers_(std::move(thumbnailers)), limits_(limits) {}

bool PreviewGenerator::qtReads(const QString& mimeType) {
    if (readableTypes().contains(mimeType)) return true;
    const QMimeType type = QMimeDatabase().mimeTypeForName(mimeType);
    return type.isValid() && readableTypes().contains(type.name());
}

std::optional<QImage> PreviewGenerator::decodeScaled(QIODevice& device, int side, qint64 maxPixels,
                                                     const QByteArray& format) {
    QImageReader reader(&device, format);
    reader.setAutoTransform(true);
    reader.setDecideFormatFromContent(true);
    const QSize claimed = reader.size();
    if (!claimed.isValid() || claimed.isEmpty()) return std::nullopt;
    if (static_cast<qint64>(claimed.width()) * claimed.height() > maxPixels) {
        qCInfo(lcPreviews) << "image refused, it claims" << claimed.width() << "x" << claimed.height()
                           << "pixels";
        return std::nullopt;
    }
    // Only JPEG decodes at a fraction of its size (libjpeg scales while decoding); the other
    // readers decode whole and then scale, which Qt's PNG reader gets wrong for 1-bit images, so
    // they are scaled here instead.
    if ((claimed.width() > side || claimed.height() > side) && reader.format() == "jpeg") {
        // Turned images swap their sides after decoding; the fit is for the image as stored.
        reader.setScaledSize(claimed.scaled(side, side, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)));
    }
    QImage image = reader.read();
    if (image.isNull()) return std::nullopt;
    if (image.width() > side || image.height() > side) {
        if (image.depth() < 32)
            image.convertTo(image.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32);
        image = image.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    }
    return image;
}

std::optional<QImage> PreviewGenerator::generate(const std::filesystem::path& file, const QString& mimeType,
                                                 ThumbnailSize size,
                                                 const std::atomic<bool>& cancelled) const {
    const auto keys = ThumbnailKeys::of(file, mimeType);
    if (!keys) return std::nullopt;
    if (auto cached = cache_.lookup(*keys, size)) return cached;
    if (cache_.hasFailure(*keys) || cancelled.load()) return std::nullopt;
    const int side = ThumbnailFolder::pixels(size);

    std::optional<QImage> made;
    if (qtReads(mimeType)) {
        // Opened by the path's bytes, which a QString could not always hold.
        const int fd = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
        QFile device;
        if (fd >= 0 && device.open(fd, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
            made = decodeScaled(device, side, limits_.maxPixels);
        } else if (fd >= 0) {
            ::close(fd);
        }
    }
    if (!made && !cancelled.load()) {
        if (const Thumbnailer* thumbnailer = thumbnailers_.forType(mimeType)) {
            if (auto bytes = Thumbnailers::run(*thumbnailer, file, keys->uri, side, limits_.thumbnailerTime,
                                               cancelled)) {
                QBuffer buffer(&*bytes);
                buffer.open(QIODevice::ReadOnly);
                made = decodeScaled(buffer, side, limits_.maxPixels);
            }
            if (!made && !cancelled.load())
                qCInfo(lcPreviews) << "thumbnailer made no picture of" << keys->uri;
        }
    }
    if (cancelled.load()) return made;
    if (made) {
        cache_.store(*keys, size, *made);
    } else if (qtReads(mimeType) || thumbnailers_.forType(mimeType)) {
        // Only what was tried and failed; a type nothing pictures is not worth a record per file.
        cache_.recordFailure(*keys);
    }
    return made;
}

}  // namespace mosswick
