// Revealing files through the file manager's D-Bus name, and the folder when nobody serves it.
#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDesktopServices>
#include <QFile>
#include <QObject>
#include <QStringList>

#include "platform/freedesktop/FreedesktopWorkspace.h"
#include "support/EventWaiting.h"
#include "support/PrivateSessionBus.h"

namespace mosswick::testing {

// Records what reaches the file manager's name, as a stand-in file manager would be asked.
class FakeFileManager : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public:
    std::vector<QStringList> shown;

public slots:
    void ShowItems(const QStringList& uris, const QString&) { shown.push_back(uris); }
};

// Stands in for the desktop's default application, whatever the URL.
class OpenedUrls : public QObject {
    Q_OBJECT

public:
    OpenedUrls() { QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "open"); }
    ~OpenedUrls() override { QDesktopServices::unsetUrlHandler(QStringLiteral("file")); }
    std::vector<QString> paths;

public slots:
    void open(const QUrl& url) { paths.push_back(url.toLocalFile()); }
};

namespace {

QUrl fileUrl(const QByteArray& path) { return QUrl::fromLocalFile(QFile::decodeName(path)); }

TEST(FreedesktopWorkspaceTest, RevealAsksTheFileManagerOnceForAllFilesElseOpensEachFolderOnce) {
    PrivateSessionBus bus;
    if (!bus.isRunning()) GTEST_SKIP() << bus.problem().toStdString();
    OpenedUrls opened;
    const std::vector<QUrl> files{fileUrl("/shelf/a b.txt"), fileUrl("/shelf/caf\xc3\xa9.txt"),
                                  fileUrl("/other/c")};

    FreedesktopWorkspace nobody(QDBusConnection::connectToBus(bus.address(), QStringLiteral("no-manager")));
    nobody.reveal(files);
    ASSERT_TRUE(waitUntil([&] { return opened.paths.size() == 2; }));
    keepRunning(50);
    EXPECT_EQ(opened.paths, (std::vector<QString>{"/other/", "/shelf/"}));

    FakeFileManager manager;
    QDBusConnection service = QDBusConnection::connectToBus(bus.address(), QStringLiteral("file-manager"));
    ASSERT_TRUE(service.registerService(QStringLiteral("org.freedesktop.FileManager1")));
    ASSERT_TRUE(service.registerObject(QStringLiteral("/org/freedesktop/FileManager1"), &manager,
                                       QDBusConnection::ExportAllSlots));
    FreedesktopWorkspace served(QDBusConnection::connectToBus(bus.address(), QStringLiteral("client")));
    served.reveal(files);
    ASSERT_TRUE(waitUntil([&] { return !manager.shown.empty(); }));
    keepRunning(50);
    ASSERT_EQ(manager.shown.size(), 1u);
    EXPECT_EQ(manager.shown[0],
              (QStringList{"file:///shelf/a%20b.txt", "file:///shelf/caf%C3%A9.txt", "file:///other/c"}));
    EXPECT_EQ(opened.paths.size(), 2u) << "a served reveal opens no folder";
}

TEST(FreedesktopWorkspaceTest, OpenHandsTheFileToTheDefaultApplication) {
    OpenedUrls opened;
    FreedesktopWorkspace workspace(QDBusConnection(QStringLiteral("not connected")));
    workspace.open(fileUrl("/shelf/report.pdf"));
    EXPECT_EQ(opened.paths, std::vector<QString>{"/shelf/report.pdf"});
}

}  // namespace
}  // namespace mosswick::testing

#include "FreedesktopWorkspaceTest.moc"
