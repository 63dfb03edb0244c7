#pragma once

// What the user feels of the main thread: not the sum of its work but its longest single
// stretches without a return to the event loop. MeteredApplication times every event it delivers
// at the outermost level (timers, posted results of background work, paints, input), which is
// each stretch the loop could not answer anything else; a StallMeter collects them while it runs.
#include <QApplication>
#include <algorithm>
#include <chrono>
#include <vector>

namespace mosswick::bench {

class StallMeter {
public:
    StallMeter() { active() = this; }
    ~StallMeter() { active() = nullptr; }

    // A stretch measured outside the event loop (work a benchmark calls directly).
    void add(double seconds) { stalls_.push_back(seconds); }

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

private:
    std::vector<double> stalls_;
};

class MeteredApplication : public QApplication {
public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override {
        if (depth_++ > 0 || !StallMeter::active()) {
            const bool taken = QApplication::notify(receiver, event);
            --depth_;
            return taken;
        }
        const auto start = std::chrono::steady_clock::now();
        const bool taken = QApplication::notify(receiver, event);
        --depth_;
        if (StallMeter* meter = StallMeter::active())
            meter->add(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
        return taken;
    }

private:
    int depth_ = 0;
};

}  // namespace mosswick::bench
