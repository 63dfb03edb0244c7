#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QUrl>
#include <QUuid>
#include <optional>

#include "model/Timestamp.h"

namespace mosswick {

// One thing on the shelf: a file or folder the user dropped, or a link, image or text that was
// turned into a file. A value: copied and compared whole.
struct ShelfItem {
    QUuid id;
    QString displayName;
    std::optional<QUrl> originURL;
    std::optional<QByteArray> originBookmark;
    std::optional<QUrl> stagedURL;
    QString contentTypeIdentifier = QString::fromLatin1(kGenericContentType);
    qint64 byteSize = 0;
    Timestamp addedAt = Timestamp::now();
    std::optional<QUrl> webURL;
    bool isPromised = false;
    std::optional<QUuid> batchID;
    // Why no copy of the original could be kept (a full disk, an unreadable file), for the tile to
    // say; the item then stands for the original alone. Only for this run: never saved.
    QString copyProblem;
    // Where the search for an original that is not at its recorded path stands, for this run
    // only (never saved). A restored item is looked into off the main thread (`sought`): until
    // that answers, no one searches on the main thread and the item is not taken for lost; once
    // the search found nothing (`notFound`), it is not repeated.
    enum class OriginSearch { onDemand, sought, notFound };
    OriginSearch originSearch = OriginSearch::onDemand;

    static constexpr const char* kGenericContentType = "application/octet-stream";

    bool operator==(const ShelfItem& other) const;

    // The JSON form used in the save file. Decoding fails (nothing, with a warning naming the
    // key) on a missing or mistyped "id" or "displayName", or on any present key whose value has
    // the wrong type; null reads as absent.
    QJsonObject toJson() const;
    static std::optional<ShelfItem> fromJson(const QJsonValue& json);

    // Which file on disk stands for the item. Each asks the file system on every call.
    std::optional<QUrl> reachableOriginURL() const;  // the original, where it still is
    std::optional<QUrl> dragURL() const;             // the original, else the shelf's copy
    std::optional<QUrl> previewURL() const;          // the shelf's copy, else the original
    bool isDirectory() const;                        // dragURL is a folder (or a link to one)
    // Nothing on disk stands for it, and nothing that could still bring it is under way.
    bool isLost() const;
};

// The canonical upper-case 8-4-4-4-12 form the save file and the staging folders use.
QString uuidString(const QUuid& id);
// Accepts either case; nothing for anything but the 36-character hyphenated form.
std::optional<QUuid> parseUuid(const QString& text);

}  // namespace mosswick
