#include "ingest/ContentItems.h"

#include <QBuffer>
#include <QStringEncoder>
#include <algorithm>

#include "ingest/DesktopLinkFile.h"
#include "ingest/DroppedFileNames.h"
#include "ingest/Pasteboard.h"
#include "model/AppFiles.h"
#include "model/AtomicFile.h"
#include "model/ItemStaging.h"
#include "model/LocalPath.h"
#include "model/Logging.h"

namespace mosswick::ContentItems {

namespace {

// A new item whose whole content is `bytes`, written under `fileName` into its own folder.
std::optional<ShelfItem> written(const IngestServices& services, const QString& fileName,
                                 const QByteArray& bytes, const QString& contentType,
                                 const QString& displayName) {
    ShelfItem item;
    item.id = QUuid::createUuid();
    const std::filesystem::path folder = ItemStaging::itemFolder(item.id);
    const std::filesystem::path file = folder / LocalPath::fromBytes(fileName.toUtf8());
    std::string error;
    if (!AppFiles::makePrivateDirectory(folder)) error = "cannot create " + folder.string();
    if (error.empty()) error = AtomicFile::write(file, bytes, 0644);
    if (!error.empty()) {
        qCWarning(lcIngest) << "Could not keep the dropped" << contentType << "as" << fileName << ":"
                            << error.c_str();
        ItemStaging::discard(item.id);
        return std::nullopt;
    }
    item.displayName = displayName;
    item.stagedURL = LocalPath::toUrl(file);
    item.contentTypeIdentifier = contentType;
    item.byteSize = bytes.size();
    item.addedAt = Timestamp::fromDateTime(services.now());
    return item;
}

bool hasVisibleCharacter(const QString& text) {
    return std::any_of(text.begin(), text.end(), [](QChar c) { return !c.isSpace(); });
}

}  // namespace

std::optional<ShelfItem> readWebURL(const Pasteboard& pasteboard, const IngestServices& services) {
    const std::vector<Pasteboard::Object> objects = pasteboard.objects(Pasteboard::Kind::webURL);
    const QUrl* url = nullptr;
    for (const Pasteboard::Object& object : objects) {
        url = std::get_if<QUrl>(&object);
        if (url) break;
    }
    if (!url || url->isLocalFile()) return std::nullopt;

    QString title = pasteboard.string(Pasteboard::Text::linkTitle).value_or(url->host());
    if (title.isEmpty()) title = QStringLiteral("Link");
    const QByteArray data = DesktopLinkFile::data(*url, title);
    if (data.isEmpty()) return std::nullopt;
    auto item = written(services, DroppedFileNames::forLink(title), data,
                        QString::fromLatin1(DesktopLinkFile::kContentType), title);
    if (item) item->webURL = *url;
    return item;
}

std::optional<ShelfItem> readImage(const Pasteboard& pasteboard, const IngestServices& services) {
    const QImage image = pasteboard.image();
    if (image.isNull()) {
        // A document offered only as data (a page dragged out of a PDF viewer) is kept as it is.
        const QByteArray pdf = pasteboard.document();
        if (pdf.isEmpty()) return std::nullopt;
        const QString name = DroppedFileNames::forDocument(services.now());
        return written(services, name, pdf, QStringLiteral("application/pdf"), name);
    }
    QByteArray png;
    QBuffer buffer(&png);
    if (!buffer.open(QIODevice::WriteOnly) || !image.save(&buffer, "PNG") || png.isEmpty()) {
        qCWarning(lcIngest) << "Could not encode a dropped image of" << image.size() << "as PNG";
        return std::nullopt;
    }
    const QString name = DroppedFileNames::forImage(services.now());
    return written(services, name, png, QStringLiteral("image/png"), name);
}

std::optional<ShelfItem> readText(const Pasteboard& pasteboard, const IngestServices& services) {
    const std::optional<QString> text = pasteboard.string(Pasteboard::Text::plain);
    if (!text || !hasVisibleCharacter(*text)) return std::nullopt;
    QStringEncoder utf8(QStringEncoder::Utf8, QStringEncoder::Flag::Stateless);
    const QByteArray bytes = utf8.encode(*text);
    // Half a surrogate pair has no UTF-8 form: rather nothing than a file that is not the text.
    if (utf8.hasError()) {
        qCWarning(lcIngest) << "A dropped text is not valid Unicode; it was not kept";
        return std::nullopt;
    }
    const QString name = DroppedFileNames::forText(*text);
    return written(services, name, bytes, QStringLiteral("text/plain"), name);
}

}  // namespace mosswick::ContentItems
