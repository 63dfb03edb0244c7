#include "interaction/DragPayload.h"

#include "model/LocalPath.h"
#include "model/Logging.h"
#include "model/WholeFile.h"

namespace mosswick {

namespace {

std::optional<QByteArray> utf8Contents(const std::filesystem::path& path) {
    std::error_code error;
    // A folder has no contents to offer; neither has a device or a pipe.
    if (!std::filesystem::is_regular_file(path, error)) return std::nullopt;
    const auto size = std::filesystem::file_size(path, error);
    if (error) return std::nullopt;
    if (size > static_cast<std::uintmax_t>(DragPayload::kLongestContentsText)) {
        qCInfo(lcShelf) << "not offering the contents of" << LocalPath::displayName(path)
                        << "as text: it holds" << size << "bytes";
        return std::nullopt;
    }
    const WholeFile file(path);
    if (!file.isValid()) return std::nullopt;
    const QByteArray contents = file.bytes();
    // Anything but UTF-8 comes back changed (each bad byte became U+FFFD), a cut-off last
    // character included.
    if (QString::fromUtf8(contents).toUtf8() != contents) return std::nullopt;
    // Copied out of a mapping that ends with the file object.
    return QByteArray(contents.constData(), contents.size());
}

}  // namespace

std::optional<DragPayload::PasteboardItem> DragPayload::pasteboardItem(const ShelfItem& item,
                                                                       AlternateDragData alternateData) {
    const std::optional<QUrl> url = item.dragURL();
    const auto path = url ? LocalPath::fromUrl(*url) : std::nullopt;
    if (!path) return std::nullopt;
    PasteboardItem made;
    made.fileURI = LocalPath::toUri(*path);
    switch (alternateData) {
        case AlternateDragData::none:
            break;
        case AlternateDragData::filePath: {
            // A folder's path without the trailing slash its URL carries.
            const QByteArray raw = LocalPath::bytes(*path);
            made.text = raw.size() > 1 && raw.endsWith('/') ? raw.chopped(1) : raw;
            break;
        }
        case AlternateDragData::fileName:
            made.text = LocalPath::bytes(LocalPath::lastComponent(*url));
            break;
        case AlternateDragData::fileContents:
            made.text = utf8Contents(*path);
            break;
    }
    if (item.webURL) made.link = item.webURL->toEncoded() + '\n' + item.displayName.toUtf8();
    return made;
}

DragPayload::Types DragPayload::types(const std::vector<PasteboardItem>& items) {
    QByteArray uris;
    QByteArrayList texts;
    QStringList links;
    for (const PasteboardItem& item : items) {
        uris += item.fileURI + "\r\n";
        if (item.text) texts << *item.text;
        if (item.link) links << QString::fromUtf8(*item.link);
    }
    Types types;
    if (items.empty()) return types;
    types.emplace_back(QString::fromLatin1(kUriList), uris);
    if (!texts.isEmpty()) {
        const QByteArray text = texts.join('\n');
        types.emplace_back(QString::fromLatin1(kUtf8Text), text);
        types.emplace_back(QString::fromLatin1(kPlainText), text);
    }
    if (!links.isEmpty()) {
        const QString pairs = links.join(QLatin1Char('\n'));
        types.emplace_back(QString::fromLatin1(kMozUrl),
                           QByteArray(reinterpret_cast<const char*>(pairs.utf16()), pairs.size() * 2));
    }
    return types;
}

}  // namespace mosswick
