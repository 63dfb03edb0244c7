// Wake from sleep as logind announces it, with a private bus standing in for the system bus.
#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <memory>

#include "platform/freedesktop/LogindSleepWatch.h"
#include "support/EventWaiting.h"
#include "support/PrivateSessionBus.h"

using mosswick::LogindSleepWatch;
using mosswick::testing::keepRunning;
using mosswick::testing::PrivateSessionBus;
using mosswick::testing::waitUntil;

namespace {

class LogindSleepWatchTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!bus.isRunning()) GTEST_SKIP() << bus.problem().toStdString();
        logind = std::make_unique<QDBusConnection>(
            QDBusConnection::connectToBus(bus.address(), QStringLiteral("fake-logind")));
        client = std::make_unique<QDBusConnection>(
            QDBusConnection::connectToBus(bus.address(), QStringLiteral("sleep-client")));
        ASSERT_TRUE(logind->registerService(QStringLiteral("org.freedesktop.login1")));
    }
    void TearDown() override {
        client.reset();
        logind.reset();
        QDBusConnection::disconnectFromBus(QStringLiteral("sleep-client"));
        QDBusConnection::disconnectFromBus(QStringLiteral("fake-logind"));
    }

    void prepareForSleep(bool goingToSleep) {
        QDBusMessage signal = QDBusMessage::createSignal(QStringLiteral("/org/freedesktop/login1"),
                                                         QStringLiteral("org.freedesktop.login1.Manager"),
                                                         QStringLiteral("PrepareForSleep"));
        signal << goingToSleep;
        logind->send(signal);
    }

    PrivateSessionBus bus;
    std::unique_ptr<QDBusConnection> logind;
    std::unique_ptr<QDBusConnection> client;
};

TEST_F(LogindSleepWatchTest, OnlyTheWakeRunsTheCallbackOncePerWake) {
    LogindSleepWatch watch(*client);
    int wakes = 0;
    watch.watchWakes([&] { ++wakes; });

    prepareForSleep(true);
    keepRunning(100);
    EXPECT_EQ(wakes, 0) << "going to sleep is not waking";

    prepareForSleep(false);
    ASSERT_TRUE(waitUntil([&] { return wakes == 1; }));
    prepareForSleep(true);
    prepareForSleep(false);
    ASSERT_TRUE(waitUntil([&] { return wakes == 2; }));
    keepRunning(50);
    EXPECT_EQ(wakes, 2);
}

TEST_F(LogindSleepWatchTest, ASignalFromAnyoneButLogindIsIgnored) {
    LogindSleepWatch watch(*client);
    int wakes = 0;
    watch.watchWakes([&] { ++wakes; });
    logind->unregisterService(QStringLiteral("org.freedesktop.login1"));
    prepareForSleep(false);
    keepRunning(100);
    EXPECT_EQ(wakes, 0);
}

TEST(LogindSleepWatchWithoutBus, NoSystemBusIsNoFailure) {
    LogindSleepWatch watch(QDBusConnection(QStringLiteral("not connected")));
    watch.watchWakes([] { FAIL() << "nothing can wake without a bus"; });
    keepRunning(20);
}

}  // namespace
