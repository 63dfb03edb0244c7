// The desktop's animation switch, from a fake settings portal on a private bus and from KDE's file.
#include <gtest/gtest.h>

#include <QDBusConnection>

#include "FakeSettingsPortal.h"
#include "platform/freedesktop/DesktopAnimationSetting.h"
#include "support/TestFolders.h"
#include "support/EventWaiting.h"

using namespace mosswick;
using mosswick::testing::waitUntil;

namespace {

class DesktopAnimationSettingTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!portalBus.problem().isEmpty()) GTEST_SKIP() << portalBus.problem().toStdString();
    }

    mosswick::testing::SettingsPortalBus portalBus;
    mosswick::testing::FakeSettingsPortal& portal = portalBus.portal;
};

TEST_F(DesktopAnimationSettingTest, FollowsGnomesAnimationSwitchAsItChanges) {
    portal.values[QStringLiteral("org.gnome.desktop.interface/enable-animations")] = false;
    DesktopAnimationSetting setting(portalBus.client(), QString());
    EXPECT_FALSE(setting.reducesMotion()) << "nothing is assumed before the portal answers";
    ASSERT_TRUE(waitUntil([&] { return setting.reducesMotion(); }));

    portalBus.change(QStringLiteral("org.gnome.desktop.interface"), QStringLiteral("enable-animations"),
                     true);
    ASSERT_TRUE(waitUntil([&] { return !setting.reducesMotion(); }));
    // Other settings of the same group are no business of ours.
    portalBus.change(QStringLiteral("org.gnome.desktop.interface"), QStringLiteral("color-scheme"), 1u);
    mosswick::testing::keepRunning(50);
    EXPECT_FALSE(setting.reducesMotion());
}

TEST_F(DesktopAnimationSettingTest, KdeInstantAnimationsReduceMotionFromThePortalOrItsFile) {
    portal.values[QStringLiteral("org.kde.kdeglobals.KDE/AnimationDurationFactor")] = 0.0;
    DesktopAnimationSetting viaPortal(portalBus.client(), QString());
    ASSERT_TRUE(waitUntil([&] { return viaPortal.reducesMotion(); }));

    const auto path = mosswick::testing::freshFolder("kde") / "kdeglobals";
    mosswick::testing::writeFile(path, "[General]\nColorScheme=Breeze\n\n[KDE]\nAnimationDurationFactor=0\n");
    const QString file = QString::fromStdString(path.string());
    DesktopAnimationSetting viaFile(QDBusConnection(QStringLiteral("not connected")), file);
    EXPECT_TRUE(viaFile.reducesMotion());
}

TEST_F(DesktopAnimationSettingTest, NoPortalAndNoFileMeansAnimationsStayOn) {
    portalBus.removePortal();
    DesktopAnimationSetting setting(portalBus.client(), QStringLiteral("/nonexistent/kdeglobals"));
    mosswick::testing::keepRunning(100);
    EXPECT_FALSE(setting.reducesMotion());
}

}  // namespace
