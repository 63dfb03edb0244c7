#include "platform/freedesktop/LogindSleepWatch.h"

namespace mosswick {

namespace {

const QString kService = QStringLiteral("org.freedesktop.login1");
const QString kPath = QStringLiteral("/org/freedesktop/login1");
const QString kInterface = QStringLiteral("org.freedesktop.login1.Manager");
const QString kSignal = QStringLiteral("PrepareForSleep");

}  // namespace

LogindSleepWatch::LogindSleepWatch(const QDBusConnection& systemBus) : bus_(systemBus) {
    if (bus_.isConnected())
        bus_.connect(kService, kPath, kInterface, kSignal, this, SLOT(prepareForSleep(bool)));
}

LogindSleepWatch::~LogindSleepWatch() {
    if (bus_.isConnected())
        bus_.disconnect(kService, kPath, kInterface, kSignal, this, SLOT(prepareForSleep(bool)));
}

void LogindSleepWatch::watchWakes(std::function<void()> woke) { woke_ = std::move(woke); }

void LogindSleepWatch::prepareForSleep(bool goingToSleep) {
    if (!goingToSleep && woke_) woke_();
}

}  // namespace mosswick
