#pragma once

#include <QObject>
#include <QThreadPool>
#include <QElapsedTimer>

#include "model/Scheduler.h"

namespace mosswick {

// The application's scheduler: single-shot Qt timers on the main thread and a thread pool for
// background work, below the main thread's priority (and a thread of its own, at the normal
// priority, for prompt work). Background jobs still running at destruction are
// waited for, so a pending save is never cut off at quit.
class QtScheduler final : public Scheduler {
public:
    QtScheduler();
    ~QtScheduler() override;

    ScheduledTask after(double seconds, std::function<void()> task) override;
    void background(std::function<void()> work, std::function<void()> done = {}) override;
    void backgroundPromptly(std::function<void()> work, std::function<void()> done = {}) override;
    double now() const override;

    void waitForBackgroundWork();

private:
    void run(QThreadPool& pool, std::function<void()> work, std::function<void()> done);

    QObject context_;
    QThreadPool pool_;
    // One thread of its own for prompt work, so it never queues behind the pool's.
    QThreadPool promptPool_;
    QElapsedTimer clock_;
};

}  // namespace mosswick
