#pragma once

#include <functional>
#include <memory>

#include "ingest/Pasteboard.h"

class QMimeData;

namespace mosswick {

// A drop's data (or the clipboard's) as a pasteboard, in the types Linux programs offer: files in
// text/uri-list (or x-special/gnome-copied-files); links in non-file text/uri-list entries,
// text/x-moz-url and _NETSCAPE_URL, which bring the title; images in image/png, image/tiff,
// image/jpeg and application/x-qt-image; PDF documents; text in text/plain;charset=utf-8,
// UTF8_STRING and text/plain, else the words of HTML or RTF. Only types the data lists are read
// (Qt would otherwise stand URLs in for text). The names come from PasteboardTypes.
//
// A drag that offers XdndDirectSave0 is one promised file, when promises are asked for and the
// factory makes one; its text/uri-list entries are then not read as further objects.
class QMimeDataPasteboard final : public Pasteboard {
public:
    // Makes the promise a drag offers, or nothing; the platform decides how it is received.
    using PromiseFactory = std::function<std::shared_ptr<FilePromise>(const QMimeData& data)>;

    // `data` must outlive the pasteboard.
    explicit QMimeDataPasteboard(const QMimeData& data, PromiseFactory promises = {});

    QStringList types() const override;
    std::vector<Object> objects(Kinds kinds) const override;
    std::optional<QString> string(Text kind) const override;
    std::optional<PlainText> rawPlainText() const override;
    QImage image() const override;
    QByteArray document() const override;

private:
    std::optional<QString> listed(const QString& type) const;
    bool offers(const QString& type) const;
    QByteArray read(const QString& type) const;
    std::vector<QUrl> listedUrls() const;

    const QMimeData& data_;
    PromiseFactory promises_;
};

}  // namespace mosswick
