// Kills a process that changes and saves the shelf without pause at random moments, many times:
// after every kill the save file must parse and hold a shelf that existed at some moment.
#include <gtest/gtest.h>

#include <QProcess>
#include <QRandomGenerator>
#include <QThread>
#include <csignal>

#include "model/ShelfSaveFile.h"
#include "support/TestFolders.h"

namespace mosswick {
namespace {

// Names are consecutive numbers, highest first.
bool isAShelfThatExisted(const std::vector<ShelfItem>& items) {
    for (size_t i = 1; i < items.size(); ++i) {
        if (items[i].displayName.toLongLong() != items[i - 1].displayName.toLongLong() - 1) return false;
    }
    return true;
}

TEST(CrashSafety, TheSaveFileSurvivesKillsAtRandomMoments) {
    const auto folder = testing::freshFolder("crash");
    const auto saveFile = folder / "shelf.json";
    int sawSaves = 0;
    for (int round = 0; round < 40; ++round) {
        QProcess child;
        child.start(QStringLiteral(STORE_CHURN_PATH), {QString::fromStdString(saveFile.string())});
        ASSERT_TRUE(child.waitForStarted(5000));
        ASSERT_TRUE(child.waitForReadyRead(5000));  // running and churning
        QThread::msleep(100 + QRandomGenerator::global()->bounded(900));
        ::kill(static_cast<pid_t>(child.processId()), SIGKILL);
        ASSERT_TRUE(child.waitForFinished(5000));

        if (!std::filesystem::exists(saveFile)) continue;
        const QByteArray bytes = QByteArray::fromStdString(testing::readFile(saveFile));
        const auto items = ShelfSaveFile::decode(bytes);
        ASSERT_TRUE(items.has_value()) << "round " << round << ": unreadable save file:\n"
                                       << bytes.left(400).toStdString();
        EXPECT_TRUE(isAShelfThatExisted(*items)) << "round " << round;
        ++sawSaves;
    }
    EXPECT_GT(sawSaves, 0) << "the child never saved: nothing was checked";
}

}  // namespace
}  // namespace mosswick
