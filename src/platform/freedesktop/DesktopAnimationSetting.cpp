#include "platform/freedesktop/DesktopAnimationSetting.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QSettings>
#include <QStandardPaths>

#include "platform/freedesktop/DesktopPortal.h"

namespace mosswick {

namespace {

const QString kGnomeGroup = QStringLiteral("org.gnome.desktop.interface");
const QString kGnomeKey = QStringLiteral("enable-animations");
const QString kKdeGroup = QStringLiteral("org.kde.kdeglobals.KDE");
const QString kKdeKey = QStringLiteral("AnimationDurationFactor");

}  // namespace

DesktopAnimationSetting::DesktopAnimationSetting(const QDBusConnection& bus, const QString& kdeGlobals)
    : bus_(bus) {
    if (!kdeGlobals.isEmpty()) {
        const QSettings file(kdeGlobals, QSettings::IniFormat);
        bool ok = false;
        const double factor = file.value(QStringLiteral("KDE/AnimationDurationFactor")).toDouble(&ok);
        if (ok) kdeAnimationFactor_ = factor;
    }
    if (!bus_.isConnected()) return;
    bus_.connect(DesktopPortal::kService, DesktopPortal::kPath, DesktopPortal::kSettingsInterface,
                 QStringLiteral("SettingChanged"), this, SLOT(settingChanged(QDBusMessage)));
    ask(kGnomeGroup, kGnomeKey);
    ask(kKdeGroup, kKdeKey);
}

DesktopAnimationSetting::~DesktopAnimationSetting() = default;

QString DesktopAnimationSetting::defaultKdeGlobals() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/kdeglobals");
}

bool DesktopAnimationSetting::reducesMotion() const {
    if (gnomeAnimationsEnabled_ == false) return true;
    return kdeAnimationFactor_ && *kdeAnimationFactor_ <= 0;
}

void DesktopAnimationSetting::ask(const QString& group, const QString& key) {
    QDBusMessage call =
        QDBusMessage::createMethodCall(DesktopPortal::kService, DesktopPortal::kPath,
                                       DesktopPortal::kSettingsInterface, QStringLiteral("Read"));
    call << group << key;
    auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(call, 2000), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, group, key] {
        watcher->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *watcher;
        // No portal, or a desktop without this setting: the other sources stand.
        if (reply.isValid()) take(group, key, reply.value().variant());
    });
}

void DesktopAnimationSetting::settingChanged(const QDBusMessage& message) {
    const QVariantList arguments = message.arguments();
    if (arguments.size() != 3) return;
    take(arguments[0].toString(), arguments[1].toString(), arguments[2]);
}

void DesktopAnimationSetting::take(const QString& group, const QString& key, const QVariant& value) {
    const QVariant plain = DesktopPortal::plainSettingValue(value);
    if (group == kGnomeGroup && key == kGnomeKey && plain.typeId() == QMetaType::Bool) {
        gnomeAnimationsEnabled_ = plain.toBool();
    } else if (group == kKdeGroup && key == kKdeKey) {
        bool ok = false;
        const double factor = plain.toDouble(&ok);
        if (ok) kdeAnimationFactor_ = factor;
    }
}

}  // namespace mosswick
