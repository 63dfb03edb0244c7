#include "model/Scheduler.h"

#include <QtGlobal>

namespace mosswick {

ScheduledTask::ScheduledTask(std::shared_ptr<State> state) : state_(std::move(state)) {}

ScheduledTask::~ScheduledTask() { cancel(); }

ScheduledTask::ScheduledTask(ScheduledTask&& other) noexcept : state_(std::move(other.state_)) {}

ScheduledTask& ScheduledTask::operator=(ScheduledTask&& other) noexcept {
    if (this != &other) {
        cancel();
        state_ = std::move(other.state_);
    }
    return *this;
}

void ScheduledTask::cancel() {
    if (state_) state_->cancelled = true;
    state_.reset();
}

bool ScheduledTask::isPending() const { return state_ && !state_->cancelled && !state_->finished; }

namespace {
Scheduler* installed = nullptr;
}

Scheduler& Scheduler::shared() {
    if (!installed) qFatal("Mosswick: the scheduler is used before start-up installed one");
    return *installed;
}

void Scheduler::setShared(Scheduler* scheduler) { installed = scheduler; }

}  // namespace mosswick
