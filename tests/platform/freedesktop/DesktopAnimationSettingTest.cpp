// The desktop's animation switch, from a fake settings portal on a private bus and from KDE's file.
#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QMap>

#include "platform/freedesktop/DesktopAnimationSetting.h"
#include "support/TestFolders.h"
#include "support/EventWaiting.h"
#include "support/PrivateSessionBus.h"

using namespace mosswick;
using mosswick::testing::PrivateSessionBus;
using mosswick::testing::waitUntil;

namespace {

const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");

// The settings portal as GNOME's and KDE's desktops run it: Read answers a variant in a variant.
class FakeSettingsPortal final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    QMap<QString, QVariant> values;

    void change(QDBusConnection& connection, const QString& group, const QString& key,
                const QVariant& value) {
        values[group + QLatin1Char('/') + key] = value;
        QDBusMessage signal = QDBusMessage::createSignal(
            kPath, QStringLiteral("org.freedesktop.portal.Settings"), QStringLiteral("SettingChanged"));
        signal << group << key << QVariant::fromValue(QDBusVariant(value));
        connection.send(signal);
    }

public slots:
    QDBusVariant Read(const QString& group, const QString& key) {
        const auto found = values.find(group + QLatin1Char('/') + key);
        if (found == values.end()) {
            sendErrorReply(QStringLiteral("org.freedesktop.portal.Error.NotFound"),
                           QStringLiteral("no such key"));
            return {};
        }
        return QDBusVariant(QVariant::fromValue(QDBusVariant(*found)));
    }
};

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

#include "DesktopAnimationSettingTest.moc"
