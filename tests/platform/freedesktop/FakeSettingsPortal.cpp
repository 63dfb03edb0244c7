#include "FakeSettingsPortal.h"

#include <QDBusMessage>

namespace mosswick::testing {

namespace {

const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kPortalSide = QStringLiteral("fake-settings-portal");
const QString kClient = QStringLiteral("settings-client");

}  // namespace

std::optional<QVariant> FakeSettingsPortal::find(const QString& group, const QString& key) {
    const auto found = values.find(group + QLatin1Char('/') + key);
    if (found != values.end()) return *found;
    sendErrorReply(QStringLiteral("org.freedesktop.portal.Error.NotFound"), QStringLiteral("no such key"));
    return std::nullopt;
}

QDBusVariant FakeSettingsPortal::Read(const QString& group, const QString& key) {
    const std::optional<QVariant> value = find(group, key);
    return value ? QDBusVariant(QVariant::fromValue(QDBusVariant(*value))) : QDBusVariant();
}

QDBusVariant FakeSettingsPortal::ReadOne(const QString& group, const QString& key) {
    if (!answersReadOne) {
        sendErrorReply(QDBusError::UnknownMethod, QStringLiteral("no ReadOne here"));
        return {};
    }
    const std::optional<QVariant> value = find(group, key);
    return value ? QDBusVariant(*value) : QDBusVariant();
}

SettingsPortalBus::SettingsPortalBus() {
    if (!bus_.isRunning()) return;
    portalSide_ =
        std::make_unique<QDBusConnection>(QDBusConnection::connectToBus(bus_.address(), kPortalSide));
    client_ = std::make_unique<QDBusConnection>(QDBusConnection::connectToBus(bus_.address(), kClient));
    served_ = portalSide_->registerService(QStringLiteral("org.freedesktop.portal.Desktop")) &&
              portalSide_->registerObject(kPath, &portal, QDBusConnection::ExportAllSlots);
}

SettingsPortalBus::~SettingsPortalBus() {
    client_.reset();
    portalSide_.reset();
    QDBusConnection::disconnectFromBus(kClient);
    QDBusConnection::disconnectFromBus(kPortalSide);
}

QString SettingsPortalBus::problem() const {
    if (!bus_.isRunning()) return bus_.problem();
    return served_ ? QString() : QStringLiteral("the fake portal could not be served");
}

void SettingsPortalBus::change(const QString& group, const QString& key, const QVariant& value) {
    portal.values[group + QLatin1Char('/') + key] = value;
    QDBusMessage signal = QDBusMessage::createSignal(kPath, QStringLiteral("org.freedesktop.portal.Settings"),
                                                     QStringLiteral("SettingChanged"));
    signal << group << key << QVariant::fromValue(QDBusVariant(value));
    portalSide_->send(signal);
}

void SettingsPortalBus::removePortal() { portalSide_->unregisterObject(kPath); }

}  // namespace mosswick::testing
