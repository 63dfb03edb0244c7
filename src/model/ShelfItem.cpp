#include "model/ShelfItem.h"

#include <QJsonValue>
#include <cmath>

#include "model/FileBookmark.h"
#include "model/LocalPath.h"
#include "model/Logging.h"

namespace mosswick {

namespace {

// Reads one record's keys. An optional key that is missing or null reads as nothing; a key that
// is present with a value of the wrong type spoils the whole record.
class RecordReader {
public:
    explicit RecordReader(QJsonObject record) : record_(std::move(record)) {}

    // The first key that could not be read, if any.
    std::optional<QLatin1StringView> failedKey() const { return failedKey_; }

    template <typename Parse>
    auto optional(QLatin1StringView key, Parse parse) -> decltype(parse(QJsonValue())) {
        const QJsonValue value = record_.value(key);
        if (value.isUndefined() || value.isNull()) return std::nullopt;
        auto parsed = parse(value);
        if (!parsed) fail(key);
        return parsed;
    }

    template <typename Parse>
    auto required(QLatin1StringView key, Parse parse) -> decltype(parse(QJsonValue())) {
        auto parsed = optional(key, parse);
        if (!parsed) fail(key);
        return parsed;
    }

private:
    void fail(QLatin1StringView key) {
        if (!failedKey_) failedKey_ = key;
    }

