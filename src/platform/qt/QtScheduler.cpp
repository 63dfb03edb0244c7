#include "platform/qt/QtScheduler.h"

#include <QCoreApplication>
#include <QTimer>
#include <cmath>
#include <sys/resource.h>
#include <unistd.h>

namespace mosswick {

namespace {

// The pool's long work (a big drop's copies, looking into restored items) takes the cores the
// main thread needs for a frame: with two cores and two copies running, the main thread waited
// tens of milliseconds for its turn. Lowered, it yields to the main thread at once and still has
// every core the main thread leaves idle. Not lowered further: a niceness also yields to every
// other busy program, and at 10 a drop's copies nearly stopped on a loaded machine, leaving its
// originals uncopied for longer. On Linux a niceness set with a thread's id holds for that thread
// alone.
constexpr int kPoolNiceness = 5;

void lowerThisThread() {
    thread_local const bool lowered =
        ::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), kPoolNiceness) == 0;
    (void)lowered;
}

}  // namespace

QtScheduler::QtScheduler() {
    clock_.start();
    pool_.setMaxThreadCount(std::max(2, QThread::idealThreadCount()));
    promptPool_.setMaxThreadCount(1);
}

QtScheduler::~QtScheduler() {
    pool_.waitForDone();
    promptPool_.waitForDone();
}

ScheduledTask QtScheduler::after(double seconds, std::function<void()> task) {
    auto state = std::make_shared<ScheduledTask::State>();
    const int ms = static_cast<int>(std::lround(std::max(0.0, seconds) * 1000.0));
    QTimer::singleShot(ms, Qt::PreciseTimer, &context_, [state, task = std::move(task)] {
        if (state->cancelled) return;
        state->finished = true;
        task();
    });
    return ScheduledTask(state);
}

void QtScheduler::background(std::function<void()> work, std::function<void()> done) {
    run(
        pool_,
        [work = std::move(work)] {
            lowerThisThread();
            work();
        },
        std::move(done));
}

void QtScheduler::backgroundPromptly(std::function<void()> work, std::function<void()> done) {
    run(promptPool_, std::move(work), std::move(done));
}

void QtScheduler::run(QThreadPool& pool, std::function<void()> work, std::function<void()> done) {
    QObject* context = &context_;  // outlives every job: the destructor waits for the pools
    pool.start([work = std::move(work), done = std::move(done), context]() mutable {
        work();
        if (!done) return;
        // The context object lives on the main thread; queued onto it, `done` runs there, and is
        // dropped if the scheduler is gone by then.
        QMetaObject::invokeMethod(context, std::move(done), Qt::QueuedConnection);
    });
}

double QtScheduler::now() const { return static_cast<double>(clock_.nsecsElapsed()) / 1e9; }

void QtScheduler::waitForBackgroundWork() {
    pool_.waitForDone();
    promptPool_.waitForDone();
}

}  // namespace mosswick
