#pragma once

#include <functional>
#include <memory>

namespace mosswick {

// A handle to work scheduled with Scheduler::after. Dropping the handle cancels the work, so an
// owner that goes away never has its delayed callbacks run against it. Move-only.
class ScheduledTask {
public:
    struct State {
        bool cancelled = false;
        bool finished = false;
    };

    ScheduledTask() = default;
    explicit ScheduledTask(std::shared_ptr<State> state);
    ~ScheduledTask();
    ScheduledTask(ScheduledTask&& other) noexcept;
    ScheduledTask& operator=(ScheduledTask&& other) noexcept;
    ScheduledTask(const ScheduledTask&) = delete;
    ScheduledTask& operator=(const ScheduledTask&) = delete;

    void cancel();
    // True while the work is still waiting to run.
    bool isPending() const;

private:
    std::shared_ptr<State> state_;
};

// Every delay, debounce, grace period and background job goes through one scheduler, so the
// logic can be driven by a manual clock in tests and by Qt's event loop in the application.
// Tasks given to after() and the `done` of background() run on the main thread.
class Scheduler {
public:
    virtual ~Scheduler() = default;

    [[nodiscard]] virtual ScheduledTask after(double seconds, std::function<void()> task) = 0;

    // Runs `work` off the main thread, then `done` (if any) on the main thread.
    virtual void background(std::function<void()> work, std::function<void()> done = {}) = 0;
    // As background(), for short work whose delay matters (saving the shelf): it never waits in
    // line behind the long jobs background() may have queued (a big drop's thousands of copies).
    virtual void backgroundPromptly(std::function<void()> work, std::function<void()> done = {}) {
        background(std::move(work), std::move(done));
    }

    // Seconds on a monotonic clock; only differences mean anything.
    virtual double now() const = 0;

    // The process-wide scheduler, installed at start-up (the application installs a Qt-timer one).
    static Scheduler& shared();
    static void setShared(Scheduler* scheduler);
};

}  // namespace mosswick
