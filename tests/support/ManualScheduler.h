#pragma once

#include <cstdint>
#include <deque>
#include <vector>

#include "model/Scheduler.h"

namespace mosswick::testing {

// A scheduler driven by hand: time stands still until advance() moves it, so tests of
// debounces and grace periods never sleep. Background work runs on the calling thread when time
// moves (or at drain()), before the timers that fall due.
class ManualScheduler final : public Scheduler {
public:
    ScheduledTask after(double seconds, std::function<void()> task) override;
    void background(std::function<void()> work, std::function<void()> done = {}) override;
    double now() const override { return now_; }

    // Moves time forward, running background work and every timer that falls due in order,
    // including timers those timers schedule.
    void advance(double seconds);
    // Runs queued background work and timers already due, without moving time.
    void drain() { advance(0); }

    // While held, background work waits in its queue until runBackgroundWork(), so a test can
    // act while a job is "still running". Runs the first `jobs` queued, and what they queue after
    // them only while the count lasts.
    void holdBackgroundWork(bool hold) { holdJobs_ = hold; }
    void runBackgroundWork(size_t jobs = SIZE_MAX);

    // Timers not yet run nor cancelled.
    size_t pendingTimers() const;

private:
    struct Timer {
        double due;
        unsigned long sequence;
        std::shared_ptr<ScheduledTask::State> state;
        std::function<void()> task;
    };
    struct Job {
        std::function<void()> work;
        std::function<void()> done;
    };
    void runJobs(size_t jobs = SIZE_MAX);
    bool holdJobs_ = false;

    double now_ = 0;
    unsigned long sequence_ = 0;
    std::vector<Timer> timers_;
    std::deque<Job> jobs_;
};

}  // namespace mosswick::testing
