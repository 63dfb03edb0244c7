#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusVariant>
#include <QMap>
#include <QObject>
#include <memory>
#include <optional>

#include "support/PrivateSessionBus.h"

namespace mosswick::testing {

// The settings portal as GNOME's and KDE's desktops run it: Read answers a variant in a variant,
// ReadOne (from version 2 on) the value itself.
class FakeSettingsPortal final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    QMap<QString, QVariant> values;  // by "namespace/key"
    bool answersReadOne = true;      // false: a portal older than ReadOne

public slots:
    QDBusVariant Read(const QString& group, const QString& key);
    QDBusVariant ReadOne(const QString& group, const QString& key);

private:
    std::optional<QVariant> find(const QString& group, const QString& key);
};

// A private bus with the fake portal serving on it, and a client's connection to reach it by.
class SettingsPortalBus {
public:
    SettingsPortalBus();
    ~SettingsPortalBus();

    // Empty when the bus and the portal are up.
    QString problem() const;
    QDBusConnection& client() { return *client_; }
    // Sets a value and announces it with SettingChanged.
    void change(const QString& group, const QString& key, const QVariant& value);
    void removePortal();

    FakeSettingsPortal portal;

private:
    PrivateSessionBus bus_;
    std::unique_ptr<QDBusConnection> portalSide_;
    std::unique_ptr<QDBusConnection> client_;
    bool served_ = false;
};

}  // namespace mosswick::testing
