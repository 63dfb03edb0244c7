#pragma once

#include <QObject>
#include <deque>
#include <memory>
#include <set>
#include <vector>

#include "model/RestoreCheck.h"
#include "model/Scheduler.h"
#include "model/ShelfItem.h"
#include "model/ShelfSaveFile.h"
#include "model/ShelfTile.h"

namespace mosswick {

class Preferences;
class ThumbnailCache;

// The one ordered list of items on the shelf (newest first), the selection, the drop-hover flag
// and the history of removals that can be brought back. Every change goes through its
// operations; the list is saved 0.4 s after the last change, off the main thread. Main thread
// only.
class ShelfStore : public QObject {
    Q_OBJECT

public:
    using Batch = std::vector<ShelfItem>;
    static constexpr int kRemovalHistoryLimit = 10;
    static constexpr double kSaveDelay = 0.4;
    // A burst of changes (a big drop's copies finishing one by one) keeps restarting the delay;
    // none waits longer than this for its save.
    static constexpr double kLongestSaveWait = 1.0;
    // After a failed save (a full disk), the next attempt comes by itself this much later.
    static constexpr double kSaveRetryDelay = 5.0;
    // A copy whose folder is dated this close before the save file's last write may have finished
    // after that save's snapshot was taken.
    static constexpr double kUnsavedCopyMargin = 2.0;

    // Reads the saved shelf off the main thread and takes its records, as they say, once they
    // arrive (isRestored, then restored()); what the disk says of them (originals moved or gone,
    // copies that finished after the last save, items nothing stands for) is looked into off the
    // main thread too and applied as it comes, and so is the pruning of orphaned staging folders.
    // Items added before the records arrive stay on top of them; until then nothing is saved, so
    // the file is never written with a part of the shelf.
    ShelfStore(Preferences& preferences, Scheduler& scheduler, std::filesystem::path saveFile,
               QObject* parent = nullptr);
    ~ShelfStore() override;

    static ShelfStore& shared();
    static void setShared(ShelfStore* store);

    // The settings the store follows, and its clock; the shelf's views read theirs here too.
    Preferences& preferences() const { return preferences_; }
    Scheduler& scheduler() const { return scheduler_; }

    const std::vector<ShelfItem>& items() const { return items_; }
    const std::set<QUuid>& selection() const { return selection_; }
    void setSelection(std::set<QUuid> selection);
    bool isTargeted() const { return isTargeted_; }
    void setTargeted(bool targeted);
    const std::deque<Batch>& removalHistory() const { return removalHistory_; }
    // Mirrors kRemovalHistoryLimit; the trim in remove() uses the constant.

    void setThumbnailCache(ThumbnailCache* cache) { thumbnails_ = cache; }

    void add(std::vector<ShelfItem> items);
    void update(const ShelfItem& item);
    // Many updates as one change: one notification and one save for all of them.
    void update(const std::vector<ShelfItem>& items);
    void remove(const std::set<QUuid>& ids, bool recordForUndo);
    void removeAll();
    void restoreLastRemoved();
    void ungroup(const ShelfItem& item);
    std::vector<ShelfItem> members(const ShelfItem& item) const;
    void toggleSelection(const ShelfItem& item, bool extending);
    std::vector<ShelfItem> dragPayload(const ShelfItem& startingFrom) const;
    static std::vector<ShelfTile> tiles(const std::vector<ShelfItem>& items);

    // Writes the shelf now, on this thread, cancelling the pending save. Before the saved records
    // have arrived it takes them first, reading the file here if the background has not yet.
    void flush();
    // A save is waiting for its debounce, or for the saved records to arrive.
    bool hasPendingSave() const { return saveTask_.isPending() || (!restored_ && unsavedSince_); }
    // The saved records have arrived and are on the shelf (or there were none).
    bool isRestored() const { return restored_; }
    // The save file could not be read at start, and the shelf was made from the staging folder.
    bool recoveredFromDamagedSaveFile() const { return recoveredFromDamage_; }
    // The saved records are still being read, or the restored items looked into.
    bool isCheckingRestoredItems() const { return !restored_ || restoreCheck_.isRunning(); }

    // What the user must learn about the shelf itself, shown on it until it no longer holds or
    // the user dismisses it.
    enum class Notice { none, recoveredFromDamage, cannotSave };
    Notice notice() const { return notice_; }
    // For cannotSave: why (the system's words).
    const QString& noticeDetail() const { return noticeDetail_; }
    void dismissNotice();
    const ShelfSaveFile& saveFile() const { return *saveFile_; }

signals:
    // The saved records arrived; emitted just before the itemsChanged() that shows them.
    void restored();
    void itemsChanged();
    void selectionChanged();
    void targetedChanged();
    void noticeChanged();

private:
    struct SavedShelf;
    struct PendingRead;
    static SavedShelf readSavedShelf(const ShelfSaveFile& file, bool restoreItems, qint64 limit);
    void restore();
    void restoreNow();
    void takeSavedShelf(SavedShelf saved);
    void recoverFromDamagedSaveFile(SavedShelf& saved);
    void takeFindings(const std::vector<RestoreCheck::Finding>& findings);
    void takeUnsavedCopies(std::vector<ShelfItem> recovered);
    void saved(const std::string& error);
    void setNotice(Notice notice, const QString& detail);
    void enforceCapacity();
    void scheduleSave();
    void forget(const ShelfItem& item);  // staged copy and cached preview, for good

    Preferences& preferences_;
    Scheduler& scheduler_;
    ThumbnailCache* thumbnails_ = nullptr;
    std::vector<ShelfItem> items_;
    std::set<QUuid> selection_;
    bool isTargeted_ = false;
    std::deque<Batch> removalHistory_;
    int removalHistoryLimit_ = kRemovalHistoryLimit;
    std::shared_ptr<ShelfSaveFile> saveFile_;
    bool restored_ = false;
    // The background read of the saved shelf, which flush() may have to take over.
    std::shared_ptr<PendingRead> pendingRead_;
    ScheduledTask saveTask_;
    // When the oldest change not yet saved was made; none when all are saved or being saved.
    std::optional<double> unsavedSince_;
    bool recoveredFromDamage_ = false;
    Notice notice_ = Notice::none;
    QString noticeDetail_;
    ScheduledTask retryTask_;
    RestoreCheck restoreCheck_{
        scheduler_, [this](std::vector<RestoreCheck::Finding> findings) { takeFindings(findings); }};
    // Lets a save's result, arriving from the background, tell whether the store still exists.
    std::shared_ptr<int> alive_ = std::make_shared<int>(0);
};

}  // namespace mosswick
