#include "platform/freedesktop/DesktopShortcutPrograms.h"

#include <QProcess>
#include <QStandardPaths>

namespace mosswick {

namespace {
// The settings tools answer in milliseconds; a hung settings service must not hang the window for long.
constexpr int kTimeoutMs = 5000;
}  // namespace

ProgramRun ProgramRun::run(const QString& program, const QStringList& arguments) {
    const QString path = QStandardPaths::findExecutable(program);
    if (path.isEmpty()) return {false, {}, QStringLiteral("%1 is not installed").arg(program)};
    QProcess process;
    process.start(path, arguments);
    if (!process.waitForFinished(kTimeoutMs)) {
        process.kill();
        process.waitForFinished(1000);
        return {false, {}, QStringLiteral("%1 did not answer").arg(program)};
    }
    const QString output = QString::fromUtf8(process.readAllStandardOutput()).trimmed();
    if (process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0) return {true, output, {}};
    QString error = QString::fromUtf8(process.readAllStandardError()).trimmed();
    if (error.isEmpty()) error = QStringLiteral("%1 failed").arg(program);
    return {false, output, error};
}

}  // namespace mosswick
