#include "model/RestoreCheck.h"

#include <chrono>
#include <filesystem>

#include "model/FileBookmark.h"
#include "model/ItemStaging.h"
#include "model/LocalPath.h"

namespace mosswick {

namespace {

bool somethingAt(const std::optional<QUrl>& url) {
    const auto path = url ? LocalPath::fromUrl(*url) : std::nullopt;
    return path && LocalPath::exists(*path);
}

std::optional<QUrl> urlOf(const std::filesystem::path& path) {
    std::error_code ignored;
    return LocalPath::toUrl(path, std::filesystem::is_directory(path, ignored));
}

}  // namespace

RestoreCheck::RestoreCheck(Scheduler& scheduler, Deliver deliver)
    : scheduler_(scheduler), deliver_(std::move(deliver)) {}

RestoreCheck::Finding RestoreCheck::examine(const ShelfItem& item) {
    Finding finding;
    finding.id = item.id;
    bool hasOriginal = somethingAt(item.originURL);
    if (!hasOriginal && item.originBookmark) {
        if (const auto found = FileBookmark::resolve(*item.originBookmark);
            found && LocalPath::exists(*found)) {
            finding.movedOrigin = urlOf(*found);
            finding.movedBookmark = FileBookmark::create(*found);
            hasOriginal = true;
        }
    }
    finding.originNotFound = !hasOriginal && (item.originURL || item.originBookmark);
    bool hasCopy = somethingAt(item.stagedURL);
    if (!hasCopy && !item.isPromised) {
        // A copy that finished after the last save, just before the shelf was stopped.
        if (const auto copy = ItemStaging::finishedCopy(item.id)) {
            finding.finishedCopy = urlOf(*copy);
            hasCopy = true;
        }
    }
    finding.lost = !hasOriginal && !hasCopy;
    return finding;
}

void RestoreCheck::check(std::vector<ShelfItem> items) {
    waiting_.insert(waiting_.end(), std::make_move_iterator(items.begin()),
                    std::make_move_iterator(items.end()));
    if (!running_) next();
}

void RestoreCheck::next() {
    running_ = !waiting_.empty();
    if (!running_) return;
    struct Handful {
        std::vector<ShelfItem> items;
        std::vector<Finding> findings;
    };
    auto handful = std::make_shared<Handful>();
    while (!waiting_.empty() && handful->items.size() < kMostAtOnce) {
        handful->items.push_back(std::move(waiting_.front()));
        waiting_.pop_front();
    }
    scheduler_.background(
        [handful] {
            // Searching a bookmark can take long (a big folder, a slow disk): whatever is left of
            // the handful goes back to the queue rather than holding the findings back.
            const auto start = std::chrono::steady_clock::now();
            for (const ShelfItem& item : handful->items) {
                handful->findings.push_back(examine(item));
                if (std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() >
                    kLongestStretch)
                    break;
            }
        },
        [this, handful, alive = std::weak_ptr<int>(alive_)] {
            if (alive.expired()) return;
            for (size_t i = handful->items.size(); i-- > handful->findings.size();)
                waiting_.push_front(std::move(handful->items[i]));
            deliver_(std::move(handful->findings));
            next();
        });
}

}  // namespace mosswick
