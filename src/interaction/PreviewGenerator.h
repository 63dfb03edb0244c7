#pragma once

#include <QImage>
#include <QString>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <optional>

#include "interaction/ThumbnailFolder.h"
#include "interaction/Thumbnailers.h"

class QIODevice;

namespace mosswick {

// Makes the picture of one file, off the main thread: from the desktop's thumbnail cache when it
// holds one for this version of the file, else with Qt's image readers for the formats they read,
// else with an installed thumbnailer; what it makes goes back into the cache, and what it cannot
// make is recorded there, so neither is done again on the next start. `generate` may run on
// several threads at once.
class PreviewGenerator {
public:
    struct Limits {
        // An image claiming more pixels than this is refused unread: decoding it would take
        // gigabytes (a decompression bomb).
        qint64 maxPixels = 100'000'000;
        std::chrono::milliseconds thumbnailerTime{20'000};
    };

    PreviewGenerator(ThumbnailFolder cache, Thumbnailers thumbnailers, Limits limits);

    // A picture of the file fitting a square of `size` (as the cache stores it), or nothing.
    std::optional<QImage> generate(const std::filesystem::path& file, const QString& mimeType,
                                   ThumbnailSize size, const std::atomic<bool>& cancelled) const;

    // Decodes an image at no more than `side` pixels, letting the reader scale while it decodes
    // (a JPEG is read at an eighth of its size when that is enough). Nothing for an unreadable,
    // truncated or oversized image.
    static std::optional<QImage> decodeScaled(QIODevice& device, int side, qint64 maxPixels,
                                              const QByteArray& format = {});
    static bool qtReads(const QString& mimeType);

    const ThumbnailFolder& cache() const { return cache_; }

private:
    ThumbnailFolder cache_;
    Thumbnailers thumbnailers_;
    Limits limits_;
};

}  // namespace mosswick
