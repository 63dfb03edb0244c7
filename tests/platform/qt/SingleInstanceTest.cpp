#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLocalServer>
#include <QFileInfo>
#include <atomic>
#include <thread>
#include <utility>

#include "platform/qt/SingleInstance.h"
#include "support/TestFolders.h"

namespace mosswick {
namespace {

QString freshSocket(const char* name) {
    return QString::fromStdString((testing::freshFolder(name) / "mosswick.socket").string());
}

TEST(SingleInstance, ARequestCarriesBytesBothWaysAndWaitsForALateAnswer) {
    const QString path = freshSocket("single");
    SingleInstance::Arguments received;
    SingleInstance::Respond pending;
    auto primary = SingleInstance::claim(
        {},
        [&](const SingleInstance::Arguments& a, SingleInstance::Respond respond) {
            received = a;
            pending = std::move(respond);  // answered on a later turn, as a long add is
        },
        path);
    ASSERT_NE(primary, nullptr);

    // The asker blocks until the answer, so it runs beside the primary's event loop.
    const QByteArray notUtf8("/tmp/caf\xe9\xff");
    std::optional<SingleInstance::Answer> answer;
    std::atomic<bool> done = false;
    std::thread asker([&] {
        answer = SingleInstance::request({"add", "--", notUtf8}, path);
        done = true;
    });
    QElapsedTimer waited;
    waited.start();
    while (!pending && waited.elapsed() < 5000) QCoreApplication::processEvents();
    ASSERT_TRUE(pending);
    pending({1, "out\xfe", "err"});
    while (!done && waited.elapsed() < 5000) QCoreApplication::processEvents();
    asker.join();
    EXPECT_EQ(received, (SingleInstance::Arguments{"add", "--", notUtf8}));
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->exitCode, 1);
    EXPECT_EQ(answer->out, QByteArray("out\xfe"));
    EXPECT_EQ(answer->err, QByteArray("err"));

    // A later launch finds the primary and leaves it be.
    std::unique_ptr<SingleInstance> second;
    done = false;
    std::thread launcher([&] {
        second = SingleInstance::claim({"--summon"}, {}, path);
        done = true;
    });
    while (!done && waited.elapsed() < 10000) {
        QCoreApplication::processEvents();
        if (pending) std::exchange(pending, {})({});
    }
    launcher.join();
    EXPECT_EQ(second, nullptr);
    EXPECT_EQ(received, (SingleInstance::Arguments{"--summon"}));
}

TEST(SingleInstance, NobodyListeningIsNoAnswer) {
    EXPECT_FALSE(SingleInstance::request({"list"}, freshSocket("nobody"), 100));
}

TEST(SingleInstance, ASocketLeftByACrashIsTakenOver) {
    const QString path = freshSocket("stale");
    testing::writeFile(path.toStdString(), "");  // a dead socket file nobody listens on
    auto primary = SingleInstance::claim({}, {}, path);
    ASSERT_NE(primary, nullptr);
    EXPECT_TRUE(QFileInfo(path).exists());
    EXPECT_EQ(QFileInfo(path).permissions() & (QFile::ReadOther | QFile::WriteOther), 0);
}

}  // namespace
}  // namespace mosswick
