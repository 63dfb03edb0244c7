#pragma once

#include <QByteArray>
#include <QImage>
#include <QList>
#include <QString>
#include <utility>
#include <variant>

#include "PeerOptions.h"

namespace mosswick::testpeer {

// What a drag or the clipboard offers: formats in the order they are offered, each with its exact
// bytes, and an image Qt encodes on request (application/x-qt-image).
struct Payload {
    QList<std::pair<QString, QByteArray>> formats;
    QImage image;

    static constexpr const char* kDirectSave = "XdndDirectSave0";

    // For a drag (links as browsers offer them, an X Direct Save promise) or for the clipboard
    // (files also as x-special/gnome-copied-files); a message when a file cannot be read.
    static std::variant<Payload, QString> forDrag(const PeerOptions& options);
    static std::variant<Payload, QString> forClipboard(const PeerOptions& options);

    const QByteArray* find(const QString& format) const;
};

}  // namespace mosswick::testpeer
