// The shortcut through the GlobalShortcuts portal, against a fake portal on a private bus.
#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QStringList>
#include <functional>
#include <memory>

#include "platform/freedesktop/PortalGlobalShortcuts.h"
#include "triggers/KeyboardLayout.h"
#include "support/EventWaiting.h"
#include "FakeShortcutsPortal.h"
#include "support/PrivateSessionBus.h"

using mosswick::HotKeyService;
using mosswick::KeyCombo;
using mosswick::PortalGlobalShortcuts;
using mosswick::testing::FakeShortcutsPortal;
using mosswick::testing::keepRunning;
using mosswick::testing::PrivateSessionBus;
using mosswick::testing::waitUntil;

namespace {

// Knows the names of A and Space only.
class SmallLayout final : public mosswick::KeyboardLayout {
public:
    std::optional<QString> character(quint32 evdev) const override {
        if (evdev == 30) return QStringLiteral("a");
        return std::nullopt;
    }
    std::optional<QString> symbolName(quint32 evdev) const override {
        if (evdev == 30) return QStringLiteral("a");
        if (evdev == 57) return QStringLiteral("space");
        return std::nullopt;
    }
};

const KeyCombo kCtrlAltSpace{49, KeyCombo::kControl | KeyCombo::kOption};

class PortalGlobalShortcutsTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!bus.isRunning()) GTEST_SKIP() << bus.problem().toStdString();
        client = std::make_unique<QDBusConnection>(
            QDBusConnection::connectToBus(bus.address(), QStringLiteral("mosswick-portal-client")));
        ASSERT_TRUE(client->isConnected());
    }
    void TearDown() override {
        service.reset();
        portal.reset();
        client.reset();
        QDBusConnection::disconnectFromBus(QStringLiteral("mosswick-portal-client"));
    }

    void startPortal() {
        portal = std::make_unique<FakeShortcutsPortal>(bus.address());
        ASSERT_TRUE(portal->isReady());
        service = std::make_unique<PortalGlobalShortcuts>(*client, layout);
        service->installHandler(
            [this](HotKeyService::Event event) {
                events << (event == HotKeyService::Event::pressed ? QStringLiteral("pressed")
                                                                  : QStringLiteral("released"));
            },
            [this](HotKeyService::Handle handle, qint32 status) { failures.emplace_back(handle, status); });
    }

    QString boundSession() {
        EXPECT_TRUE(waitUntil([&] { return !portal->boundShortcuts().empty(); }));
        return portal->boundShortcuts().empty() ? QString() : portal->boundShortcuts().front().session;
    }

    PrivateSessionBus bus;
    std::unique_ptr<QDBusConnection> client;
    SmallLayout layout;
    std::unique_ptr<FakeShortcutsPortal> portal;
    std::unique_ptr<PortalGlobalShortcuts> service;
    QStringList events;
    std::vector<std::pair<HotKeyService::Handle, qint32>> failures;
};

TEST_F(PortalGlobalShortcutsTest, AvailableOnlyWhereThePortalRuns) {
    EXPECT_FALSE(PortalGlobalShortcuts::isAvailable(*client));
    startPortal();
    EXPECT_TRUE(PortalGlobalShortcuts::isAvailable(*client));
}

TEST_F(PortalGlobalShortcutsTest, BindsTheComboAndHearsItGoDownAndUpOnce) {
    startPortal();
    ASSERT_TRUE(service->registerHotKey(kCtrlAltSpace).handle);
    const QString session = boundSession();
    const auto shortcut = portal->boundShortcuts().front();
    EXPECT_EQ(shortcut.preferredTrigger, QStringLiteral("CTRL+ALT+space"));

    portal->activate(QStringLiteral("/org/freedesktop/portal/desktop/session/other/x"), shortcut.id);
    portal->activate(session, QStringLiteral("another-shortcut"));
    portal->activate(session, shortcut.id);
    portal->activate(session, shortcut.id);  // repeated while held
    portal->deactivate(session, shortcut.id);
    EXPECT_TRUE(waitUntil([&] { return events.size() >= 2; }));
    keepRunning(50);
    EXPECT_EQ(events, QStringList({QStringLiteral("pressed"), QStringLiteral("released")}));
    EXPECT_TRUE(failures.empty());
}

TEST_F(PortalGlobalShortcutsTest, RefusedOrEmptyBindingIsReportedLateAndItsSessionClosed) {
    struct Case {
        const char* name;
        std::function<void(FakeShortcutsPortal&)> answer;
        qint32 status;
    };
    const Case cases[] = {
        {"cancelled by the user", [](FakeShortcutsPortal& p) { p.answerBindingsWith(1); }, 1},
        {"accepted with nothing bound", [](FakeShortcutsPortal& p) { p.bindNothing(); },
         PortalGlobalShortcuts::kBoundNothing},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        failures.clear();
        startPortal();
        c.answer(*portal);
        const auto registration = service->registerHotKey(KeyCombo{96, 0});
        ASSERT_TRUE(registration.handle);
        EXPECT_TRUE(waitUntil([&] { return !failures.empty(); }));
        ASSERT_EQ(failures.size(), 1u);
        EXPECT_EQ(failures.front(), std::make_pair(*registration.handle, c.status));
        EXPECT_TRUE(waitUntil([&] { return portal->closedSessions().size() == 1; }));
        service.reset();
        portal.reset();
    }
}

TEST_F(PortalGlobalShortcutsTest, UnregisteringClosesTheSessionAndSilencesIt) {
    startPortal();
    const auto registration = service->registerHotKey(kCtrlAltSpace);
    const QString session = boundSession();
    service->unregisterHotKey(*registration.handle);
    EXPECT_TRUE(waitUntil([&] { return portal->closedSessions() == QStringList{session}; }));
    portal->activate(session, PortalGlobalShortcuts::kShortcutId);
    keepRunning(50);
    EXPECT_TRUE(events.isEmpty());
}

TEST(PortalTrigger, SpellsKeysTheWayDesktopShortcutSettingsDo) {
    const SmallLayout layout;
    const mosswick::KeyboardLayout& none = mosswick::KeyboardLayout::shared();
    const QDBusConnection disconnected(QStringLiteral("mosswick-no-bus"));
    PortalGlobalShortcuts withLayout(disconnected, layout);
    PortalGlobalShortcuts withoutLayout(disconnected, none);
    EXPECT_EQ(withLayout.preferredTrigger(KeyCombo{0, 0x1E0000}), QStringLiteral("CTRL+ALT+SHIFT+LOGO+a"));
    EXPECT_EQ(withoutLayout.preferredTrigger(KeyCombo{96, KeyCombo::kShift}), QStringLiteral("SHIFT+F5"));
    EXPECT_EQ(withoutLayout.preferredTrigger(kCtrlAltSpace), QStringLiteral("CTRL+ALT+space"));
    EXPECT_EQ(withoutLayout.preferredTrigger(KeyCombo{0, 0}), QString());
    EXPECT_EQ(withoutLayout.preferredTrigger(KeyCombo{36, 0}), QString());  // Return has only a symbol
}

}  // namespace
