#include "platform/qt/LowPriorityPool.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>

namespace mosswick {

namespace {

// On Linux a niceness set with a thread's id holds for that thread alone.
constexpr int kNiceness = 10;

void lowerThisThread() {
    thread_local const bool lowered =
        ::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), kNiceness) == 0;
    (void)lowered;
}

}  // namespace

LowPriorityPool::LowPriorityPool(int threads) { pool_.setMaxThreadCount(std::max(1, threads)); }

LowPriorityPool::~LowPriorityPool() { pool_.waitForDone(); }

void LowPriorityPool::run(std::function<void()> work, std::function<void()> done) {
    pool_.start([work = std::move(work), done = std::move(done), context = this]() mutable {
        lowerThisThread();
        work();
        if (done) QMetaObject::invokeMethod(context, std::move(done), Qt::QueuedConnection);
    });
}

}  // namespace mosswick