    QJsonObject record_;
    std::optional<QLatin1StringView> failedKey_;
};

std::optional<QUuid> uuidValue(const QJsonValue& value) {
    return value.isString() ? parseUuid(value.toString()) : std::nullopt;
}

std::optional<QString> stringValue(const QJsonValue& value) {
    if (!value.isString()) return std::nullopt;
    return value.toString();
}

// The text a URL is saved as.
QString urlText(const QUrl& url) { return url.toString(QUrl::FullyEncoded); }

// Only an absolute URL: a relative one would name a different file depending on who reads it.
// Text that QUrl would quietly change (a lone UTF-16 surrogate, say) is refused too, or the item
// would come back different from what was saved.
std::optional<QUrl> urlValue(const QJsonValue& value) {
    if (!value.isString()) return std::nullopt;
    const QUrl url(value.toString(), QUrl::StrictMode);
    if (!url.isValid() || url.isRelative()) return std::nullopt;
    if (QUrl(urlText(url), QUrl::StrictMode) != url) return std::nullopt;
    return url;
}

// Standard Base64 with its padding.
std::optional<QByteArray> blobValue(const QJsonValue& value) {
    if (!value.isString()) return std::nullopt;
    const QByteArray text = value.toString().toLatin1();
    if (text.size() % 4 != 0) return std::nullopt;
    auto decoded = QByteArray::fromBase64Encoding(text, QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded) return std::nullopt;
    return *decoded;
}

// A whole number that fits 64 bits. Qt's JSON keeps integers exact beyond 2^53; a fraction or
// an out-of-range number makes toInteger() give its fallback, so two different fallbacks
// disagree exactly when the number is not one.
std::optional<qint64> integerValue(const QJsonValue& value) {
    if (!value.isDouble()) return std::nullopt;
    const qint64 number = value.toInteger(0);
    if (number != value.toInteger(1)) return std::nullopt;
    return number;
}

std::optional<Timestamp> timestampValue(const QJsonValue& value) {
    if (!value.isDouble() || !std::isfinite(value.toDouble())) return std::nullopt;
    return Timestamp{value.toDouble()};
}

std::optional<bool> boolValue(const QJsonValue& value) {
    if (!value.isBool()) return std::nullopt;
    return value.toBool();
}

bool isHexDigit(QChar c) {
    return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
}

void insertUrl(QJsonObject& record, QLatin1StringView key, const std::optional<QUrl>& url) {
    // A URL that would not read back would cost the whole item at the next launch.
    if (url && url->isValid() && !url->isRelative()) record.insert(key, urlText(*url));
}

bool somethingAt(const QUrl& url) {
    const auto path = LocalPath::fromUrl(url);
    return path && LocalPath::exists(*path);
}

}  // namespace

bool ShelfItem::operator==(const ShelfItem& other) const = default;

QJsonObject ShelfItem::toJson() const {
    QJsonObject record;
    record.insert(QLatin1StringView("id"), uuidString(id));
    record.insert(QLatin1StringView("displayName"), displayName);
    insertUrl(record, QLatin1StringView("originURL"), originURL);
    if (originBookmark)
        record.insert(QLatin1StringView("originBookmark"), QString::fromLatin1(originBookmark->toBase64()));
    insertUrl(record, QLatin1StringView("stagedURL"), stagedURL);
    record.insert(QLatin1StringView("contentTypeIdentifier"), contentTypeIdentifier);
    record.insert(QLatin1StringView("byteSize"), byteSize);
    record.insert(QLatin1StringView("addedAt"), addedAt.secondsSinceReferenceDate);
    insertUrl(record, QLatin1StringView("webURL"), webURL);
    record.insert(QLatin1StringView("isPromised"), isPromised);
    if (batchID) record.insert(QLatin1StringView("batchID"), uuidString(*batchID));
    return record;
}

std::optional<ShelfItem> ShelfItem::fromJson(const QJsonValue& json) {
    // Whatever is not read here is lost from the shelf, so say what it was.
    if (!json.isObject()) {
        qCWarning(lcStore) << "Left out a saved shelf item that is not a JSON object";
        return std::nullopt;
    }
    RecordReader read(json.toObject());
    ShelfItem item;
    item.id = read.required(QLatin1StringView("id"), uuidValue).value_or(QUuid());
    item.displayName = read.required(QLatin1StringView("displayName"), stringValue).value_or(QString());
    item.originURL = read.optional(QLatin1StringView("originURL"), urlValue);
    item.originBookmark = read.optional(QLatin1StringView("originBookmark"), blobValue);
    item.stagedURL = read.optional(QLatin1StringView("stagedURL"), urlValue);
    item.contentTypeIdentifier = read.optional(QLatin1StringView("contentTypeIdentifier"), stringValue)
                                     .value_or(QString::fromLatin1(kGenericContentType));
    item.byteSize = read.optional(QLatin1StringView("byteSize"), integerValue).value_or(0);
    item.addedAt = read.optional(QLatin1StringView("addedAt"), timestampValue).value_or(Timestamp::now());
    item.webURL = read.optional(QLatin1StringView("webURL"), urlValue);
    item.isPromised = read.optional(QLatin1StringView("isPromised"), boolValue).value_or(false);
    item.batchID = read.optional(QLatin1StringView("batchID"), uuidValue);
    if (const auto key = read.failedKey()) {
        qCWarning(lcStore) << "Left out the saved shelf item" << json[QLatin1StringView("id")]
                           << "because its" << *key << "is missing or of the wrong type";
        return std::nullopt;
    }
    return item;
}

std::optional<QUrl> ShelfItem::reachableOriginURL() const {
    // The original's own path wins; the bookmark is asked only once that path is empty.
    if (originURL && somethingAt(*originURL)) return originURL;
    if (!originBookmark || originSearch != OriginSearch::onDemand) return std::nullopt;
    const auto resolved = FileBookmark::resolve(*originBookmark);
    if (!resolved || !LocalPath::exists(*resolved)) return std::nullopt;
    std::error_code ignored;
    return LocalPath::toUrl(*resolved, std::filesystem::is_directory(*resolved, ignored));
}

std::optional<QUrl> ShelfItem::dragURL() const {
    if (auto origin = reachableOriginURL()) return origin;
    if (stagedURL && somethingAt(*stagedURL)) return stagedURL;
    return std::nullopt;
}

std::optional<QUrl> ShelfItem::previewURL() const {
    if (stagedURL && somethingAt(*stagedURL)) return stagedURL;
    return dragURL();
}

bool ShelfItem::isLost() const {
    return !isPromised && originSearch != OriginSearch::sought && !dragURL().has_value();
}

bool ShelfItem::isDirectory() const {
    const auto url = dragURL();
    const auto path = url ? LocalPath::fromUrl(*url) : std::nullopt;
    std::error_code ignored;
    return path && std::filesystem::is_directory(*path, ignored);
}

QString uuidString(const QUuid& id) { return id.toString(QUuid::WithoutBraces).toUpper(); }

std::optional<QUuid> parseUuid(const QString& text) {
    if (text.size() != 36) return std::nullopt;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool hyphenPlace = i == 8 || i == 13 || i == 18 || i == 23;
        if (hyphenPlace ? text[i] != u'-' : !isHexDigit(text[i])) return std::nullopt;
    }
    return QUuid::fromString(text);
}

}  // namespace mosswick
