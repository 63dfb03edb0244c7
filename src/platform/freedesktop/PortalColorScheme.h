#pragma once

#include <QDBusConnection>
#include <QObject>

#include "interaction/DesktopColorScheme.h"

class QDBusMessage;

namespace mosswick {

// The desktop's colour scheme through the settings portal (org.freedesktop.appearance
// color-scheme), asked once and then followed as it changes. Until the portal answers, or where
// none runs, it states no preference, so start-up never waits on the bus.
class PortalColorScheme final : public QObject, public DesktopColorScheme {
    Q_OBJECT

public:
    explicit PortalColorScheme(const QDBusConnection& bus);
    ~PortalColorScheme() override;

    Scheme scheme() const override { return scheme_; }
    void watch(std::function<void()> changed) override { changed_ = std::move(changed); }

private slots:
    void settingChanged(const QDBusMessage& message);

private:
    void ask(const QString& method);
    void take(const QVariant& value);

    QDBusConnection bus_;
    Scheme scheme_ = Scheme::noPreference;
    std::function<void()> changed_;
};

}  // namespace mosswick
