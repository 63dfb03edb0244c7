#pragma once

#include <QDBusConnection>
#include <QObject>

#include "triggers/SleepWatch.h"

namespace mosswick {

// Wake from sleep as logind announces it on the system bus: PrepareForSleep(false) comes once the
// machine runs again. Without a system bus (containers, some test hosts) it stays silent.
class LogindSleepWatch final : public QObject, public SleepWatch {
    Q_OBJECT

public:
    explicit LogindSleepWatch(const QDBusConnection& systemBus);
    ~LogindSleepWatch() override;

    void watchWakes(std::function<void()> woke) override;

private slots:
    void prepareForSleep(bool goingToSleep);

private:
    QDBusConnection bus_;
    std::function<void()> woke_;
};

}  // namespace mosswick
