// Mosswick's shortcut written into the real GNOME and KDE settings stores (gsettings over dconf,
// kwriteconfig5 and KDE's kglobalaccel) on a private bus with the test's own folders, and read
// back the way the desktops read them; KDE's service on a private X server, where its key really
// runs the command. Skipped where the desktops' tools are not installed.
#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QKeySequence>
#include <QProcess>
#include <QStandardPaths>
#include <memory>

#include "platform/freedesktop/GnomeCustomShortcut.h"
#include "platform/freedesktop/KdeGlobalShortcut.h"
#include "triggers/KeyboardLayout.h"
#include "support/EventWaiting.h"
#include "support/PrivateSessionBus.h"
#include "support/XvfbServer.h"

using mosswick::DesktopShortcut;
using mosswick::GnomeCustomShortcut;
using mosswick::KdeGlobalShortcut;
using mosswick::KeyCombo;
using mosswick::testing::PrivateSessionBus;
using mosswick::testing::waitUntil;
namespace DesktopShortcuts = mosswick::DesktopShortcuts;

namespace {

const KeyCombo kCtrlAltSpace{49, KeyCombo::kControl | KeyCombo::kOption};
const KeyCombo kF5{96, 0};
const KeyCombo kCtrlAltF7{98, KeyCombo::kControl | KeyCombo::kOption};

QString run(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished(10000);
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

// One string as gsettings prints it.
QString printedString(const QString& printed) {
    return DesktopShortcuts::parseGVariantStringArray(u'[' + printed + u']').value_or(QStringList{}).value(0);
}

class DesktopShortcutStores : public ::testing::Test {
protected:
    void SetUp() override {
        if (!bus.isRunning()) GTEST_SKIP() << bus.problem().toStdString();
        // The tools and the services they start talk on the test's bus only.
        qputenv("DBUS_SESSION_BUS_ADDRESS", bus.address().toUtf8());
    }

    const mosswick::KeyboardLayout& layout = mosswick::KeyboardLayout::shared();
    PrivateSessionBus bus;
};

class GnomeStore : public DesktopShortcutStores {
protected:
    void SetUp() override {
        DesktopShortcutStores::SetUp();
        if (IsSkipped()) return;
        if (QStandardPaths::findExecutable(QStringLiteral("gsettings")).isEmpty() ||
            !run(QStringLiteral("gsettings"), {QStringLiteral("list-schemas")})
                 .split(u'\n')
                 .contains(GnomeCustomShortcut::kSchema))
            GTEST_SKIP() << "gsettings or GNOME's media-keys schema is not installed";
    }

    QString get(const QString& schema, const QString& key) {
        return run(QStringLiteral("gsettings"), {QStringLiteral("get"), schema, key});
    }
    QString ours(const QString& key) {
        return printedString(
            get(GnomeCustomShortcut::kEntrySchema + u':' + GnomeCustomShortcut::kEntryPath, key));
    }
    QStringList list() {
        return DesktopShortcuts::parseGVariantStringArray(
                   get(GnomeCustomShortcut::kSchema, GnomeCustomShortcut::kListKey))
            .value_or(QStringList{QStringLiteral("unreadable")});
    }

    const QString custom0 =
        QStringLiteral("/org/gnome/settings-daemon/plugins/media-keys/custom-keybindings/custom0/");
};

TEST_F(GnomeStore, AddsOnceBesideTheUsersOwnShortcutsAndUpdatesAfterwards) {
    // The user's own shortcut, made as GNOME's settings make one.
    const QString theirs = GnomeCustomShortcut::kEntrySchema + u':' + custom0;
    run(QStringLiteral("gsettings"),
        {QStringLiteral("set"), GnomeCustomShortcut::kSchema, GnomeCustomShortcut::kListKey,
         DesktopShortcuts::gvariantStringArray({custom0})});
    run(QStringLiteral("gsettings"),
        {QStringLiteral("set"), theirs, QStringLiteral("binding"), QStringLiteral("'<Super>t'")});
    ASSERT_EQ(list(), QStringList{custom0});

    GnomeCustomShortcut store(layout);
    const QString executable = QStringLiteral("/opt/my apps/mosswick");
    EXPECT_EQ(store.save({QStringLiteral("Mosswick: Toggle the Shelf"), executable, kCtrlAltSpace}),
              QString());
    EXPECT_EQ(list(), (QStringList{custom0, GnomeCustomShortcut::kEntryPath}));
    EXPECT_EQ(ours(QStringLiteral("binding")), QStringLiteral("<Control><Alt>space"));
    EXPECT_EQ(ours(QStringLiteral("command")), QStringLiteral("'/opt/my apps/mosswick' toggle"));
    EXPECT_EQ(ours(QStringLiteral("name")), QStringLiteral("Mosswick: Toggle the Shelf"));

    // Pressed again after the shortcut changed: the same entry, the new key.
    EXPECT_EQ(store.save({QStringLiteral("Mosswick: Toggle the Shelf"), executable, kF5}), QString());
    EXPECT_EQ(list(), (QStringList{custom0, GnomeCustomShortcut::kEntryPath}));
    EXPECT_EQ(ours(QStringLiteral("binding")), QStringLiteral("F5"));
    EXPECT_EQ(printedString(get(theirs, QStringLiteral("binding"))), QStringLiteral("<Super>t"));

    // It lives in dconf's own database, which GNOME reads at login.
    EXPECT_TRUE(QFile::exists(QDir(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation))
                                  .filePath(QStringLiteral("dconf/user"))));
}

class KdeStore : public DesktopShortcutStores {
protected:
    void SetUp() override {
        DesktopShortcutStores::SetUp();
        if (IsSkipped()) return;
        if (QStandardPaths::findExecutable(QStringLiteral("kwriteconfig5")).isEmpty() ||
            QStandardPaths::findExecutable(QStringLiteral("kreadconfig5")).isEmpty())
            GTEST_SKIP() << "KDE's configuration tools (libkf5config-bin) are not installed";
        client = std::make_unique<QDBusConnection>(
            QDBusConnection::connectToBus(bus.address(), QStringLiteral("mosswick-kde-client")));
        ASSERT_TRUE(client->isConnected());
        store = std::make_unique<KdeGlobalShortcut>(*client, layout, applications);
    }
    void TearDown() override {
        store.reset();
        if (service.state() != QProcess::NotRunning) {
            service.terminate();
            service.waitForFinished(5000);
        }
        client.reset();
        QDBusConnection::disconnectFromBus(QStringLiteral("mosswick-kde-client"));
    }

