#pragma once

#include <QProcess>
#include <QString>

namespace mosswick::testing {

// A D-Bus session bus of the test's own, so nothing reaches the user's desktop. isRunning() is
// false when dbus-daemon is missing or did not come up.
class PrivateSessionBus {
public:
    PrivateSessionBus();
    ~PrivateSessionBus();

    bool isRunning() const { return !address_.isEmpty(); }
    const QString& problem() const { return problem_; }
    const QString& address() const { return address_; }

private:
    QProcess daemon_;
    QString address_;
    QString problem_;
};

}  // namespace mosswick::testing
