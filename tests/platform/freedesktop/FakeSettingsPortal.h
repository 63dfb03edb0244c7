#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusVariant>
#include <QMap>
#include <QObject>
#include <optional>

namespace mosswick::testing {

// The settings portal as GNOME's and KDE's desktops run it: Read answers a variant in a variant,
// ReadOne (from version 2 on) the value itself; SettingChanged is sent on demand.
class FakeSettingsPortal final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    static const QString kPath;

    QMap<QString, QVariant> values;  // by "namespace/key"
    bool answersReadOne = true;      // false: a portal older than ReadOne

    void change(QDBusConnection& connection, const QString& group, const QString& key, const QVariant& value);

public slots:
    QDBusVariant Read(const QString& group, const QString& key);
    QDBusVariant ReadOne(const QString& group, const QString& key);

private:
    std::optional<QVariant> find(const QString& group, const QString& key);
};

}  // namespace mosswick::testing
