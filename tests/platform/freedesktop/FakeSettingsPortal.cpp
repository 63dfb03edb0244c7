#include "FakeSettingsPortal.h"

#include <QDBusMessage>

namespace mosswick::testing {

const QString FakeSettingsPortal::kPath = QStringLiteral("/org/freedesktop/portal/desktop");

void FakeSettingsPortal::change(QDBusConnection& connection, const QString& group, const QString& key,
                                const QVariant& value) {
    values[group + QLatin1Char('/') + key] = value;
    QDBusMessage signal = QDBusMessage::createSignal(kPath, QStringLiteral("org.freedesktop.portal.Settings"),
                                                     QStringLiteral("SettingChanged"));
    signal << group << key << QVariant::fromValue(QDBusVariant(value));
    connection.send(signal);
}

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

}  // namespace mosswick::testing
