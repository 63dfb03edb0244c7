// Wake from sleep as logind announces it, with a private bus standing in for the system bus.
#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusMessage>

#include "platform/freedesktop/LogindSleepWatch.h"
#include "support/EventWaiting.h"
#include "support/PrivateSessionBus.h"

using mosswick::LogindSleepWatch;
using mosswick::testing::keepRunning;
using mosswick::testing::waitUntil;

namespace {

TEST(LogindSleepWatchTest, OnlyTheWakeRunsTheCallbackOncePerWake) {
    mosswick::testing::PrivateSessionBus bus;
    if (!bus.isRunning()) GTEST_SKIP() << bus.problem().toStdString();
    QDBusConnection logind = QDBusConnection::connectToBus(bus.address(), QStringLiteral("fake-logind"));
    ASSERT_TRUE(logind.registerService(QStringLiteral("org.freedesktop.login1")));
    auto prepareForSleep = [&](bool goingToSleep) {
        QDBusMessage signal = QDBusMessage::createSignal(QStringLiteral("/org/freedesktop/login1"),
                                                         QStringLiteral("org.freedesktop.login1.Manager"),
                                                         QStringLiteral("PrepareForSleep"));
        logind.send(signal << goingToSleep);
    };
    LogindSleepWatch watch(QDBusConnection::connectToBus(bus.address(), QStringLiteral("sleep-client")));
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

TEST(LogindSleepWatchTest, NoSystemBusIsNoFailure) {
    LogindSleepWatch watch(QDBusConnection(QStringLiteral("not connected")));
    watch.watchWakes([] { FAIL() << "nothing can wake without a bus"; });
    keepRunning(20);
}

}  // namespace
