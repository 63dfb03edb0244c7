#include "PrivateSessionBus.h"

#include <QStandardPaths>

namespace mosswick::testing {

PrivateSessionBus::PrivateSessionBus() {
    const QString program = QStandardPaths::findExecutable(QStringLiteral("dbus-daemon"));
    if (program.isEmpty()) {
        problem_ = QStringLiteral("dbus-daemon is not installed");
        return;
    }
    daemon_.start(program, {QStringLiteral("--session"), QStringLiteral("--nofork"),
                            QStringLiteral("--print-address")});
    if (!daemon_.waitForStarted(5000)) {
        problem_ = QStringLiteral("dbus-daemon did not start");
        return;
    }
    while (!daemon_.canReadLine() && daemon_.waitForReadyRead(5000)) {
    }
    address_ = QString::fromUtf8(daemon_.readLine()).trimmed();
    if (address_.isEmpty()) problem_ = QStringLiteral("dbus-daemon gave no address");
}

PrivateSessionBus::~PrivateSessionBus() {
    if (daemon_.state() == QProcess::NotRunning) return;
    daemon_.terminate();
    if (!daemon_.waitForFinished(5000)) daemon_.kill();
}

}  // namespace mosswick::testing
