#include "platform/freedesktop/KdeGlobalShortcut.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDir>
#include <QFile>
#include <QKeySequence>
#include <QStandardPaths>

#include "model/AtomicFile.h"
#include "platform/freedesktop/DesktopShortcutPrograms.h"
#include "settings/LoginItem.h"

namespace mosswick {

namespace {

const QString kPath = QStringLiteral("/kglobalaccel");
const QString kInterface = QStringLiteral("org.kde.KGlobalAccel");
// kglobalaccel's flags: take the key now (the component is present) and use exactly these keys.
constexpr uint kSetPresent = 2;
constexpr uint kNoAutoloading = 4;

}  // namespace

KdeGlobalShortcut::KdeGlobalShortcut(const QDBusConnection& bus, const KeyboardLayout& layout,
                                     QString applications)
    : bus_(bus), layout_(layout), applications_(std::move(applications)) {}

QString KdeGlobalShortcut::defaultApplicationsFolder() {
    return QDir(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation))
        .filePath(QStringLiteral("applications"));
}

QByteArray KdeGlobalShortcut::desktopEntry(const DesktopShortcut& shortcut) {
    QString text = QStringLiteral(
        "[Desktop Entry]\n"
        "Type=Application\n"
        "Version=1.0\n"
        "Icon=mosswick\n"
        "NoDisplay=true\n");
    text += QStringLiteral("Name=%1\n").arg(shortcut.name);
    text += QStringLiteral("Exec=%1 %2\n")
                .arg(XdgAutostartEntry::execArgument(shortcut.executable), DesktopShortcuts::kToggleArgument);
    return text.toUtf8();
}

QStringList KdeGlobalShortcut::actionId(const DesktopShortcut& shortcut) {
    return {kComponent, kAction, QStringLiteral("Mosswick"), shortcut.name};
}

QString KdeGlobalShortcut::save(const DesktopShortcut& shortcut) {
    const std::optional<QKeyCombination> key = DesktopShortcuts::qtKey(shortcut.combo, layout_);
    if (!key) return QStringLiteral("KDE has no name for the key of %1").arg(shortcut.combo.displayString());

    // The service looks the entry up when it first hears of the component: it comes first.
    if (!QDir().mkpath(applications_))
        return QStringLiteral("The folder could not be created (%1)")
            .arg(QDir::toNativeSeparators(applications_));
    const std::string failure =
        AtomicFile::write(QFile::encodeName(QDir(applications_).filePath(kComponent)).toStdString(),
                          desktopEntry(shortcut), 0644);
    if (!failure.empty()) return QString::fromLocal8Bit(failure.c_str());

    const bool serviceRuns =
        bus_.isConnected() && bus_.interface() && bus_.interface()->isServiceRegistered(kService);
    if (serviceRuns) return tellService(shortcut, key->toCombined());
    return writeStore(shortcut, QKeySequence(*key).toString(QKeySequence::PortableText));
}

QString KdeGlobalShortcut::tellService(const DesktopShortcut& shortcut, int key) {
    const QStringList id = actionId(shortcut);
    QDBusMessage registration =
        QDBusMessage::createMethodCall(kService, kPath, kInterface, QStringLiteral("doRegister"));
    registration << id;
    const QDBusMessage registered = bus_.call(registration, QDBus::Block, 5000);
    if (registered.type() == QDBusMessage::ErrorMessage)
        return QStringLiteral("KDE's shortcut service refused it (%1)").arg(registered.errorMessage());

    QDBusMessage set =
        QDBusMessage::createMethodCall(kService, kPath, kInterface, QStringLiteral("setShortcut"));
    set << id << QVariant::fromValue(QList<int>{key}) << (kSetPresent | kNoAutoloading);
    const QDBusMessage answer = bus_.call(set, QDBus::Block, 5000);
    if (answer.type() == QDBusMessage::ErrorMessage || answer.arguments().isEmpty())
        return QStringLiteral("KDE's shortcut service refused it (%1)").arg(answer.errorMessage());
    // A key another shortcut holds is dropped: the service answers with the keys it really set.
    const QList<int> kept = qdbus_cast<QList<int>>(answer.arguments().constFirst());
    if (!kept.contains(key))
        return QStringLiteral("%1 is already a KDE shortcut for something else")
            .arg(shortcut.combo.displayString());
    return {};
}

QString KdeGlobalShortcut::writeStore(const DesktopShortcut& shortcut, const QString& key) {
    // The service's own format: the keys, the default keys ("none"), the action's name.
    const std::pair<QString, QString> entries[] = {
        {QStringLiteral("_k_friendly_name"), QStringLiteral("Mosswick")},
        {kAction, QStringLiteral("%1,none,%2").arg(key, shortcut.name)},
    };
    for (const auto& [name, value] : entries) {
        const ProgramRun written =
            ProgramRun::run(QStringLiteral("kwriteconfig5"),
                            {QStringLiteral("--file"), QStringLiteral("kglobalshortcutsrc"),
                             QStringLiteral("--group"), kComponent, QStringLiteral("--key"), name, value});
        if (!written.ok) return written.failure;
    }
    return {};
}

}  // namespace mosswick
