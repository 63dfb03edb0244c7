#include "platform/qt/QtFileClipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include "model/LocalPath.h"

namespace mosswick {

void QtFileClipboard::putFiles(const std::vector<QUrl>& locations) {
    QByteArray uris;
    QByteArray paths;
    for (const QUrl& url : locations) {
        const QByteArray encoded = url.toEncoded();
        uris.append(encoded).append("\r\n");
        if (!paths.isEmpty()) paths.append('\n');
        // The path's own bytes: a name that is not UTF-8 pastes as it is on disk.
        if (const auto path = LocalPath::fromUrl(url)) paths.append(LocalPath::bytes(*path));
    }
    QByteArray gnome("copy");
    for (const QUrl& url : locations) gnome.append('\n').append(url.toEncoded());

    auto* data = new QMimeData;
    data->setData(QStringLiteral("text/uri-list"), uris);
    data->setData(QStringLiteral("x-special/gnome-copied-files"), gnome);
    data->setData(QStringLiteral("text/plain;charset=utf-8"), paths);
    data->setData(QStringLiteral("text/plain"), paths);
    QGuiApplication::clipboard()->setMimeData(data);
}

}  // namespace mosswick
