#include "triggers/UnseenDragEnd.h"

namespace mosswick {

UnseenDragEnd::UnseenDragEnd(Scheduler& scheduler, std::function<void()> onOver)
    : scheduler_(scheduler), onOver_(std::move(onOver)) {}

void UnseenDragEnd::began() {
    watching_ = true;
    arm();
}

void UnseenDragEnd::overShelf(bool over) {
    if (!watching_) return;
    // Hovering over the shelf, the user is plainly still dragging: never cut that short.
    if (over)
        timeout_.cancel();
    else
        arm();
}

void UnseenDragEnd::dropped() {
    if (watching_) over();
}

void UnseenDragEnd::forget() {
    watching_ = false;
    timeout_.cancel();
}

void UnseenDragEnd::arm() {
    timeout_ = scheduler_.after(kLifetime, [this] { over(); });
}

void UnseenDragEnd::over() {
    forget();
    onOver_();
}

}  // namespace mosswick
