#pragma once

#include <functional>

namespace mosswick {

// Tells when the machine has woken from sleep, so files that went away meanwhile (an unmounted
// disk, a folder cleaned up by another machine) can be let go of.
class SleepWatch {
public:
    virtual ~SleepWatch() = default;
    // `woke` runs on the main thread once after each wake; watchWakes({}) stops.
    virtual void watchWakes(std::function<void()> woke) = 0;
};

// For sessions that cannot tell: the machine never seems to sleep.
class NoSleepWatch final : public SleepWatch {
public:
    void watchWakes(std::function<void()>) override {}
};

}  // namespace mosswick
