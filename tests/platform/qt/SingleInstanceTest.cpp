#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLocalServer>
#include <QFileInfo>
#include <atomic>
#include <thread>

#include "platform/qt/SingleInstance.h"
#include "support/TestFolders.h"

namespace mosswick {
namespace {

QString freshSocket(const char* name) {
    return QString::fromStdString((testing::freshFolder(name) / "mosswick.socket").string());
}

TEST(SingleInstance, ALaterLaunchHandsItsArgumentsToTheRunningOne) {
    const QString path = freshSocket("single");
    QStringList received;
    auto primary = SingleInstance::claim(
        {"mosswick"}, [&](const QStringList& a) { received = a; }, path);
    ASSERT_NE(primary, nullptr);

    // The second launch blocks until the primary has read its message, so it runs beside the
    // primary's event loop.
    std::unique_ptr<SingleInstance> second;
    std::atomic<bool> done = false;
    std::thread launcher([&] {
        second = SingleInstance::claim({"mosswick", "--summon"}, {}, path);
        done = true;
    });
    QElapsedTimer waited;
    waited.start();
    while ((!done || received.isEmpty()) && waited.elapsed() < 5000) QCoreApplication::processEvents();
    launcher.join();
    EXPECT_EQ(second, nullptr);
    EXPECT_EQ(received, (QStringList{"mosswick", "--summon"}));
}

TEST(SingleInstance, ASocketLeftByACrashIsTakenOver) {
    const QString path = freshSocket("stale");
    testing::writeFile(path.toStdString(), "");  // a dead socket file nobody listens on
    auto primary = SingleInstance::claim({"mosswick"}, {}, path);
    ASSERT_NE(primary, nullptr);
    EXPECT_TRUE(QFileInfo(path).exists());
    EXPECT_EQ(QFileInfo(path).permissions() & (QFile::ReadOther | QFile::WriteOther), 0);
}

}  // namespace
}  // namespace mosswick
