#include "DirectSaveReceiver.h"

#include <QJsonArray>
#include <algorithm>

#include "model/LocalPath.h"
#include "model/WholeFile.h"

namespace mosswick::testpeer {

namespace {

QJsonArray folderContents(const std::filesystem::path& folder) {
    std::vector<QByteArray> uris;
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(folder, ignored))
        uris.push_back(LocalPath::toUrl(entry.path()).toEncoded());
    std::sort(uris.begin(), uris.end());
    QJsonArray list;
    for (const QByteArray& uri : uris) list.append(QString::fromLatin1(uri));
    return list;
}

}  // namespace

QJsonObject receivePromise(SelectionReader& reader, const DropTargetEvents::Offer& offer,
                           const std::filesystem::path& folder, int timeoutMs) {
    xcb_connection_t* connection = reader.connection();
    const XcbCalls::Atom property = reader.atom("XdndDirectSave0");
    const auto proposed = XcbCalls::property(connection, offer.source, property);
    QJsonObject result;
    result[QStringLiteral("proposed_name")] =
        proposed ? QString::fromLatin1(proposed->bytes.toPercentEncoding()) : QJsonValue();
    // Only a name: a proposal must never lead out of the folder.
    QByteArray name = proposed ? proposed->bytes.mid(proposed->bytes.lastIndexOf('/') + 1) : QByteArray();
    if (name.isEmpty() || name == "." || name == "..") name = "unnamed";
    const std::filesystem::path path = folder / LocalPath::fromBytes(name);
    const QByteArray uri = "file://" + XcbCalls::hostName() + LocalPath::toUrl(path).toEncoded().mid(7);
    XcbCalls::setProperty(connection, offer.source, property, reader.atom("text/plain"), 8, uri);
    result[QStringLiteral("uri")] = QString::fromLatin1(uri);
    const auto reply = reader.read(reader.atom("XdndSelection"), property, offer.dropTime, timeoutMs);
    result[QStringLiteral("reply")] = reply ? QJsonValue(QString::fromLatin1(reply->data)) : QJsonValue();
    result[QStringLiteral("files")] = folderContents(folder);
    if (const WholeFile file(path); file.isValid())
        result[QStringLiteral("bytes")] = QString::fromLatin1(file.bytes().toBase64());
    return result;
}

}  // namespace mosswick::testpeer
