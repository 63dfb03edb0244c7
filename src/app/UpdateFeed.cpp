#include "app/UpdateFeed.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace mosswick::UpdateFeed {

namespace {

std::variant<UpdateOffer, Invalid> offer(const QJsonObject& entry) {
    UpdateOffer offer;
    const std::optional<UpdateVersion> version =
        UpdateVersion::parse(entry[QLatin1String("version")].toString());
    if (!version) return Invalid{QStringLiteral("a release has no valid version")};
    offer.version = *version;
    const QString where = QStringLiteral(" (release %1)").arg(version->toString());
    offer.archive = QUrl(entry[QLatin1String("url")].toString(), QUrl::StrictMode);
    if (!offer.archive.isValid() || offer.archive.host().isEmpty())
        return Invalid{QStringLiteral("an archive has no valid address") + where};
    if (offer.archive.scheme() != QLatin1String("https"))
        return Invalid{QStringLiteral("an archive is not offered over HTTPS") + where};
    const QJsonValue size = entry[QLatin1String("size")];
    if (!size.isDouble() || size.toDouble() < 1 || size.toDouble() != double(qint64(size.toDouble())))
        return Invalid{QStringLiteral("an archive has no valid size") + where};
    offer.size = qint64(size.toDouble());
    if (offer.size > kLargestArchive) return Invalid{QStringLiteral("an archive is too large") + where};
    offer.signature = QByteArray::fromBase64(entry[QLatin1String("signature")].toString().toLatin1(),
                                             QByteArray::AbortOnBase64DecodingErrors);
    if (offer.signature.size() != 64)
        return Invalid{QStringLiteral("an archive has no valid signature") + where};
    return offer;
}

}  // namespace

std::variant<std::optional<UpdateOffer>, Invalid> newest(const QByteArray& feed, const UpdateVersion& current,
                                                         const QString& arch) {
    if (feed.size() > kLongestFeed) return Invalid{QStringLiteral("it is too long")};
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(feed, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        return Invalid{QStringLiteral("it is not a JSON object")};
    const QJsonValue releases = document.object()[QLatin1String("releases")];
    if (!releases.isArray()) return Invalid{QStringLiteral("it lists no releases")};

    std::optional<UpdateOffer> best;
    for (const QJsonValue& value : releases.toArray()) {
        if (!value.isObject()) return Invalid{QStringLiteral("a release is not an object")};
        const QJsonObject entry = value.toObject();
        if (entry.contains(QLatin1String("arch")) && entry[QLatin1String("arch")].toString() != arch)
            continue;
        auto made = offer(entry);
        if (auto* invalid = std::get_if<Invalid>(&made)) return *invalid;
        UpdateOffer& candidate = std::get<UpdateOffer>(made);
        if (candidate.version > current && (!best || candidate.version > best->version))
            best = std::move(candidate);
    }
    return best;
}

}  // namespace mosswick::UpdateFeed
