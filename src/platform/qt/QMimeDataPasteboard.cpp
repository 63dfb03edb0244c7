#include "platform/qt/QMimeDataPasteboard.h"

#include <QMimeData>
#include <algorithm>

#include "platform/qt/MimeLinks.h"

namespace mosswick {

namespace {

const char* const kDirectSave = "XdndDirectSave0";
const char* const kUriList = "text/uri-list";
const char* const kGnomeCopiedFiles = "x-special/gnome-copied-files";
const char* const kMozUrl = "text/x-moz-url";
const char* const kNetscapeUrl = "_NETSCAPE_URL";
const char* const kImageTypes[] = {"image/png", "image/tiff", "image/jpeg"};
const char* const kQtImage = "application/x-qt-image";
const char* const kTextTypes[] = {"text/plain;charset=utf-8", "text/plain", "UTF8_STRING"};

}  // namespace

QMimeDataPasteboard::QMimeDataPasteboard(const QMimeData& data, PromiseFactory promises)
    : data_(data), promises_(std::move(promises)) {}

QStringList QMimeDataPasteboard::types() const { return data_.formats(); }

// The type as the data spells it, when it lists it.
std::optional<QString> QMimeDataPasteboard::listed(const char* type) const {
    const QStringList formats = data_.formats();
    const auto found = std::find_if(formats.begin(), formats.end(), [type](const QString& format) {
        return format.compare(QLatin1String(type), Qt::CaseInsensitive) == 0;
    });
    if (found == formats.end()) return std::nullopt;
    return *found;
}

bool QMimeDataPasteboard::offers(const char* type) const { return listed(type).has_value(); }

QByteArray QMimeDataPasteboard::read(const char* type) const {
    const std::optional<QString> format = listed(type);
    return format ? data_.data(*format) : QByteArray();
}

// Files and links in list order: the URI list where there is one, else the file manager's copy.
std::vector<QUrl> QMimeDataPasteboard::listedUrls() const {
    if (offers(kUriList)) return MimeLinks::uriList(read(kUriList));
    return MimeLinks::gnomeCopiedFiles(read(kGnomeCopiedFiles));
}

std::vector<Pasteboard::Object> QMimeDataPasteboard::objects(Kinds kinds) const {
    if (kinds.testFlag(Kind::filePromise) && promises_ && offers(kDirectSave)) {
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
    for (const char* type : kTextTypes) {
        const QString text = QString::fromUtf8(read(type));
        if (!text.isEmpty()) return text;
    }
    return std::nullopt;
}

QImage QMimeDataPasteboard::image() const {
    for (const char* type : kImageTypes) {
        if (!offers(type)) continue;
        QImage image = QImage::fromData(read(type));
        if (!image.isNull()) return image;
    }
    if (offers(kQtImage)) return qvariant_cast<QImage>(data_.imageData());
    return {};
}

}  // namespace mosswick
