// The desktop's animation switch, from a fake settings portal on a private bus and from KDE's file.
#include <gtest/gtest.h>

#include <QDBusConnection>

#include "FakeSettingsPortal.h"
#include "platform/freedesktop/DesktopAnimationSetting.h"
#include "support/TestFolders.h"
#include "support/EventWaiting.h"
#include "support/PrivateSessionBus.h"

using namespace mosswick;
using mosswick::testing::PrivateSessionBus;
using mosswick::testing::waitUntil;

namespace {

using mosswick::testing::FakeSettingsPortal;
const QString& kPath = FakeSettingsPortal::kPath;

class DesktopAnimationSettingTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!bus.isRunning()) GTEST_SKIP() << bus.problem().toStdString();
        portalSide = std::make_unique<QDBusConnection>(
            QDBusConnection::connectToBus(bus.address(), QStringLiteral("fake-settings-portal")));
        client = std::make_unique<QDBusConnection>(
            QDBusConnection::connectToBus(bus.address(), QStringLiteral("settings-client")));
        ASSERT_TRUE(portalSide->registerService(QStringLiteral("org.freedesktop.portal.Desktop")));
        ASSERT_TRUE(portalSide->registerObject(kPath, &portal, QDBusConnection::ExportAllSlots));
    }
    void TearDown() override {
        client.reset();
        portalSide.reset();
        QDBusConnection::disconnectFromBus(QStringLiteral("settings-client"));
        QDBusConnection::disconnectFromBus(QStringLiteral("fake-settings-portal"));
    }

    PrivateSessionBus bus;
    FakeSettingsPortal portal;
    std::unique_ptr<QDBusConnection> portalSide;
    std::unique_ptr<QDBusConnection> client;
};

TEST_F(DesktopAnimationSettingTest, FollowsGnomesAnimationSwitchAsItChanges) {
    portal.values[QStringLiteral("org.gnome.desktop.interface/enable-animations")] = false;
    DesktopAnimationSetting setting(*client, QString());
    EXPECT_FALSE(setting.reducesMotion()) << "nothing is assumed before the portal answers";
    ASSERT_TRUE(waitUntil([&] { return setting.reducesMotion(); }));

    portal.change(*portalSide, QStringLiteral("org.gnome.desktop.interface"),
                  QStringLiteral("enable-animations"), true);
    ASSERT_TRUE(waitUntil([&] { return !setting.reducesMotion(); }));
    // Other settings of the same group are no business of ours.
    portal.change(*portalSide, QStringLiteral("org.gnome.desktop.interface"), QStringLiteral("color-scheme"),
                  1u);
    mosswick::testing::keepRunning(50);
    EXPECT_FALSE(setting.reducesMotion());
}

TEST_F(DesktopAnimationSettingTest, KdeInstantAnimationsReduceMotionFromThePortalOrItsFile) {
    portal.values[QStringLiteral("org.kde.kdeglobals.KDE/AnimationDurationFactor")] = 0.0;
    DesktopAnimationSetting viaPortal(*client, QString());
    ASSERT_TRUE(waitUntil([&] { return viaPortal.reducesMotion(); }));

    const auto path = mosswick::testing::freshFolder("kde") / "kdeglobals";
    mosswick::testing::writeFile(path, "[General]\nColorScheme=Breeze\n\n[KDE]\nAnimationDurationFactor=0\n");
    const QString file = QString::fromStdString(path.string());
    DesktopAnimationSetting viaFile(QDBusConnection(QStringLiteral("not connected")), file);
    EXPECT_TRUE(viaFile.reducesMotion());
}

TEST_F(DesktopAnimationSettingTest, NoPortalAndNoFileMeansAnimationsStayOn) {
    portalSide->unregisterObject(kPath);
    DesktopAnimationSetting setting(*client, QStringLiteral("/nonexistent/kdeglobals"));
    mosswick::testing::keepRunning(100);
    EXPECT_FALSE(setting.reducesMotion());
}

}  // namespace
