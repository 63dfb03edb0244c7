// Receiving promised files over X Direct Save, against a private X server and a source reduced to
// its selection: the ways a source fails, and a source that answers before its file is written.
// A source that writes the file, under the proposed name or its own, is shown by the desktop test
// shelf_drops with the peer and xarchiver.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <QElapsedTimer>

#include "platform/x11/X11Connection.h"
#include "platform/x11/X11DirectSaveReceiver.h"
#include "platform/x11/X11DirectSaveWorker.h"
#include "support/EventWaiting.h"
#include "FakeDirectSaveSource.h"
#include "support/TestFolders.h"
#include "support/XvfbServer.h"

namespace mosswick {
namespace {

namespace fs = std::filesystem;
using Answer = testing::FakeDirectSaveSource::Answer;
using testing::FakeDirectSaveSource;
using testing::readFile;

class X11DirectSaveReceiverTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!server.isRunning()) GTEST_SKIP() << server.problem().toStdString();
        connection = X11Connection::open(server.displayName());
        ASSERT_TRUE(connection);
        receiver = X11DirectSaveReceiver::create(*connection, std::chrono::milliseconds(400));
        ASSERT_TRUE(receiver);
    }

    // Drops a promise from `source` and waits for its one delivery.
    std::optional<FilePromise::Delivery> receive(FakeDirectSaveSource& source, bool offersData = false) {
        const quint32 dropTime = source.startDrag();
        auto promise = receiver->promiseFor({source.window(), dropTime, offersData});
        std::optional<FilePromise::Delivery> delivery;
        QElapsedTimer during;
        during.start();
        promise->receive({folder, "proposed.txt"},
                         [&](const FilePromise::Delivery& answer) { delivery = answer; });
        receiveMs = during.elapsed();
        EXPECT_FALSE(delivery) << "never answered inside the drop";
        testing::waitUntil([&] { return delivery.has_value(); }, 5000, [&] { source.pump(); });
        if (source.requestTime()) {
            EXPECT_EQ(*source.requestTime(), dropTime) << "asked at the drop's time";
        }
        return delivery;
    }

    testing::XvfbServer server;
    std::unique_ptr<X11Connection> connection;
    std::unique_ptr<X11DirectSaveReceiver> receiver;
    fs::path folder = testing::freshFolder("promised");
    qint64 receiveMs = 0;
};

TEST_F(X11DirectSaveReceiverTest, AFailureWithDataOnOfferIsWrittenByTheReceiver) {
    FakeDirectSaveSource small(server.displayName(), Answer::fails, "picture.png");
    small.offerData("\x89PNG small picture");
    auto delivery = receive(small, true);
    ASSERT_TRUE(delivery && delivery->file) << (delivery ? delivery->problem.toStdString() : "no answer");
    EXPECT_EQ(readFile(*delivery->file), "\x89PNG small picture");

    // Large data comes in pieces.
    fs::remove_all(folder);
    fs::create_directories(folder);
    QByteArray large(3 * 1024 * 1024 + 17, '\0');
    for (qsizetype i = 0; i < large.size(); ++i) large[i] = static_cast<char>(i * 7);
    FakeDirectSaveSource big(server.displayName(), Answer::fails, "large.png");
    big.offerData(large);
    delivery = receive(big, true);
    ASSERT_TRUE(delivery && delivery->file) << (delivery ? delivery->problem.toStdString() : "no answer");
    EXPECT_EQ(QByteArray::fromStdString(readFile(*delivery->file)), large);
}

TEST_F(X11DirectSaveReceiverTest, FailuresAndErrorsDeliverNothing) {
    FakeDirectSaveSource failing(server.displayName(), Answer::fails, "a.txt");
    auto delivery = receive(failing);
    ASSERT_TRUE(delivery);
    EXPECT_FALSE(delivery->file);
    EXPECT_FALSE(delivery->problem.isEmpty());

    FakeDirectSaveSource erring(server.displayName(), Answer::reportsError, "b.txt");
    delivery = receive(erring);
    ASSERT_TRUE(delivery);
    EXPECT_FALSE(delivery->file);
}

