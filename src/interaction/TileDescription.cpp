#include "interaction/TileDescription.h"

#include <QLocale>
#include <QMimeDatabase>
#include <algorithm>

#include "interaction/ShelfNotice.h"

namespace mosswick {

namespace {

constexpr const char* kDirectoryType = "inode/directory";
// A long stack's tooltip lists this many names, then an ellipsis.
constexpr qsizetype kToolTipNames = 8;

QString sizeText(qint64 bytes) {
    return bytes > 0 ? QLocale::system().formattedDataSize(bytes, 1, QLocale::DataSizeSIFormat) : QString();
}

QString detailOf(const ShelfItem& item) {
    if (item.webURL) return item.webURL->host();
    if (item.contentTypeIdentifier == QLatin1String(kDirectoryType)) return QStringLiteral("Folder");
    return sizeText(item.byteSize);
}

QString titleOf(const ShelfItem& item) {
    return item.isPromised ? item.displayName + QString::fromUtf8(TileDescription::kWaitingSuffix)
                           : item.displayName;
}

// The desktop's own words for the type ("PNG image"), in the user's language.
QString kindOf(const ShelfItem& item) {
    if (item.webURL) return QStringLiteral("Web link");
    const QMimeType type = QMimeDatabase().mimeTypeForName(item.contentTypeIdentifier);
    return type.isValid() ? type.comment() : QString();
}

QString spokenOf(const ShelfItem& item) {
    QStringList parts{item.displayName, kindOf(item)};
    if (item.isPromised)
        parts << QStringLiteral("waiting for the file");
    else if (item.contentTypeIdentifier != QLatin1String(kDirectoryType))
        parts << detailOf(item);
    parts.removeAll(QString());
    return parts.join(QStringLiteral(", "));
}

}  // namespace

TileDescription TileDescription::of(const ShelfTile& tile, const OriginCheck& isOriginMissing) {
    const ShelfItem& first = tile.first();
    TileDescription d;
    d.key = keyOf(tile);
    d.count = static_cast<int>(tile.items.size());
    d.contentType = first.contentTypeIdentifier;
    d.isLink = first.webURL.has_value();
    d.isDirectory = first.contentTypeIdentifier == QLatin1String(kDirectoryType);
    d.isWaiting = std::any_of(tile.items.begin(), tile.items.end(),
                              [](const ShelfItem& item) { return item.isPromised; });
    d.isOriginMissing = std::any_of(tile.items.begin(), tile.items.end(), isOriginMissing);

    QStringList tip;
    if (d.isStack()) {
        d.title = QString::number(d.count) + QStringLiteral(" items");
        QStringList names;
        for (const ShelfItem& item : tile.items) names << titleOf(item);
        d.detail = names.join(QStringLiteral(", "));
        tip << d.title;
        tip << names.mid(0, kToolTipNames);
        if (names.size() > kToolTipNames) tip << QStringLiteral("…");
        d.headline = d.title;
        d.spoken = d.title + QStringLiteral(": ") + d.detail;
    } else {
        d.spoken = spokenOf(first);
        d.title = titleOf(first);
        if (d.isWaiting) {
            d.headline = first.displayName;
            d.detail = QString::fromUtf8(kWaitingSuffix).trimmed();
            tip << d.title;
        } else {
            d.headline = d.title;
            d.detail = detailOf(first);
            tip << d.title;
            if (!d.detail.isEmpty()) tip << d.detail;
        }
    }
    if (d.isOriginMissing) tip << QString::fromUtf8(kOriginMissing);
    for (const ShelfItem& item : tile.items) {
        if (item.copyProblem.isEmpty()) continue;
        d.isCopyMissing = true;
        tip << QString::fromUtf8(kNoCopy) + QStringLiteral(" (") + ShelfNotice::reasonIn(item.copyProblem) +
                   QLatin1Char(')');
        if (!d.isStack()) d.detail = QStringLiteral("No copy kept");
        break;
    }
    d.toolTip = tip.join(QLatin1Char('\n'));
    return d;
}

bool TileDescription::originMissing(const ShelfItem& item) {
    const bool cameFromAFile = item.originURL.has_value() || item.originBookmark.has_value();
    // Not while a search for it is still under way.
    if (!cameFromAFile || item.originSearch == ShelfItem::OriginSearch::sought) return false;
    return !item.reachableOriginURL() && item.dragURL().has_value();
}

bool TileDescription::isSelected(const ShelfTile& tile, const std::set<QUuid>& selection) {
    return std::any_of(tile.items.begin(), tile.items.end(),
                       [&](const ShelfItem& item) { return selection.count(item.id) > 0; });
}

QUuid TileDescription::keyOf(const ShelfTile& tile) { return tile.first().batchID.value_or(tile.first().id); }

}  // namespace mosswick
