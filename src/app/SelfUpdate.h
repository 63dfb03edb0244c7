#pragma once

#include <memory>

namespace mosswick {

class Preferences;
class Scheduler;

// The updater of a self-installed copy, with its backends. Made only when this build has an
// update feed and key (BuildSettings: MOSSWICK_UPDATE_FEED, MOSSWICK_UPDATE_PUBLIC_KEY) and runs from a copy
// installed from its archive; a distribution's package is updated by its package manager.
// While it lives, Updater::current() is its updater, following checkForUpdatesAutomatically.
class SelfUpdate {
public:
    static std::unique_ptr<SelfUpdate> forThisCopy(Scheduler& scheduler, Preferences& preferences);
    ~SelfUpdate();

private:
    struct Parts;
    explicit SelfUpdate(std::unique_ptr<Parts> parts);
    std::unique_ptr<Parts> parts_;
};

}  // namespace mosswick