TEST_F(X11DirectSaveReceiverTest, ASilentSourceNeverHoldsUpTheDropAndWhatArrivedIsKept) {
    FakeDirectSaveSource silent(server.displayName(), Answer::neverAnswers, "slow.txt");
    auto delivery = receive(silent);
    EXPECT_LT(receiveMs, 200) << "the drop waited for the source";
    ASSERT_TRUE(delivery);
    EXPECT_FALSE(delivery->file);

    // A file that did arrive without a word is not lost.
    FakeDirectSaveSource quiet(server.displayName(), Answer::neverAnswers, "quiet.txt");
    testing::writeFile(folder / "proposed.txt", "written, never confirmed");
    delivery = receive(quiet);
    ASSERT_TRUE(delivery && delivery->file);
    EXPECT_EQ(readFile(*delivery->file), "written, never confirmed");
}

TEST_F(X11DirectSaveReceiverTest, ASourceThatGoesAwayEndsTheWaitAtOnce) {
    auto receiverWithTime = X11DirectSaveReceiver::create(*connection, std::chrono::seconds(30));
    FakeDirectSaveSource source(server.displayName(), Answer::neverAnswers, "gone.txt");
    const quint32 dropTime = source.startDrag();
    auto promise = receiverWithTime->promiseFor({source.window(), dropTime, false});
    std::optional<FilePromise::Delivery> delivery;
    promise->receive({folder, "gone.txt"}, [&](const FilePromise::Delivery& answer) { delivery = answer; });
    source.pump();
    source.vanish();
    EXPECT_TRUE(testing::waitUntil([&] { return delivery.has_value(); }, 5000));
    ASSERT_TRUE(delivery);
    EXPECT_FALSE(delivery->file);
}

TEST_F(X11DirectSaveReceiverTest, AFileAnsweredForBeforeItIsWrittenIsHandedOnOnceItsWriterClosesIt) {
    // As a browser does: "S" while the file is still open and growing.
    FakeDirectSaveSource source(server.displayName(), Answer::saves, "picture.png");
    const int writer =
        ::open((folder / "proposed.txt").c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    ASSERT_GE(writer, 0);
    auto patient = X11DirectSaveReceiver::create(*connection, std::chrono::seconds(30));
    const quint32 dropTime = source.startDrag();
    auto promise = patient->promiseFor({source.window(), dropTime, false});
    std::optional<FilePromise::Delivery> delivery;
    std::string whenDelivered;
    promise->receive({folder, "proposed.txt"}, [&](const FilePromise::Delivery& answer) {
        delivery = answer;
        if (answer.file) whenDelivered = readFile(*answer.file);
    });
    const std::string first = "\x89PNG first half,";
    ASSERT_EQ(::write(writer, first.data(), first.size()), static_cast<ssize_t>(first.size()));
    // Longer than a file that cannot be told complete has to stay unchanged.
    testing::keepRunning(static_cast<int>(X11DirectSaveWorker::kSettleTime.count()) + 150,
                         [&] { source.pump(); });
    ASSERT_FALSE(delivery) << "handed on while still being written";
    const std::string second = " second half";
    ASSERT_EQ(::write(writer, second.data(), second.size()), static_cast<ssize_t>(second.size()));
    ::close(writer);
    ASSERT_TRUE(testing::waitUntil([&] { return delivery.has_value(); }, 5000, [&] { source.pump(); }));
    ASSERT_TRUE(delivery->file) << delivery->problem.toStdString();
    EXPECT_EQ(whenDelivered, "\x89PNG first half, second half");

    // A file made only after the answer is still taken.
    fs::remove_all(folder);
    fs::create_directories(folder);
    FakeDirectSaveSource late(server.displayName(), Answer::saves, "late.png");
    auto latePromise = receiver->promiseFor({late.window(), late.startDrag(), false});
    delivery.reset();
    latePromise->receive({folder, "proposed.txt"},
                         [&](const FilePromise::Delivery& answer) { delivery = answer; });
    testing::keepRunning(150, [&] { late.pump(); });
    ASSERT_FALSE(delivery) << "gave up before the file came";
    testing::writeFile(folder / "proposed.txt", "made late");
    ASSERT_TRUE(testing::waitUntil([&] { return delivery.has_value(); }, 5000, [&] { late.pump(); }));
    ASSERT_TRUE(delivery->file) << delivery->problem.toStdString();
    EXPECT_EQ(readFile(*delivery->file), "made late");

    // One that never comes is given up on once the source has had as long as for an answer.
    FakeDirectSaveSource boasting(server.displayName(), Answer::saves, "nothing.png");
    fs::remove_all(folder);
    fs::create_directories(folder);
    delivery = receive(boasting);
    ASSERT_TRUE(delivery);
    EXPECT_FALSE(delivery->file);
}

}  // namespace
}  // namespace mosswick
