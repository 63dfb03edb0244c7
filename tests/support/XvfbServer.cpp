#include "XvfbServer.h"

#include <QProcess>
#include <QProcessEnvironment>
#include <QStandardPaths>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace mosswick::testing {

XvfbServer::XvfbServer() {
    const QString xvfb = QStandardPaths::findExecutable(QStringLiteral("Xvfb"));
    if (xvfb.isEmpty()) {
        problem_ = QStringLiteral("Xvfb is not installed");
        return;
    }
    int pipeFds[2];
    if (pipe(pipeFds) != 0) {
        problem_ = QStringLiteral("no pipe for -displayfd");
        return;
    }
    const QByteArray program = xvfb.toLocal8Bit();
    const QByteArray fd = QByteArray::number(pipeFds[1]);
    const char* argv[] = {program.constData(), "-displayfd", fd.constData(), "-screen",  "0",
                          "1280x800x24",       "-nolisten",  "tcp",          "-noreset", nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addclose(&actions, pipeFds[0]);
    // Its chatter about fonts and keymaps is not the test's business.
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t pid = -1;
    const int spawned =
        posix_spawn(&pid, program.constData(), &actions, nullptr, const_cast<char**>(argv), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(pipeFds[1]);
    if (spawned != 0) {
        close(pipeFds[0]);
        problem_ = QStringLiteral("Xvfb did not start");
        return;
    }
    pid_ = pid;
    QByteArray number;
    pollfd readable{pipeFds[0], POLLIN, 0};
    while (!number.endsWith('\n') && poll(&readable, 1, 10000) > 0) {
        char buffer[16];
        const ssize_t got = read(pipeFds[0], buffer, sizeof buffer);
        if (got <= 0) break;
        number.append(buffer, got);
    }
    close(pipeFds[0]);
    if (!number.endsWith('\n')) {
        problem_ = QStringLiteral("Xvfb did not report its display");
        stop();
        return;
    }
    displayName_ = ":" + number.trimmed();
}

XvfbServer::~XvfbServer() { stop(); }

void XvfbServer::stop() {
    if (pid_ <= 0) return;
    kill(pid_, SIGTERM);
    waitpid(pid_, nullptr, 0);
    pid_ = -1;
}

bool XvfbServer::xdotool(const QStringList& arguments) const {
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DISPLAY"), QString::fromLatin1(displayName_));
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral("xdotool"), arguments);
    return process.waitForFinished(10000) && process.exitStatus() == QProcess::NormalExit &&
           process.exitCode() == 0;
}

}  // namespace mosswick::testing
