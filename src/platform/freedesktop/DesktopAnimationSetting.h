#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <QVariant>
#include <optional>

#include "shelf/DesktopMotionSetting.h"

class QDBusMessage;

namespace mosswick {

// The desktop's "fewer animations" switch: GNOME's enable-animations and KDE's animation speed
// set to instant, read through the settings portal and followed as they change. KDE's own
// kdeglobals file answers where no portal runs. Until the portal answers, the file's word (or
// "animations on") stands, so start-up never waits on the bus.
class DesktopAnimationSetting final : public QObject, public DesktopMotionSetting {
    Q_OBJECT

public:
    // `kdeGlobals` is the path of KDE's kdeglobals file (empty: none).
    DesktopAnimationSetting(const QDBusConnection& bus, const QString& kdeGlobals);
    ~DesktopAnimationSetting() override;

    // kdeglobals in the user's configuration folder.
    static QString defaultKdeGlobals();

    bool reducesMotion() const override;

private slots:
    void settingChanged(const QDBusMessage& message);

private:
    void ask(const QString& group, const QString& key);
    void take(const QString& group, const QString& key, const QVariant& value);

    QDBusConnection bus_;
    std::optional<bool> gnomeAnimationsEnabled_;
    std::optional<double> kdeAnimationFactor_;
};

}  // namespace mosswick
