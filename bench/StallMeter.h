#pragma once

// What the user feels of the main thread: not the sum of its work but its longest single
// stretches without a return to the event loop. MeteredApplication times every event it delivers
// at the outermost level (timers, posted results of background work, paints, input), which is
// each stretch the loop could not answer anything else; a StallMeter collects them while it runs,
// on the wall clock (which other threads and programs competing for the cores stretch) and in the
// main thread's own processor time (the work that is ours).
#include <QCoreApplication>
#include <algorithm>
#include <chrono>
#include <ctime>
#include <vector>
#ifdef QT_WIDGETS_LIB
#include <QApplication>
#endif

namespace mosswick::bench {

class StallMeter {
public:
    StallMeter() { active() = this; }
    ~StallMeter() { active() = nullptr; }

    // A stretch measured outside the event loop (work a benchmark calls directly).
    void add(double seconds, double workSeconds = 0) {
        stalls_.push_back(seconds);
        longestWork_ = std::max(longestWork_, workSeconds);
    }

    // The main thread's processor time in its longest stretch of work.
    double longestWork() const { return longestWork_; }
    double longest() const { return stalls_.empty() ? 0 : *std::max_element(stalls_.begin(), stalls_.end()); }
    double percentile(double fraction) const {
        if (stalls_.empty()) return 0;
        std::vector<double> sorted = stalls_;
        std::sort(sorted.begin(), sorted.end());
        const auto index = static_cast<size_t>(fraction * static_cast<double>(sorted.size() - 1) + 0.5);
        return sorted[std::min(index, sorted.size() - 1)];
    }
    size_t count() const { return stalls_.size(); }

    static StallMeter*& active() {
        static StallMeter* meter = nullptr;
        return meter;
    }

    static double threadSeconds() {
        timespec now{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
        return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
    }

private:
    std::vector<double> stalls_;
    double longestWork_ = 0;
};

template <typename Application>
class MeteredApplicationOf : public Application {
public:
    using Application::Application;

    bool notify(QObject* receiver, QEvent* event) override {
        if (depth_++ > 0 || !StallMeter::active()) {
            const bool taken = Application::notify(receiver, event);
            --depth_;
            return taken;
        }
        const auto start = std::chrono::steady_clock::now();
        const double work = StallMeter::threadSeconds();
        const bool taken = Application::notify(receiver, event);
        --depth_;
        if (StallMeter* meter = StallMeter::active())
            meter->add(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(),
                       StallMeter::threadSeconds() - work);
        return taken;
    }

private:
    int depth_ = 0;
};

using MeteredCoreApplication = MeteredApplicationOf<QCoreApplication>;
#ifdef QT_WIDGETS_LIB
using MeteredApplication = MeteredApplicationOf<QApplication>;
#endif

}  // namespace mosswick::bench
