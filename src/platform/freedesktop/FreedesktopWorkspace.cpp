#include "platform/freedesktop/FreedesktopWorkspace.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QLoggingCategory>
#include <QStringList>
#include <set>

#include "model/LocalPath.h"

namespace mosswick {
namespace {

Q_LOGGING_CATEGORY(lcWorkspace, "mosswick.workspace")

const QString kFileManagerService = QStringLiteral("org.freedesktop.FileManager1");

void openFolders(const std::vector<QUrl>& locations) {
    std::set<std::filesystem::path> folders;
    for (const QUrl& url : locations)
        if (const auto path = LocalPath::fromUrl(url)) folders.insert(path->parent_path());
    for (const std::filesystem::path& folder : folders)
        QDesktopServices::openUrl(LocalPath::toUrl(folder, true));
}

}  // namespace

FreedesktopWorkspace::FreedesktopWorkspace(const QDBusConnection& bus) : bus_(bus) {}

void FreedesktopWorkspace::open(const QUrl& location) {
    if (!QDesktopServices::openUrl(location)) qCWarning(lcWorkspace) << "no application opened" << location;
}

void FreedesktopWorkspace::reveal(const std::vector<QUrl>& locations) {
    if (locations.empty()) return;
    // Asked without waiting: the bus starts a file manager that is installed but not running, and
    // answers at once with an error when nobody can serve the name.
    QStringList uris;
    for (const QUrl& url : locations) uris << QString::fromLatin1(url.toEncoded());
    QDBusMessage call =
        QDBusMessage::createMethodCall(kFileManagerService, QStringLiteral("/org/freedesktop/FileManager1"),
                                       kFileManagerService, QStringLiteral("ShowItems"));
    call << uris << QString();
    auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(call));
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, [watcher, locations] {
        if (watcher->isError()) {
            qCInfo(lcWorkspace) << "no file manager showed the files, opening their folders:"
                                << watcher->error().message();
            openFolders(locations);
        }
        watcher->deleteLater();
    });
}

}  // namespace mosswick
