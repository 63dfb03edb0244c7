#include "platform/qt/UnixSignalQuit.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <csignal>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace mosswick {

namespace {
int signalPipe[2] = {-1, -1};

void onSignal(int) {
    const char byte = 1;
    [[maybe_unused]] const auto written = ::write(signalPipe[0], &byte, 1);
}
}  // namespace

UnixSignalQuit::UnixSignalQuit(QObject* parent) : QObject(parent) {
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, signalPipe) != 0) return;
    notifier_ = std::make_unique<QSocketNotifier>(signalPipe[1], QSocketNotifier::Read);
    connect(notifier_.get(), &QSocketNotifier::activated, this, [] {
        char byte;
        [[maybe_unused]] const auto read = ::read(signalPipe[1], &byte, 1);
        QCoreApplication::quit();
    });
    struct sigaction action {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGTERM, &action, nullptr);
    ::sigaction(SIGINT, &action, nullptr);
    // The session's end hangs up on the programs it started.
    ::sigaction(SIGHUP, &action, nullptr);
}

UnixSignalQuit::~UnixSignalQuit() {
    ::signal(SIGTERM, SIG_DFL);
    ::signal(SIGINT, SIG_DFL);
    ::signal(SIGHUP, SIG_DFL);
}

}  // namespace mosswick
