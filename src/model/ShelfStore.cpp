#include "model/ShelfStore.h"

#include <QHash>
#include <algorithm>
#include <map>
#include <mutex>
#include <sys/stat.h>

#include "model/AppFiles.h"
#include "model/AtomicFile.h"
#include "model/ItemStaging.h"
#include "model/Logging.h"
#include "model/Preferences.h"
#include "model/ThumbnailCache.h"

namespace mosswick {

namespace {
ShelfStore* installed = nullptr;

bool contains(const std::set<QUuid>& ids, const QUuid& id) { return ids.find(id) != ids.end(); }
}  // namespace

ShelfStore::ShelfStore(Preferences& preferences, Scheduler& scheduler, std::filesystem::path saveFile,
                       QObject* parent)
    : QObject(parent),
      preferences_(preferences),
      scheduler_(scheduler),
      saveFile_(std::make_shared<ShelfSaveFile>(std::move(saveFile))) {
    restore();
}

ShelfStore::~ShelfStore() {
    if (installed == this) installed = nullptr;
}

ShelfStore& ShelfStore::shared() {
    if (!installed) {
        static ShelfStore store(Preferences::shared(), Scheduler::shared(), AppFiles::saveFile());
        installed = &store;
    }
    return *installed;
}

void ShelfStore::setShared(ShelfStore* store) { installed = store; }

void ShelfStore::setSelection(std::set<QUuid> selection) {
    if (selection == selection_) return;
    selection_ = std::move(selection);
    emit selectionChanged();
}

void ShelfStore::setTargeted(bool targeted) {
    if (targeted == isTargeted_) return;
    isTargeted_ = targeted;
    emit targetedChanged();
}

// What the save file and the staging folder held at start, gathered off the main thread.
struct ShelfStore::SavedShelf {
    ShelfSaveFile::Contents::State state = ShelfSaveFile::Contents::State::missing;
    // The records, split at the item limit: the rest waits in the removal history.
    std::vector<ShelfItem> shown;
    Batch overflow;
    // A copy of every record, for the check of what the disk says of them.
    std::vector<ShelfItem> toCheck;
    std::set<QUuid> keeping;
    // The staging folder's entries, listed before the records are taken: folders that drops make
    // later are never on the list, so pruning against it cannot take their copies.
    std::vector<std::string> listed;
    std::optional<qint64> recoverSince;
    // A damaged save file: where it was set aside, and the items rebuilt from the staging folder.
    std::optional<std::filesystem::path> setAside;
    std::vector<ShelfItem> recovered;
};

// Whoever reads the saved shelf first, the background or a flush() that cannot wait for it, takes
// it; the other finds it taken (or its result waiting) and does not read it again.
struct ShelfStore::PendingRead {
    std::mutex mutex;
    bool claimed = false;
    std::optional<SavedShelf> result;
};

ShelfStore::SavedShelf ShelfStore::readSavedShelf(const ShelfSaveFile& file, bool restoreItems,
                                                  qint64 limit) {
    SavedShelf saved;
    saved.listed = ItemStaging::entries();
    if (!restoreItems) return saved;
    // Copies that finished after the last save (or with no save yet) were on the shelf when it was
    // stopped without a chance to save them: they come back rather than being pruned.
    struct stat info {};
    saved.recoverSince = ::stat(file.path().c_str(), &info) == 0
                             ? info.st_mtim.tv_sec - static_cast<qint64>(kUnsavedCopyMargin)
                             : 0;
    ShelfSaveFile::Contents contents = file.read();
    saved.state = contents.state;
    if (contents.state == ShelfSaveFile::Contents::State::damaged) {
        // The save file is the only list of what the staging area holds: pruning against a file
        // that could not be read would delete every copy. Keep them all, and make the shelf from them.
        saved.setAside = file.setAside();
        saved.recovered = ItemStaging::recoverItems();
        return saved;
    }
    // A shelf saved by an older version or edited by hand may hold far more than the limit: the
    // rest waits in the removal history, copies kept, instead of freezing the first drop.
    for (ShelfItem& item : contents.items) {
        if (!ItemStaging::holdsItsOwnCopy(item)) {
            qCWarning(lcStore) << "Dropped a saved record whose copy lies outside its own folder:"
                               << item.id.toString(QUuid::WithoutBraces);
            continue;
        }
        // Searching for a moved original takes a millisecond or more each: never on the main thread.
        if (item.originBookmark) item.originSearch = ShelfItem::OriginSearch::sought;
        saved.keeping.insert(item.id);
        saved.toCheck.push_back(item);
        if (limit >= 1 && static_cast<qint64>(saved.shown.size()) >= limit)
            saved.overflow.push_back(std::move(item));
        else
            saved.shown.push_back(std::move(item));
    }
    return saved;
}

void ShelfStore::restore() {
    AtomicFile::removeLeftovers(saveFile_->path());
    pendingRead_ = std::make_shared<PendingRead>();
    // A thread of its own: a drop made at once must not queue the read behind its copies.
    scheduler_.backgroundPromptly(
        [pending = pendingRead_, file = saveFile_, restoreItems = preferences_.restoreItemsOnLaunch(),
         limit = preferences_.maximumItemCount()] {
            std::lock_guard lock(pending->mutex);
            if (pending->claimed) return;
            pending->claimed = true;
            pending->result = readSavedShelf(*file, restoreItems, limit);
        },
        [this, pending = pendingRead_, alive = std::weak_ptr<int>(alive_)] {
            if (alive.expired() || restored_) return;
            std::optional<SavedShelf> saved;
            {
                std::lock_guard lock(pending->mutex);
                saved.swap(pending->result);
            }
            if (saved) takeSavedShelf(std::move(*saved));
        });
}

void ShelfStore::restoreNow() {
    if (restored_) return;
    std::optional<SavedShelf> saved;
    {
        // Waits for a read the background is in the middle of, and takes its result.
        std::lock_guard lock(pendingRead_->mutex);
        if (!pendingRead_->claimed) {
            pendingRead_->claimed = true;
            pendingRead_->result = readSavedShelf(*saveFile_, preferences_.restoreItemsOnLaunch(),
                                                  preferences_.maximumItemCount());
        }
        saved.swap(pendingRead_->result);
    }
    takeSavedShelf(saved ? std::move(*saved) : SavedShelf{});
}

void ShelfStore::takeSavedShelf(SavedShelf saved) {
    restored_ = true;
    pendingRead_.reset();
    if (saved.state == ShelfSaveFile::Contents::State::damaged) {
        recoverFromDamagedSaveFile(saved);
        return;
    }
    // Items added meanwhile are newer than every record: they stay on top, and the records fill
    // the shelf below them up to the limit; the rest is the oldest batch of the removal history.
    const qint64 limit = preferences_.maximumItemCount();
    const bool hadItems = !items_.empty();
    // Every record is kept already; what was added meanwhile, or removed and may come back, too.
    std::set<QUuid> keeping = std::move(saved.keeping);
    for (const ShelfItem& item : items_) keeping.insert(item.id);
    for (const Batch& batch : removalHistory_)
        for (const ShelfItem& item : batch) keeping.insert(item.id);
    if (items_.empty()) {
        items_ = std::move(saved.shown);
    } else {
        items_.insert(items_.end(), std::make_move_iterator(saved.shown.begin()),
                      std::make_move_iterator(saved.shown.end()));
        if (limit >= 1 && static_cast<qint64>(items_.size()) > limit) {
            const auto firstOverflow = items_.begin() + static_cast<std::ptrdiff_t>(limit);
            saved.overflow.insert(saved.overflow.begin(), std::make_move_iterator(firstOverflow),
                                  std::make_move_iterator(items_.end()));
            items_.erase(firstOverflow, items_.end());
        }
    }
    if (!saved.overflow.empty()) {
        qCWarning(lcStore) << "The saved shelf held" << saved.overflow.size()
                           << "items past the limit; they can be brought back";
        removalHistory_.push_back(std::move(saved.overflow));
        if (removalHistory_.size() > static_cast<size_t>(kRemovalHistoryLimit)) {
            for (const ShelfItem& item : removalHistory_.back()) forget(item);
            removalHistory_.pop_back();
        }
    }
    // Removed later, off the main thread.
    auto recovered = std::make_shared<std::vector<ShelfItem>>();
    scheduler_.background(
        [listed = std::move(saved.listed), keeping = std::move(keeping), recoverSince = saved.recoverSince,
         recovered] { *recovered = ItemStaging::pruneOrphans(listed, keeping, recoverSince); },
        [this, recovered, alive = std::weak_ptr<int>(alive_)] {
            if (!alive.expired()) takeUnsavedCopies(std::move(*recovered));
        });
    restoreCheck_.check(std::move(saved.toCheck));
    emit restored();
    if (!items_.empty() || hadItems) emit itemsChanged();
    // Changes held back while the records were on their way.
    if (unsavedSince_) scheduleSave();
}

void ShelfStore::takeUnsavedCopies(std::vector<ShelfItem> recovered) {
    if (recovered.empty()) return;
    qCWarning(lcStore) << recovered.size()
                       << "copies had finished after the last save; they are back on the shelf";
    // Above the saved items, as the newest of them, but below what was added since the start;
    // past the limit into the removal history, copies kept.
    const qint64 limit = preferences_.maximumItemCount();
    const auto below = std::find_if(items_.begin(), items_.end(), [&](const ShelfItem& item) {
        return item.addedAt <= recovered.front().addedAt;
    });
    items_.insert(below, std::make_move_iterator(recovered.begin()),
                  std::make_move_iterator(recovered.end()));
    if (limit >= 1 && static_cast<qint64>(items_.size()) > limit) {
        const auto firstOverflow = items_.begin() + static_cast<std::ptrdiff_t>(limit);
        Batch overflow(std::make_move_iterator(firstOverflow), std::make_move_iterator(items_.end()));
        items_.erase(firstOverflow, items_.end());
        for (const ShelfItem& item : overflow) selection_.erase(item.id);
        removalHistory_.push_front(std::move(overflow));
        while (removalHistory_.size() > static_cast<size_t>(kRemovalHistoryLimit)) {
            for (const ShelfItem& item : removalHistory_.back()) forget(item);
            removalHistory_.pop_back();
        }
    }
    emit itemsChanged();
    scheduleSave();
}

void ShelfStore::takeFindings(const std::vector<RestoreCheck::Finding>& findings) {
    // Looked up for every item on the shelf and in the history, thousands of times in a big
    // restore: hashed, as comparing uuids in order is slow.
    QHash<QUuid, const RestoreCheck::Finding*> byId;
    byId.reserve(static_cast<qsizetype>(findings.size()));
    for (const RestoreCheck::Finding& finding : findings) byId.insert(finding.id, &finding);
    bool recordsChanged = false;
    // Items removed meanwhile are not brought back: only what is still here takes its finding.
    const auto apply = [&](ShelfItem& item) -> const RestoreCheck::Finding* {
        const auto found = byId.find(item.id);
        if (found == byId.end()) return nullptr;
        const RestoreCheck::Finding& finding = **found;
        if (finding.movedOrigin) {
            item.originURL = finding.movedOrigin;
            if (finding.movedBookmark) item.originBookmark = finding.movedBookmark;
            recordsChanged = true;
        }
        if (finding.finishedCopy) {
            item.stagedURL = finding.finishedCopy;
            recordsChanged = true;
        }
        item.originSearch =
            finding.originNotFound ? ShelfItem::OriginSearch::notFound : ShelfItem::OriginSearch::onDemand;
        return &finding;
    };

    bool shelfChanged = false;
    std::vector<ShelfItem> lost;
    for (auto item = items_.begin(); item != items_.end();) {
        const RestoreCheck::Finding* finding = apply(*item);
        shelfChanged |= finding != nullptr;
        if (finding && finding->lost) {
            lost.push_back(std::move(*item));
            item = items_.erase(item);
        } else {
            ++item;
        }
    }
    for (Batch& batch : removalHistory_) {
        std::erase_if(batch, [&](ShelfItem& item) {
            const RestoreCheck::Finding* finding = apply(item);
            if (!finding || !finding->lost) return false;
            lost.push_back(std::move(item));
            return true;
        });
    }
    std::erase_if(removalHistory_, [](const Batch& batch) { return batch.empty(); });

    bool selectionChanged = false;
    for (const ShelfItem& item : lost) {
        qCWarning(lcStore) << "Left out a restored item: neither its original nor its copy is on disk:"
                           << item.displayName;
        selectionChanged |= selection_.erase(item.id) > 0;
        forget(item);
    }
    recordsChanged |= !lost.empty();
    if (shelfChanged) emit itemsChanged();
    if (selectionChanged) emit this->selectionChanged();
    if (recordsChanged) scheduleSave();
}

void ShelfStore::recoverFromDamagedSaveFile(SavedShelf& saved) {
    qCWarning(lcStore).noquote() << "The save file could not be read; it was set aside as"
                                 << (saved.setAside
                                         ? QString::fromStdString(saved.setAside->filename().string())
                                         : QStringLiteral("(nothing: it could not be moved)"))
                                 << "and" << saved.recovered.size()
                                 << "items were recovered from the staging folder.";
    // The folders of items added meanwhile are in the staging folder too: those stay as they are.
    std::set<QUuid> present;
    for (const ShelfItem& item : items_) present.insert(item.id);
    for (const Batch& batch : removalHistory_)
        for (const ShelfItem& item : batch) present.insert(item.id);
    for (ShelfItem& item : saved.recovered)
        if (present.count(item.id) == 0) items_.push_back(std::move(item));
    recoveredFromDamage_ = true;
    setNotice(Notice::recoveredFromDamage, {});
    emit restored();
    emit itemsChanged();
    scheduleSave();
}

void ShelfStore::add(std::vector<ShelfItem> items) {
    items_.insert(items_.begin(), std::make_move_iterator(items.begin()),
                  std::make_move_iterator(items.end()));
    enforceCapacity();
    emit itemsChanged();
    scheduleSave();
}

void ShelfStore::update(const ShelfItem& item) {
    auto stored = std::find_if(items_.begin(), items_.end(),
                               [&](const ShelfItem& candidate) { return candidate.id == item.id; });
    if (stored == items_.end()) return;
    const std::optional<QUuid> batch = stored->batchID;
    const ShelfItem::OriginSearch search = stored->originSearch;
    *stored = item;
    stored->batchID = batch;
    stored->originSearch = search;
    emit itemsChanged();
    scheduleSave();
}

void ShelfStore::update(const std::vector<ShelfItem>& items) {
    std::map<QUuid, const ShelfItem*> incoming;
    for (const ShelfItem& item : items) incoming[item.id] = &item;
    bool changed = false;
    for (ShelfItem& stored : items_) {
        const auto found = incoming.find(stored.id);
        if (found == incoming.end()) continue;
        const std::optional<QUuid> batch = stored.batchID;
        const ShelfItem::OriginSearch search = stored.originSearch;
        stored = *found->second;
        stored.batchID = batch;
        stored.originSearch = search;
        changed = true;
    }
    if (!changed) return;
    emit itemsChanged();
    scheduleSave();
}

void ShelfStore::remove(const std::set<QUuid>& ids, bool recordForUndo) {
    if (ids.empty()) return;
    Batch removed;
    std::vector<ShelfItem> kept;
    kept.reserve(items_.size());
    for (ShelfItem& item : items_) {
        (contains(ids, item.id) ? removed : kept).push_back(std::move(item));
    }
    items_ = std::move(kept);  // when nothing matched, every item went to `kept`
    if (removed.empty()) return;

    std::set<QUuid> selection;
    std::set_difference(selection_.begin(), selection_.end(), ids.begin(), ids.end(),
                        std::inserter(selection, selection.end()));
    const bool selectionChanged = selection != selection_;
    selection_ = std::move(selection);

    if (recordForUndo) {
        removalHistory_.push_front(std::move(removed));
        if (removalHistory_.size() > static_cast<size_t>(kRemovalHistoryLimit)) {
            for (const ShelfItem& item : removalHistory_.back()) forget(item);
            removalHistory_.pop_back();
        }
    } else {
        for (const ShelfItem& item : removed) forget(item);
    }

    emit itemsChanged();
    if (selectionChanged) emit this->selectionChanged();
    scheduleSave();
}

void ShelfStore::removeAll() {
    std::set<QUuid> all;
    for (const ShelfItem& item : items_) all.insert(item.id);
    remove(all, true);
}

void ShelfStore::restoreLastRemoved() {
    if (removalHistory_.empty()) return;
    Batch batch = std::move(removalHistory_.front());
    removalHistory_.pop_front();
    items_.insert(items_.begin(), std::make_move_iterator(batch.begin()),
                  std::make_move_iterator(batch.end()));
    enforceCapacity();
    emit itemsChanged();
    scheduleSave();
}

void ShelfStore::ungroup(const ShelfItem& item) {
    if (!item.batchID) return;
    for (ShelfItem& stored : items_) {
        if (stored.batchID == item.batchID) stored.batchID.reset();
    }
    emit itemsChanged();
    scheduleSave();
}

std::vector<ShelfItem> ShelfStore::members(const ShelfItem& item) const {
    if (!item.batchID) return {item};
    std::vector<ShelfItem> found;
    for (const ShelfItem& stored : items_) {
        if (stored.batchID == item.batchID) found.push_back(stored);
    }
    if (found.size() < 2) return {item};
    return found;
}

void ShelfStore::toggleSelection(const ShelfItem& item, bool extending) {
    std::set<QUuid> unit;
    for (const ShelfItem& member : members(item)) unit.insert(member.id);
    if (!extending) {
        setSelection(std::move(unit));
        return;
    }
    const bool anySelected =
        std::any_of(unit.begin(), unit.end(), [&](const QUuid& id) { return contains(selection_, id); });
    std::set<QUuid> selection = selection_;
    for (const QUuid& id : unit) {
        if (anySelected)
            selection.erase(id);
        else
            selection.insert(id);
    }
    setSelection(std::move(selection));
}

std::vector<ShelfItem> ShelfStore::dragPayload(const ShelfItem& startingFrom) const {
    if (!contains(selection_, startingFrom.id) || selection_.size() <= 1) return members(startingFrom);
    std::set<QUuid> selectedBatches;
    for (const ShelfItem& item : items_) {
        if (item.batchID && contains(selection_, item.id)) selectedBatches.insert(*item.batchID);
    }
    std::vector<ShelfItem> payload;
    for (const ShelfItem& item : items_) {
        if (contains(selection_, item.id) || (item.batchID && contains(selectedBatches, *item.batchID)))
            payload.push_back(item);
    }
    return payload;
}

std::vector<ShelfTile> ShelfStore::tiles(const std::vector<ShelfItem>& items) {
    std::vector<ShelfTile> tiles;
    std::map<QUuid, size_t> tileOfBatch;
    for (const ShelfItem& item : items) {
        if (item.batchID) {
            if (auto found = tileOfBatch.find(*item.batchID); found != tileOfBatch.end()) {
                tiles[found->second].items.push_back(item);
                continue;
            }
            tileOfBatch.emplace(*item.batchID, tiles.size());
        }
        tiles.push_back(ShelfTile{{item}});
    }
    return tiles;
}

void ShelfStore::flush() {
    restoreNow();
    saveTask_.cancel();
    unsavedSince_.reset();
    saved(saveFile_->write(items_, saveFile_->nextGeneration()));
}

void ShelfStore::saved(const std::string& error) {
    if (error.empty()) {
        retryTask_.cancel();
        if (notice_ == Notice::cannotSave) setNotice(Notice::none, {});
        return;
    }
    // Told at once, and tried again by itself: the disk may have room again soon.
    setNotice(Notice::cannotSave, QString::fromStdString(error));
    if (!retryTask_.isPending())
        retryTask_ = scheduler_.after(kSaveRetryDelay, [this] {
            if (!saveTask_.isPending()) scheduleSave();
        });
}

void ShelfStore::setNotice(Notice notice, const QString& detail) {
    if (notice == notice_ && detail == noticeDetail_) return;
    notice_ = notice;
    noticeDetail_ = detail;
    emit noticeChanged();
}

void ShelfStore::dismissNotice() { setNotice(Notice::none, {}); }

void ShelfStore::enforceCapacity() {
    const qint64 limit = preferences_.maximumItemCount();
    if (limit < 1 || static_cast<qint64>(items_.size()) <= limit) return;
    const auto firstOverflow = items_.begin() + static_cast<std::ptrdiff_t>(limit);
    std::vector<ShelfItem> overflow(std::make_move_iterator(firstOverflow),
                                    std::make_move_iterator(items_.end()));
    items_.erase(firstOverflow, items_.end());
    bool selectionChanged = false;
    for (const ShelfItem& item : overflow) selectionChanged |= selection_.erase(item.id) > 0;
    for (const ShelfItem& item : overflow) forget(item);
    if (selectionChanged) emit this->selectionChanged();
}

void ShelfStore::scheduleSave() {
    // The write happens after the debounce, off the main thread, of the shelf as it is then: one
    // snapshot per save, not per change (a big shelf costs milliseconds to copy). A write already
    // running keeps the save file alive past the store.
    const double now = scheduler_.now();
    if (!unsavedSince_) unsavedSince_ = now;
    // Until the saved records are here, the shelf holds a part of itself at most: written now, it
    // would take the rest off the file. The change waits, and is saved once they have arrived.
    if (!restored_) return;
    const double delay = std::clamp(*unsavedSince_ + kLongestSaveWait - now, 0.0, kSaveDelay);
    saveTask_ = scheduler_.after(delay, [this] {
        unsavedSince_.reset();
        auto snapshot = std::make_shared<std::vector<ShelfItem>>(items_);
        const std::uint64_t generation = saveFile_->nextGeneration();
        auto error = std::make_shared<std::string>();
        // The result comes back only while the store lives; the write itself finishes regardless.
        // Promptly: behind a big drop's copies it would wait until the last one is made.
        scheduler_.backgroundPromptly(
            [snapshot, generation, error, file = saveFile_] { *error = file->write(*snapshot, generation); },
            [this, error, alive = std::weak_ptr<int>(alive_)] {
                if (!alive.expired()) saved(*error);
            });
    });
}

void ShelfStore::forget(const ShelfItem& item) {
    ItemStaging::discard(item.id);
    if (thumbnails_) thumbnails_->evict(item.id);
}

}  // namespace mosswick
