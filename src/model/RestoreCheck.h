#pragma once

#include <QByteArray>
#include <QUrl>
#include <QUuid>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "model/Scheduler.h"
#include "model/ShelfItem.h"

namespace mosswick {

// Looks into restored items off the main thread, a few at a time, so that a shelf restored with
// thousands of records shows at once from what they say: is the original still at its recorded
// path, else where does its bookmark find it now; is the copy there, or did one finish after the
// last save; does anything on disk stand for the item at all. Findings come back on the main
// thread through the scheduler, one handful at a time, and stop coming once the check is gone.
class RestoreCheck {
public:
    struct Finding {
        QUuid id;
        // The original was found elsewhere: where, and a bookmark of it there.
        std::optional<QUrl> movedOrigin;
        std::optional<QByteArray> movedBookmark;
        // The record names no copy (or one that is gone), but the item's folder holds a finished one.
        std::optional<QUrl> finishedCopy;
        // Neither original nor copy is on disk.
        bool lost = false;
        // The original is not at its path and its bookmark found it nowhere.
        bool originNotFound = false;
    };

    // At most this many items, or this much searching, before the findings go back.
    static constexpr size_t kMostAtOnce = 32;
    static constexpr double kLongestStretch = 0.05;

    using Deliver = std::function<void(std::vector<Finding>)>;
    RestoreCheck(Scheduler& scheduler, Deliver deliver);

    // Queues the items behind any still waiting; the first handful goes out at once.
    void check(std::vector<ShelfItem> items);
    bool isRunning() const { return running_; }

    // One item's finding; touches the file system (any thread).
    static Finding examine(const ShelfItem& item);

private:
    void next();

    Scheduler& scheduler_;
    Deliver deliver_;
    std::deque<ShelfItem> waiting_;
    bool running_ = false;
    // Lets a handful's findings, arriving from the background, tell whether the check still exists.
    std::shared_ptr<int> alive_ = std::make_shared<int>(0);
};

}  // namespace mosswick