    // What KDE's shortcut service reads at its start.
    QString stored(const QString& group, const QString& key) {
        return run(QStringLiteral("kreadconfig5"),
                   {QStringLiteral("--file"), QStringLiteral("kglobalshortcutsrc"), QStringLiteral("--group"),
                    group, QStringLiteral("--key"), key});
    }
    // kglobalaccel5 on a private X server, where it grabs the keys it holds.
    bool startService() {
        const QString program = QStandardPaths::findExecutable(QStringLiteral("kglobalaccel5"));
        if (program.isEmpty() || !x.isRunning()) return false;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
        environment.insert(QStringLiteral("DISPLAY"), QString::fromLatin1(x.displayName()));
        service.setProcessEnvironment(environment);
        service.start(program, {});
        return waitUntil(
            [this] { return client->interface()->isServiceRegistered(KdeGlobalShortcut::kService); }, 10000);
    }
    // The program the shortcut runs: a stand-in, in a folder with a space, that notes its arguments
    // in `ran()`.
    DesktopShortcut standIn() {
        const QString folder = QFileInfo(ran()).path();
        DesktopShortcut shortcut = toggle;
        shortcut.executable = QDir(folder).filePath(QStringLiteral("mosswick"));
        QDir().mkpath(folder);
        QFile script(shortcut.executable);
        EXPECT_TRUE(script.open(QIODevice::WriteOnly));
        script.write("#!/bin/sh\necho \"$@\" >> \"$(dirname \"$0\")/ran\"\n");
        script.close();
        script.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
        return shortcut;
    }
    static QString ran() {
        return QDir(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation))
            .filePath(QStringLiteral("my apps/ran"));
    }
    // Presses Ctrl+Alt+Space on the private X server and says whether the stand-in ran "toggle".
    bool keyRunsToggle() {
        if (!x.xdotool({QStringLiteral("key"), QStringLiteral("ctrl+alt+space")})) return false;
        if (!waitUntil([] { return QFile::exists(ran()); }, 10000)) return false;
        QFile record(ran());
        return record.open(QIODevice::ReadOnly) && record.readAll() == "toggle\n";
    }

