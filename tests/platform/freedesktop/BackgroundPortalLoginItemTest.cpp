// Start at login from a sandbox, through a fake Background portal on a private bus.
#include <gtest/gtest.h>

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>
#include <memory>

#include "model/DefaultsStore.h"
#include "platform/freedesktop/BackgroundPortalLoginItem.h"
#include "settings/LoginItem.h"
#include "support/EventWaiting.h"
#include "support/PrivateSessionBus.h"

using mosswick::BackgroundPortalLoginItem;
using mosswick::LoginItemState;
using mosswick::MemoryDefaultsStore;
using mosswick::testing::PrivateSessionBus;
using mosswick::testing::waitUntil;

namespace {

const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");

// Answers each RequestBackground with the response and autostart it is told, as the portal does:
// the request's handle first, then its Response signal.
class FakeBackgroundPortal final : public QDBusVirtualObject {
public:
    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        if (message.interface() != QLatin1String("org.freedesktop.portal.Background") ||
            message.member() != QLatin1String("RequestBackground"))
            return false;
        const QVariantMap options = qdbus_cast<QVariantMap>(message.arguments().value(1));
        requests.push_back(options);
        QString sender = message.service();
        sender.remove(0, 1).replace(u'.', u'_');
        const QString request =
            QStringLiteral("%1/request/%2/%3")
                .arg(kPath, sender, options.value(QStringLiteral("handle_token")).toString());
        connection.send(message.createReply(QVariant::fromValue(QDBusObjectPath(request))));
        QDBusMessage signal = QDBusMessage::createSignal(
            request, QStringLiteral("org.freedesktop.portal.Request"), QStringLiteral("Response"));
        signal << response
               << QVariantMap{{QStringLiteral("background"), true},
                              {QStringLiteral("autostart"),
                               grantAutostart && options.value(QStringLiteral("autostart")).toBool()}};
        connection.send(signal);
        return true;
    }

    uint response = 0;
    bool grantAutostart = true;
    std::vector<QVariantMap> requests;
};

class BackgroundPortalLoginItemTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!bus.isRunning()) GTEST_SKIP() << bus.problem().toStdString();
        portalSide = std::make_unique<QDBusConnection>(
            QDBusConnection::connectToBus(bus.address(), QStringLiteral("mosswick-fake-background")));
        ASSERT_TRUE(portalSide->registerService(QStringLiteral("org.freedesktop.portal.Desktop")));
        ASSERT_TRUE(portalSide->registerVirtualObject(kPath, &portal, QDBusConnection::SubPath));
        client = std::make_unique<QDBusConnection>(
            QDBusConnection::connectToBus(bus.address(), QStringLiteral("mosswick-background-client")));
        ASSERT_TRUE(client->isConnected());
    }
    void TearDown() override {
        if (portalSide) portalSide->unregisterObject(kPath, QDBusConnection::UnregisterTree);
        portalSide.reset();
        client.reset();
        QDBusConnection::disconnectFromBus(QStringLiteral("mosswick-fake-background"));
        QDBusConnection::disconnectFromBus(QStringLiteral("mosswick-background-client"));
    }

    PrivateSessionBus bus;
    FakeBackgroundPortal portal;
    std::unique_ptr<QDBusConnection> portalSide;
    std::unique_ptr<QDBusConnection> client;
    MemoryDefaultsStore store;
};

TEST_F(BackgroundPortalLoginItemTest, TheSwitchFollowsThePortalsLateAnswerAndRemembersIt) {
    struct Case {
        const char* what;
        uint response;
        bool grant;
        bool turnOn;
        bool on;
        bool needsApproval;
    };
    const Case cases[] = {
        {"allowed", 0, true, true, true, false},
        {"turned off", 0, true, false, false, false},
        {"the user said no", 1, true, true, false, true},
        {"allowed to run, not to start at login", 0, false, true, false, true},
        {"the portal failed", 2, true, true, false, true},
    };
    for (const Case& c : cases) {
        BackgroundPortalLoginItem item(*client, store, {QStringLiteral("mosswick")});
        LoginItemState state(item);
        int changes = 0;
        item.onChange = [&] {
            ++changes;
            state.refresh();
        };
        portal.response = c.response;
        portal.grantAutostart = c.grant;
        state.apply(c.turnOn);
        EXPECT_TRUE(state.error().isEmpty()) << c.what;
        ASSERT_TRUE(waitUntil([&] { return changes == 1; })) << c.what;
        EXPECT_EQ(state.launchAtLogin(), c.on) << c.what;
        EXPECT_EQ(state.needsApproval(), c.needsApproval) << c.what;
        // Remembered for the next run, which cannot ask the portal.
        EXPECT_EQ(BackgroundPortalLoginItem(*client, store, {}).isEnabled(), c.on) << c.what;
    }
    ASSERT_EQ(portal.requests.size(), std::size(cases));
    const QVariantMap& first = portal.requests.front();
    EXPECT_EQ(first.value(QStringLiteral("commandline")).toStringList(),
              QStringList{QStringLiteral("mosswick")});
    EXPECT_TRUE(first.value(QStringLiteral("autostart")).toBool());
    EXPECT_FALSE(portal.requests.at(1).value(QStringLiteral("autostart")).toBool());
}

}  // namespace
