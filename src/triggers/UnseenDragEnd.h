#pragma once

#include <functional>

#include "model/Scheduler.h"

namespace mosswick {

// Decides when a drag whose end cannot be seen is over. What is left to go by is what the shelf
// itself sees: a drop on it ends the drag at once; while the drag hovers over it, the drag goes
// on; and a drag that is not over the shelf is taken as over once it has lasted `kLifetime`
// seconds since it began or last left the shelf. Long enough for an unhurried drag across the
// screen, short enough that a drag cancelled elsewhere does not leave the shelf up for long.
// (A new drag starting also ends the last one; the drag monitor sees that itself.)
class UnseenDragEnd {
public:
    static constexpr double kLifetime = 8;

    UnseenDragEnd(Scheduler& scheduler, std::function<void()> onOver);

    // A drag began: from now on it can time out.
    void began();
    // The drag came over the shelf (true) or left it (false).
    void overShelf(bool over);
    // It dropped on the shelf: over now.
    void dropped();
    // Ended by other means: nothing more is reported.
    void forget();

    bool isWatching() const { return watching_; }

private:
    void arm();
    void over();

    Scheduler& scheduler_;
    std::function<void()> onOver_;
    ScheduledTask timeout_;
    bool watching_ = false;
};

}  // namespace mosswick