    QDBusMessage callService(const QString& method, const QList<QVariant>& arguments) {
        QDBusMessage call =
            QDBusMessage::createMethodCall(KdeGlobalShortcut::kService, QStringLiteral("/kglobalaccel"),
                                           QStringLiteral("org.kde.KGlobalAccel"), method);
        call.setArguments(arguments);
        return client->call(call, QDBus::Block, 5000);
    }

    const QString applications = QDir(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation))
                                     .filePath(QStringLiteral("applications"));
    const DesktopShortcut toggle{QStringLiteral("Mosswick: Toggle the Shelf"),
                                 QStringLiteral("/opt/my apps/mosswick"), kCtrlAltSpace};
    std::unique_ptr<QDBusConnection> client;
    std::unique_ptr<KdeGlobalShortcut> store;
    mosswick::testing::XvfbServer x;
    QProcess service;
};

TEST_F(KdeStore, WithoutTheServiceTheStoreItReadsAtStartHoldsTheKey) {
    EXPECT_EQ(store->save(toggle), QString());
    EXPECT_EQ(stored(KdeGlobalShortcut::kComponent, QStringLiteral("_launch")),
              QStringLiteral("Ctrl+Alt+Space,none,Mosswick: Toggle the Shelf"));
    EXPECT_EQ(stored(KdeGlobalShortcut::kComponent, QStringLiteral("_k_friendly_name")),
              QStringLiteral("Mosswick"));
    const QString entry =
        run(QStringLiteral("kreadconfig5"),
            {QStringLiteral("--file"), QDir(applications).filePath(KdeGlobalShortcut::kComponent),
             QStringLiteral("--group"), QStringLiteral("Desktop Entry"), QStringLiteral("--key"),
             QStringLiteral("Exec")});
    EXPECT_EQ(entry, QStringLiteral("\"/opt/my apps/mosswick\" toggle"));

    // At its next start the service reads the store, and the key runs the command.
    EXPECT_EQ(store->save(standIn()), QString());
    if (!startService()) GTEST_SKIP() << "kglobalaccel5 or Xvfb is not installed, or did not start";
    EXPECT_TRUE(keyRunsToggle());
}

TEST_F(KdeStore, TheRunningServiceTakesTheKeyRunsTheCommandKeepsItAndRefusesOneTaken) {
    if (!startService()) GTEST_SKIP() << "kglobalaccel5 or Xvfb is not installed, or did not start";
    const DesktopShortcut shortcut = standIn();
    // Another program's shortcut on Ctrl+Alt+F7.
    const QStringList other{QStringLiteral("org.example.vt"), QStringLiteral("switch"), QStringLiteral("VT"),
                            QStringLiteral("Switch")};
    callService(QStringLiteral("doRegister"), {other});
    callService(
        QStringLiteral("setShortcut"),
        {other, QVariant::fromValue(QList<int>{QKeySequence(QStringLiteral("Ctrl+Alt+F7"))[0].toCombined()}),
         uint(6)});

    EXPECT_EQ(store->save(shortcut), QString());
    const QDBusMessage held =
        callService(QStringLiteral("shortcut"), {KdeGlobalShortcut::actionId(shortcut)});
    ASSERT_FALSE(held.arguments().isEmpty()) << held.errorMessage().toStdString();
    EXPECT_EQ(qdbus_cast<QList<int>>(held.arguments().constFirst()),
              QList<int>{QKeySequence(QStringLiteral("Ctrl+Alt+Space"))[0].toCombined()});
    // The key runs the command at once, through the desktop entry.
    EXPECT_TRUE(keyRunsToggle());
    // The service writes its store itself, in the form it reads at the next login.
    EXPECT_TRUE(waitUntil(
        [&] {
            return stored(KdeGlobalShortcut::kComponent, QStringLiteral("_launch")) ==
                   QStringLiteral("Ctrl+Alt+Space,none,Mosswick: Toggle the Shelf");
        },
        10000));

    DesktopShortcut taken = shortcut;
    taken.combo = kCtrlAltF7;
    const QString failure = store->save(taken);
    EXPECT_TRUE(failure.contains(QStringLiteral("already a KDE shortcut"))) << failure.toStdString();
}

}  // namespace
