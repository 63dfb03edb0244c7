#include "platform/freedesktop/FileManagerWorkspace.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDesktopServices>
#include <QLoggingCategory>
#include <set>

#include "model/LocalPath.h"

Q_LOGGING_CATEGORY(lcWorkspace, "mosswick.workspace", QtInfoMsg)

namespace mosswick {

namespace {

const QString kService = QStringLiteral("org.freedesktop.FileManager1");
const QString kPath = QStringLiteral("/org/freedesktop/FileManager1");
// A file manager started for the call may take a while to answer; the fallback comes after.
constexpr int kAnswerTimeoutMs = 5000;

}  // namespace

FileManagerWorkspace::FileManagerWorkspace(const QDBusConnection& bus, Opener opener, QObject* parent)
    : QObject(parent), bus_(bus), opener_(std::move(opener)) {
    if (!opener_) opener_ = [](const QUrl& url) { QDesktopServices::openUrl(url); };
}

void FileManagerWorkspace::open(const QUrl& file) { opener_(file); }

void FileManagerWorkspace::reveal(const std::vector<QUrl>& files) {
    if (files.empty()) return;
    if (!bus_.isConnected()) {
        openFolders(files);
        return;
    }
    QStringList uris;
    for (const QUrl& file : files) uris << QString::fromLatin1(file.toEncoded());
    QDBusMessage call =
        QDBusMessage::createMethodCall(kService, kPath, kService, QStringLiteral("ShowItems"));
    call << uris << QString();
    auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(call, kAnswerTimeoutMs), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, files] {
        watcher->deleteLater();
        const QDBusPendingReply<> reply = *watcher;
        if (!reply.isError()) return;
        qCInfo(lcWorkspace) << "no file manager showed the files:" << reply.error().message()
                            << "- opening their folders instead";
        openFolders(files);
    });
}

void FileManagerWorkspace::openFolders(const std::vector<QUrl>& files) {
    std::set<std::filesystem::path> folders;
    for (const QUrl& file : files) {
        if (const auto path = LocalPath::fromUrl(file))
            folders.insert(path->lexically_normal().parent_path());
    }
    for (const std::filesystem::path& folder : folders) opener_(LocalPath::toUrl(folder, true));
}

}  // namespace mosswick
