#include "support/ManualScheduler.h"

#include <algorithm>

namespace mosswick::testing {

ScheduledTask ManualScheduler::after(double seconds, std::function<void()> task) {
    auto state = std::make_shared<ScheduledTask::State>();
    timers_.push_back({now_ + std::max(0.0, seconds), sequence_++, state, std::move(task)});
    return ScheduledTask(state);
}

void ManualScheduler::background(std::function<void()> work, std::function<void()> done) {
    jobs_.push_back({std::move(work), std::move(done)});
}

void ManualScheduler::runBackgroundWork(size_t jobs) {
    const bool held = holdJobs_;
    holdJobs_ = false;
    runJobs(jobs);
    holdJobs_ = held;
}

void ManualScheduler::runJobs(size_t jobs) {
    for (; jobs > 0 && !holdJobs_ && !jobs_.empty(); --jobs) {
        Job job = std::move(jobs_.front());
        jobs_.pop_front();
        job.work();
        if (job.done) job.done();
    }
}

void ManualScheduler::advance(double seconds) {
    const double end = now_ + std::max(0.0, seconds);
    for (;;) {
        runJobs();
        std::erase_if(timers_, [](const Timer& t) { return t.state->cancelled; });
        auto next = std::min_element(timers_.begin(), timers_.end(), [](const Timer& a, const Timer& b) {
            return a.due < b.due || (a.due == b.due && a.sequence < b.sequence);
        });
        if (next == timers_.end() || next->due > end + 1e-12) break;
        Timer timer = std::move(*next);
        timers_.erase(next);
        now_ = std::max(now_, timer.due);
        if (timer.state->cancelled) continue;
        timer.state->finished = true;
        timer.task();
    }
    now_ = end;
    runJobs();
}

size_t ManualScheduler::pendingTimers() const {
    return static_cast<size_t>(
        std::count_if(timers_.begin(), timers_.end(), [](const Timer& t) { return !t.state->cancelled; }));
}

}  // namespace mosswick::testing
