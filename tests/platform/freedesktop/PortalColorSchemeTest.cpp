// The desktop's colour scheme from a fake settings portal on a private bus, as far as the
// application's palette.
#include <gtest/gtest.h>

#include <QGuiApplication>

#include "FakeSettingsPortal.h"
#include "interaction/ApplicationAppearance.h"
#include "interaction/ShelfPalette.h"
#include "platform/freedesktop/PortalColorScheme.h"
#include "support/EventWaiting.h"

using namespace mosswick;
using mosswick::testing::keepRunning;
using mosswick::testing::waitUntil;
using Scheme = DesktopColorScheme::Scheme;

namespace {

const QString kAppearance = QStringLiteral("org.freedesktop.appearance");
const QString kColorScheme = QStringLiteral("color-scheme");

bool applicationLooksDark() { return ShelfPalette::isDark(QGuiApplication::palette()); }

class PortalColorSchemeTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!portalBus.problem().isEmpty()) GTEST_SKIP() << portalBus.problem().toStdString();
        QGuiApplication::setPalette(ShelfPalette::light());  // a light desktop, as Qt sees it
    }

    void desktopSwitchesTo(uint scheme) { portalBus.change(kAppearance, kColorScheme, scheme); }

    mosswick::testing::SettingsPortalBus portalBus;
};

TEST_F(PortalColorSchemeTest, SystemAppearanceFollowsTheDesktopWhileRunning) {
    portalBus.portal.values[kAppearance + QStringLiteral("/") + kColorScheme] = 2u;
    PortalColorScheme scheme(portalBus.client());
    ApplicationAppearance appearance(scheme);
    appearance.apply(AppearanceMode::system);
    ASSERT_TRUE(waitUntil([&] { return scheme.scheme() == Scheme::light; }));
    EXPECT_FALSE(applicationLooksDark());

    desktopSwitchesTo(1);
    ASSERT_TRUE(waitUntil([&] { return applicationLooksDark(); }));
    desktopSwitchesTo(0);  // no preference: the desktop's palette, a light one, decides
    ASSERT_TRUE(waitUntil([&] { return !applicationLooksDark(); }));

    // Other settings of the portal are no business of ours.
    portalBus.change(kAppearance, QStringLiteral("accent-color"), 1u);
    portalBus.change(QStringLiteral("org.gnome.desktop.interface"), kColorScheme, 1u);
    keepRunning(50);
    EXPECT_FALSE(applicationLooksDark());

    appearance.apply(AppearanceMode::light);
    desktopSwitchesTo(1);
    ASSERT_TRUE(waitUntil([&] { return scheme.scheme() == Scheme::dark; }));
    EXPECT_FALSE(applicationLooksDark()) << "a chosen appearance ignores the desktop";
}

TEST_F(PortalColorSchemeTest, AnOlderPortalIsReadWithRead) {
    portalBus.portal.answersReadOne = false;
    portalBus.portal.values[kAppearance + QStringLiteral("/") + kColorScheme] = 1u;
    PortalColorScheme scheme(portalBus.client());
    ASSERT_TRUE(waitUntil([&] { return scheme.scheme() == Scheme::dark; }));
}

TEST_F(PortalColorSchemeTest, WithoutAPortalQtsPaletteDecides) {
    portalBus.removePortal();
    PortalColorScheme scheme(portalBus.client());
    ApplicationAppearance appearance(scheme);
    appearance.apply(AppearanceMode::system);
    keepRunning(100);
    EXPECT_EQ(scheme.scheme(), Scheme::noPreference);
    EXPECT_FALSE(applicationLooksDark());

    // As a platform theme or qt6ct hands Qt a new palette for the desktop.
    QPalette darkDesktop = ShelfPalette::dark();
    darkDesktop.setColor(QPalette::Window, QColor(0x10, 0x10, 0x10));
    darkDesktop.setColor(QPalette::Highlight, QColor(0x2e, 0xa0, 0x43));
    QGuiApplication::setPalette(darkDesktop);
    ASSERT_TRUE(waitUntil([&] { return applicationLooksDark(); }));
    EXPECT_EQ(QGuiApplication::palette().color(QPalette::Window),
              ShelfPalette::dark().color(QPalette::Window))
        << "the shelf's own dark palette, not the desktop's";
    EXPECT_EQ(QGuiApplication::palette().color(QPalette::Highlight), QColor(0x2e, 0xa0, 0x43))
        << "in the desktop's accent";
}

}  // namespace
