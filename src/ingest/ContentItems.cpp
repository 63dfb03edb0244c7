#include "ingest/ContentItems.h"

#include <QBuffer>
#include <QStringEncoder>
#include <algorithm>
#include <functional>

#include "ingest/DesktopLinkFile.h"
#include "ingest/DroppedFileNames.h"
#include "ingest/Pasteboard.h"
#include "model/AppFiles.h"
#include "model/AtomicFile.h"
#include "model/ItemStaging.h"
#include "model/LocalPath.h"
#include "model/Logging.h"
#include "model/ShelfStore.h"

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

namespace {

// Half a surrogate pair has no UTF-8 form: rather nothing than a file that is not the text.
std::optional<QByteArray> utf8Of(const QString& text) {
    QStringEncoder utf8(QStringEncoder::Utf8, QStringEncoder::Flag::Stateless);
    QByteArray bytes = utf8.encode(text);
    if (utf8.hasError()) return std::nullopt;
    return bytes;
}

// A long text is decoded, encoded and written off the main thread (`text` runs there): its item
// waits for its file meanwhile, as a promised file does, and leaves the shelf (logged) should the
// file not be written.
ShelfItem writtenLater(const IngestServices& services, const QString& name, std::function<QString()> text) {
    ShelfItem item;
    item.id = QUuid::createUuid();
    item.displayName = name;
    item.contentTypeIdentifier = QStringLiteral("text/plain");
    item.isPromised = true;
    item.addedAt = Timestamp::fromDateTime(services.now());
    const std::filesystem::path folder = ItemStaging::itemFolder(item.id);
    const std::filesystem::path file = folder / LocalPath::fromBytes(name.toUtf8());
    auto result = std::make_shared<std::pair<std::string, qint64>>();
    ShelfStore& store = services.store;
    services.scheduler.background(
        [text, folder, file, result] {
            const std::optional<QByteArray> bytes = utf8Of(text());
            if (!bytes) {
                result->first = "the text is not valid Unicode";
            } else if (!AppFiles::makePrivateDirectory(folder)) {
                result->first = "cannot create " + folder.string();
            } else {
                result->first = AtomicFile::write(file, *bytes, 0644);
                result->second = bytes->size();
            }
        },
        [&store, item, file, result]() mutable {
            if (!result->first.empty()) {
                qCWarning(lcIngest) << "Could not keep the dropped text as" << item.displayName << ":"
                                    << result->first.c_str();
                ItemStaging::discard(item.id);
                store.remove({item.id}, false);
                return;
            }
            item.isPromised = false;
            item.stagedURL = LocalPath::toUrl(file);
            item.byteSize = result->second;
            store.update(item);
        });
    return item;
}

}  // namespace

std::optional<ShelfItem> readText(const Pasteboard& pasteboard, const IngestServices& services) {
    // Decoding 100 MB takes a quarter of a second: a long text's bytes go to the background whole,
    // and only their beginning is read here, for the name.
    if (std::optional<PlainText> plain = pasteboard.rawPlainText();
        plain && plain->bytes.size() >= kLongText) {
        const QString head = plain->head(kTextHead);
        if (hasVisibleCharacter(head))
            return writtenLater(services, DroppedFileNames::forText(head),
                                [plain = std::move(*plain)] { return plain.decoded(); });
    }
    const std::optional<QString> text = pasteboard.string(Pasteboard::Text::plain);
    if (!text || !hasVisibleCharacter(*text)) return std::nullopt;
    const QString name = DroppedFileNames::forText(*text);
    if (text->size() >= kLongText) return writtenLater(services, name, [text = *text] { return text; });
    const std::optional<QByteArray> bytes = utf8Of(*text);
    if (!bytes) {
        qCWarning(lcIngest) << "A dropped text is not valid Unicode; it was not kept";
        return std::nullopt;
    }
    return written(services, name, *bytes, QStringLiteral("text/plain"), name);
}

}  // namespace mosswick::ContentItems
