#pragma once

#include <QObject>
#include <QThreadPool>
#include <functional>

namespace mosswick {

// Threads for long work the user is not waiting on (decoding photos, running thumbnailers), at a
// lower priority than the rest of the process: on a machine with few cores the main thread still
// gets its turn at once, so the shelf never stutters while previews are made.
class LowPriorityPool final : public QObject {
public:
    explicit LowPriorityPool(int threads);
    // Waits for the work that is running; `done` callbacks still queued are dropped.
    ~LowPriorityPool() override;

    // Runs `work` on one of the pool's threads, then `done` on the thread that owns the pool.
    void run(std::function<void()> work, std::function<void()> done);

private:
    QThreadPool pool_;
};

}  // namespace mosswick
