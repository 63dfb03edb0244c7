#include "Payload.h"

#include <unistd.h>

#include "model/LocalPath.h"
#include "model/WholeFile.h"

namespace mosswick::testpeer {

namespace {

QByteArray absolute(const QByteArray& path) {
    if (path.startsWith('/')) return path;
    char* here = getcwd(nullptr, 0);
    QByteArray result = QByteArray(here) + '/' + path;
    std::free(here);
    return result;
}

// Percent-encoded from the name's bytes, so a name that is not UTF-8 survives.
QList<QByteArray> fileUris(const PeerOptions& options) {
    QList<QByteArray> uris;
    for (const QByteArray& path : options.files + options.folders)
        uris += LocalPath::toUrl(LocalPath::fromBytes(absolute(path))).toEncoded();
    return uris;
}

QByteArray utf16(const QString& text) {
    return QByteArray(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
}

std::variant<Payload, QString> build(const PeerOptions& options, bool clipboard) {
    Payload payload;
    auto& formats = payload.formats;
    if (options.promiseName && !clipboard) {
        formats.append({QString::fromLatin1(Payload::kDirectSave), QByteArray()});
        formats.append({QString::fromLatin1(options.promiseType), options.promiseData});
        if (options.promiseOctetStream && options.promiseType != "application/octet-stream")
            formats.append({QStringLiteral("application/octet-stream"), options.promiseData});
    }
    if (const QList<QByteArray> uris = fileUris(options); !uris.isEmpty()) {
        formats.append({QStringLiteral("text/uri-list"), uris.join("\r\n") + "\r\n"});
        if (clipboard)
            formats.append({QStringLiteral("x-special/gnome-copied-files"), "copy\n" + uris.join('\n')});
    }
    if (!options.linkUrl.isEmpty()) {
        // As browsers offer a link: no text/uri-list unless asked for.
        const QByteArray pair = options.linkUrl + '\n' + options.linkTitle;
        formats.append({QStringLiteral("text/x-moz-url"), utf16(QString::fromUtf8(pair))});
        formats.append({QStringLiteral("_NETSCAPE_URL"), pair});
        if (options.linkUriList) formats.append({QStringLiteral("text/uri-list"), options.linkUrl + "\r\n"});
        if (!options.text) formats.append({QStringLiteral("text/plain"), options.linkUrl});
    }
    if (!options.image.isEmpty()) {
        const WholeFile file(LocalPath::fromBytes(options.image));
        const QString name = QString::fromUtf8(options.image);
        if (!file.isValid()) return QStringLiteral("cannot read the image %1").arg(name);
        // A copy: the mapping goes with `file`.
        const QByteArray png(file.bytes().constData(), file.bytes().size());
        payload.image = QImage::fromData(png);
        if (payload.image.isNull()) return QStringLiteral("%1 is not an image").arg(name);
        formats.append({QStringLiteral("image/png"), png});
    }
    if (options.html) formats.append({QStringLiteral("text/html"), *options.html});
    if (options.rtf) formats.append({QStringLiteral("text/rtf"), *options.rtf});
    if (options.text) formats.append({QStringLiteral("text/plain"), *options.text});
    return payload;
}

}  // namespace

std::variant<Payload, QString> Payload::forDrag(const PeerOptions& options) { return build(options, false); }

std::variant<Payload, QString> Payload::forClipboard(const PeerOptions& options) {
    return build(options, true);
}

const QByteArray* Payload::find(const QString& format) const {
    for (const auto& [name, bytes] : formats)
        if (name == format) return &bytes;
    return nullptr;
}

}  // namespace mosswick::testpeer
