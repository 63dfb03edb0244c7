// Revealing files: the file manager's D-Bus interface is asked first, with the files' URIs
// byte for byte; where none answers, their folders are opened instead.
#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusContext>
#include <QObject>

#include "model/LocalPath.h"
#include "platform/freedesktop/FileManagerWorkspace.h"
#include "support/EventWaiting.h"
#include "support/PrivateSessionBus.h"

namespace mosswick {

class FakeFileManager final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public:
    std::vector<QStringList> shown;

public slots:
    void ShowItems(const QStringList& uris, const QString&) { shown.push_back(uris); }
};

namespace {

using testing::waitUntil;

class FileManagerWorkspaceTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!bus.isRunning()) GTEST_SKIP() << bus.problem().toStdString();
        managerSide = std::make_unique<QDBusConnection>(QDBusConnection::connectToBus(bus.address(), "fm"));
        client = std::make_unique<QDBusConnection>(QDBusConnection::connectToBus(bus.address(), "client"));
    }
    void TearDown() override {
        // Named connections outlive the test; the next one has a bus of its own.
        client.reset();
        managerSide.reset();
        QDBusConnection::disconnectFromBus(QStringLiteral("fm"));
        QDBusConnection::disconnectFromBus(QStringLiteral("client"));
    }
    void serve() {
        ASSERT_TRUE(managerSide->registerService(QStringLiteral("org.freedesktop.FileManager1")));
        ASSERT_TRUE(managerSide->registerObject(QStringLiteral("/org/freedesktop/FileManager1"), &manager,
                                                QDBusConnection::ExportAllSlots));
    }
    FileManagerWorkspace::Opener opener() {
        return [this](const QUrl& url) { opened << url; };
    }

    testing::PrivateSessionBus bus;
    std::unique_ptr<QDBusConnection> managerSide;
    std::unique_ptr<QDBusConnection> client;
    FakeFileManager manager;
    QList<QUrl> opened;
};

std::vector<QUrl> files() {
    return {LocalPath::toUrl("/data/one folder/a\xff.txt"), LocalPath::toUrl("/data/one folder/b.txt"),
            LocalPath::toUrl("/data/other/c")};
}

TEST_F(FileManagerWorkspaceTest, TheFileManagerShowsTheFilesTogether) {
    serve();
    FileManagerWorkspace shown(*client, opener());
    shown.reveal(files());
    ASSERT_TRUE(waitUntil([&] { return !manager.shown.empty(); }));
    EXPECT_EQ(manager.shown.front(),
              (QStringList{"file:///data/one%20folder/a%FF.txt", "file:///data/one%20folder/b.txt",
                           "file:///data/other/c"}));
    testing::keepRunning(50);
    EXPECT_TRUE(opened.isEmpty()) << "no folder opened besides";
}

TEST_F(FileManagerWorkspaceTest, WithoutAFileManagerEachFolderOpensOnce) {
    FileManagerWorkspace shown(*client, opener());
    shown.reveal(files());
    ASSERT_TRUE(waitUntil([&] { return opened.size() == 2; }));
    EXPECT_EQ(opened, (QList<QUrl>{LocalPath::toUrl("/data/one folder/", true),
                                   LocalPath::toUrl("/data/other/", true)}));
}

}  // namespace
}  // namespace mosswick

#include "FileManagerWorkspaceTest.moc"
