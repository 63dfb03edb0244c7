#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QStringList>

#include "settings/LoginItem.h"

class QDBusMessage;

namespace mosswick {

class DefaultsStore;

// Start at login from inside a Flatpak sandbox, which cannot write the host's autostart folder:
// the desktop's Background portal writes the entry once the user allows it. The portal cannot be
// asked what it did before, so its last answer is kept under "launchAtLogin". Its answer comes
// later: setEnabled() only asks, and onChange follows; a refusal by the user reads as needing
// their approval.
class BackgroundPortalLoginItem final : public QObject, public LoginItem {
    Q_OBJECT

public:
    static inline const QString kStoredKey = QStringLiteral("launchAtLogin");

    // `commandLine` is the program as the sandbox starts it.
    BackgroundPortalLoginItem(QDBusConnection bus, DefaultsStore& store, QStringList commandLine);

    // Whether this process runs inside a Flatpak sandbox.
    static bool isSandboxed();

    bool isEnabled() const override;
    bool needsApproval() const override { return refused_; }
    QString setEnabled(bool enabled) override;

private slots:
    void requestAnswered(const QDBusMessage& message);

private:
    QDBusConnection bus_;
    DefaultsStore& store_;
    const QStringList commandLine_;
    QString pendingRequest_;
    bool wanted_ = false;
    bool refused_ = false;
    quint64 lastToken_ = 0;
};

}  // namespace mosswick
