#include "platform/qt/QMimeDataPasteboard.h"

#include <QMimeData>
#include <algorithm>

#include "ingest/PasteboardTypes.h"
#include "ingest/RichText.h"
#include "platform/qt/MimeLinks.h"

namespace mosswick {

namespace {

const QString kGnomeCopiedFiles = QStringLiteral("x-special/gnome-copied-files");
const QString kMozUrl = QStringLiteral("text/x-moz-url");
const QString kNetscapeUrl = QStringLiteral("_NETSCAPE_URL");
const QString kQtImage = QStringLiteral("application/x-qt-image");
const QString kPdf = QStringLiteral("application/pdf");
const QString kHtml = QStringLiteral("text/html");

}  // namespace

QMimeDataPasteboard::QMimeDataPasteboard(const QMimeData& data, PromiseFactory promises)
    : data_(data), promises_(std::move(promises)) {}

QStringList QMimeDataPasteboard::types() const { return data_.formats(); }

// The type as the data spells it, when it lists it.
std::optional<QString> QMimeDataPasteboard::listed(const QString& type) const {
    return PasteboardTypes::find(data_.formats(), type);
}

bool QMimeDataPasteboard::offers(const QString& type) const { return listed(type).has_value(); }

QByteArray QMimeDataPasteboard::read(const QString& type) const {
    const std::optional<QString> format = listed(type);
    return format ? data_.data(*format) : QByteArray();
}

// Files and links in list order: the URI list where there is one, else the file manager's copy.
std::vector<QUrl> QMimeDataPasteboard::listedUrls() const {
    if (offers(PasteboardTypes::fileList)) return MimeLinks::uriList(read(PasteboardTypes::fileList));
    return MimeLinks::gnomeCopiedFiles(read(kGnomeCopiedFiles));
}

std::vector<Pasteboard::Object> QMimeDataPasteboard::objects(Kinds kinds) const {
    if (kinds.testFlag(Kind::filePromise) && promises_ && offers(PasteboardTypes::directSave)) {
        if (std::shared_ptr<FilePromise> promise = promises_(data_)) return {promise};
    }
    std::vector<Object> objects;
    const std::vector<QUrl> listed = listedUrls();
    objects.reserve(listed.size());
    for (const QUrl& url : listed) {
        if (kinds.testFlag(url.isLocalFile() ? Kind::fileURL : Kind::webURL)) objects.emplace_back(url);
    }
    // Browsers offer links only in these; the same link may be in the list already.
    if (kinds.testFlag(Kind::webURL)) {
        for (const auto& link :
             {MimeLinks::mozUrl(read(kMozUrl)), MimeLinks::netscapeUrl(read(kNetscapeUrl))}) {
            if (!link || link->url.isLocalFile()) continue;
            if (std::find(listed.begin(), listed.end(), link->url) != listed.end()) continue;
            if (std::find(objects.begin(), objects.end(), Object(link->url)) != objects.end()) continue;
            objects.emplace_back(link->url);
        }
    }
    return objects;
}

std::optional<QString> QMimeDataPasteboard::string(Text kind) const {
    if (kind == Text::linkTitle) {
        for (const auto& link :
             {MimeLinks::mozUrl(read(kMozUrl)), MimeLinks::netscapeUrl(read(kNetscapeUrl))}) {
            if (link && !link->title.isEmpty()) return link->title;
        }
        return std::nullopt;
    }
    if (const std::optional<PlainText> plain = rawPlainText()) {
        QString text = plain->decoded();
        if (!text.isEmpty()) return text;
    }
    // Formatted text alone still gives its words.
    static const QStringList richTypes = PasteboardTypes::names(PasteboardContent::richText);
    for (const QString& type : richTypes) {
        const QByteArray bytes = read(type);
        if (bytes.isEmpty()) continue;
        const QString text = type == kHtml ? RichText::fromHtml(bytes) : RichText::fromRtf(bytes);
        if (!text.isEmpty()) return text;
    }
    return std::nullopt;
}

std::optional<PlainText> QMimeDataPasteboard::rawPlainText() const {
    static const QStringList plainTypes = PasteboardTypes::names(PasteboardContent::text);
    for (const QString& type : plainTypes) {
        QByteArray bytes = read(type);
        if (bytes.isEmpty()) continue;
        return PlainText{std::move(bytes), type == QLatin1String("STRING") || type == QLatin1String("TEXT"),
                         type.startsWith(QLatin1String("text/plain"))};
    }
    return std::nullopt;
}

QImage QMimeDataPasteboard::image() const {
    static const QStringList imageTypes = PasteboardTypes::names(PasteboardContent::image);
    for (const QString& type : imageTypes) {
        if (type == kQtImage || !offers(type)) continue;
        QImage image = QImage::fromData(read(type));
        if (!image.isNull()) return image;
    }
    if (offers(kQtImage)) return qvariant_cast<QImage>(data_.imageData());
    return {};
}

QByteArray QMimeDataPasteboard::document() const { return read(kPdf); }

}  // namespace mosswick
