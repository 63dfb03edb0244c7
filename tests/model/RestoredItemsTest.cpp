// A restored shelf shows at once from what its records say; what the disk says of them (an
// original that moved or is gone, a copy that finished after the last save, an item nothing stands
// for) arrives later from the background and must land right whatever happened meanwhile.
#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QDateTime>
#include <utime.h>

#include "ModelTestHelpers.h"
#include "model/AppFiles.h"
#include "model/DefaultsStore.h"
#include "model/FileBookmark.h"
#include "model/ItemStaging.h"
#include "model/LocalPath.h"
#include "model/Logging.h"
#include "model/Preferences.h"
#include "model/ShelfStore.h"
#include "support/ManualScheduler.h"

namespace mosswick {
namespace {

namespace fs = std::filesystem;
using Search = ShelfItem::OriginSearch;

class RestoredItemsTest : public ::testing::Test {
protected:
    void SetUp() override {
        testing::clearAppData();
        Scheduler::setShared(&clock);
    }
    void TearDown() override { Scheduler::setShared(nullptr); }

    // An item dropped from `originals`, with a bookmark of its original and, unless told not to,
    // a staged copy.
    ShelfItem dropped(const std::string& name, bool withCopy = true) {
        ShelfItem item;
        item.id = QUuid::createUuid();
        item.displayName = QString::fromStdString(name);
        const fs::path original = originals / name;
        testing::writeFile(original, name);
        item.originURL = LocalPath::toUrl(original);
        item.originBookmark = FileBookmark::create(original);
        if (withCopy) {
            const fs::path copy = ItemStaging::itemFolder(item.id) / name;
            testing::writeFile(copy, name);
            item.stagedURL = LocalPath::toUrl(copy);
        }
        return item;
    }

    static void save(const std::vector<ShelfItem>& items) {
        QJsonArray array;
        for (const ShelfItem& item : items) array.append(item.toJson());
        testing::writeFile(AppFiles::saveFile(), QJsonDocument(array).toJson().toStdString());
    }

    static std::vector<ShelfItem> savedItems() { return ShelfSaveFile(AppFiles::saveFile()).read().items; }

    // The records have arrived; what the disk says of them has not.
    std::unique_ptr<ShelfStore> restoreHeld() {
        clock.holdBackgroundWork(true);
        auto store = std::make_unique<ShelfStore>(preferences, clock, AppFiles::saveFile());
        clock.runBackgroundWork(1);
        return store;
    }

    testing::Scratch originals{"originals"};
    testing::ManualScheduler clock;
    MemoryDefaultsStore defaults;
    Preferences preferences{defaults};
};

TEST_F(RestoredItemsTest, WhatTheCheckFindsOnDisk) {
    ShelfItem inPlace = dropped("in place");
    ShelfItem renamed = dropped("renamed");
    fs::rename(originals / "renamed", originals / "renamed later");
    ShelfItem goneWithCopy = dropped("gone, copy kept");
    fs::remove(originals / "gone, copy kept");
    ShelfItem goneWithoutCopy = dropped("gone, no copy", false);
    fs::remove(originals / "gone, no copy");
    // Killed after the copy finished, before the save that would have named it.
    ShelfItem copyAfterSave = dropped("copy after save");
    copyAfterSave.stagedURL.reset();
    fs::remove(originals / "copy after save");
    // Killed halfway through the copy: only the hidden partial is there.
    ShelfItem partial = dropped("partial", false);
    fs::remove(originals / "partial");
    testing::writeFile(ItemStaging::itemFolder(partial.id) / ".staging-1", "half");

    struct Row {
        const ShelfItem& item;
        std::optional<fs::path> movedTo;
        bool copyFound, originNotFound, lost;
    };
    const Row rows[] = {
        {inPlace, {}, false, false, false},     {renamed, originals / "renamed later", false, false, false},
        {goneWithCopy, {}, false, true, false}, {goneWithoutCopy, {}, false, true, true},
        {copyAfterSave, {}, true, true, false}, {partial, {}, false, true, true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.item.displayName.toStdString());
        const RestoreCheck::Finding finding = RestoreCheck::examine(row.item);
        EXPECT_EQ(finding.movedOrigin,
                  row.movedTo ? std::optional(LocalPath::toUrl(*row.movedTo)) : std::nullopt);
        if (row.movedTo) {
            EXPECT_EQ(FileBookmark::resolve(*finding.movedBookmark), row.movedTo);
        }
        EXPECT_EQ(finding.finishedCopy.has_value(), row.copyFound);
        EXPECT_EQ(finding.originNotFound, row.originNotFound);
        EXPECT_EQ(finding.lost, row.lost);
    }
}

TEST_F(RestoredItemsTest, ShowsAtOnceAndTakesTheFindingsOfWhatIsStillThere) {
    ShelfItem moved = dropped("moved");
    ShelfItem removedMeanwhile = dropped("removed meanwhile");
    ShelfItem lost = dropped("lost", false);
    fs::rename(originals / "moved", originals / "moved here");
    fs::rename(originals / "removed meanwhile", originals / "removed meanwhile, moved");
    fs::remove(originals / "lost");
    save({moved, removedMeanwhile, lost});

    auto store = restoreHeld();
    // Everything the records say, before the disk has said a word; nothing searched here.
    ASSERT_EQ(store->items().size(), 3u);
    EXPECT_TRUE(store->isCheckingRestoredItems());
    for (const ShelfItem& item : store->items()) {
        EXPECT_EQ(item.originSearch, Search::sought);
        EXPECT_FALSE(item.reachableOriginURL()) << "searched on the main thread";
        EXPECT_FALSE(item.isLost()) << "taken for lost before its search answered";
    }
    store->remove({removedMeanwhile.id}, false);

    const testing::CategoryWarnings warnings(lcStore().categoryName());
    clock.holdBackgroundWork(false);
    clock.advance(ShelfStore::kLongestSaveWait);
    EXPECT_FALSE(store->isCheckingRestoredItems());
    ASSERT_EQ(store->items().size(), 1u) << "the removed item came back, or the lost one stayed";
    EXPECT_EQ(store->items()[0].originURL, LocalPath::toUrl(originals / "moved here"));
    EXPECT_EQ(store->items()[0].originSearch, Search::onDemand);
    EXPECT_TRUE(warnings.warnings().join(' ').contains(QStringLiteral("neither its original nor its copy")))
        << "lost without a word";
    const std::vector<ShelfItem> saved = savedItems();
    ASSERT_EQ(saved.size(), 1u);
    EXPECT_EQ(saved[0].originURL, LocalPath::toUrl(originals / "moved here"));
    EXPECT_EQ(FileBookmark::resolve(*saved[0].originBookmark), originals / "moved here");
}

TEST_F(RestoredItemsTest, ASaveWhileTheCheckRunsKeepsEveryRecordAsItWas) {
    ShelfItem gone = dropped("gone, copy kept");
    ShelfItem nothingLeft = dropped("nothing left", false);
    fs::remove(originals / "gone, copy kept");
    fs::remove(originals / "nothing left");
    save({gone, nothingLeft});

    auto store = restoreHeld();
    store->flush();
    // Not yet known to be lost: kept, and saved with its bookmark, as the next start may find it.
    std::vector<ShelfItem> saved = savedItems();
    ASSERT_EQ(saved.size(), 2u);
    EXPECT_EQ(saved[1].originBookmark, nothingLeft.originBookmark);

    clock.holdBackgroundWork(false);
    clock.advance(ShelfStore::kLongestSaveWait);
    ASSERT_EQ(store->items().size(), 1u);
    // Found nowhere: the tile stands for the copy, and no one searches for the original again.
    EXPECT_EQ(store->items()[0].originSearch, Search::notFound);
    EXPECT_EQ(store->items()[0].dragURL(), gone.stagedURL);
    saved = savedItems();
    ASSERT_EQ(saved.size(), 1u);
    EXPECT_EQ(saved[0].originBookmark, gone.originBookmark) << "the bookmark is kept for a later start";
}

TEST_F(RestoredItemsTest, ItemsInTheRemovalHistoryTakeTheirFindingsToo) {
    preferences.setMaximumItemCount(1);
    ShelfItem top = dropped("top");
    ShelfItem overflow = dropped("overflow");
    fs::rename(originals / "overflow", originals / "overflow, moved");
    save({top, overflow});

    auto store = restoreHeld();
    store->remove({top.id}, true);
    store->restoreLastRemoved();  // "top" again; "overflow" waits in the history
    clock.runBackgroundWork();
    store->restoreLastRemoved();
    ASSERT_EQ(store->items().size(), 1u);
    EXPECT_EQ(store->items()[0].originURL, LocalPath::toUrl(originals / "overflow, moved"));
    EXPECT_EQ(store->items()[0].originSearch, Search::onDemand) << "still marked as searched for";
}

TEST_F(RestoredItemsTest, FindingsForAStoreThatIsGoneAreDropped) {
    save({dropped("a"), dropped("b")});
    auto store = restoreHeld();
    store.reset();
    clock.runBackgroundWork();  // must not touch the store
}

TEST_F(RestoredItemsTest, OldOrphansArePrunedNewOnesComeBackAndAFolderMadeAfterRestoreIsLeftAlone) {
    ShelfItem kept = dropped("kept");
    kept.addedAt = Timestamp::fromDateTime(QDateTime::currentDateTime().addSecs(-7200));
    save({kept});
    const auto dated = [](const QUuid& id, int secondsAgo) {
        const utimbuf times{::time(nullptr) - secondsAgo, ::time(nullptr) - secondsAgo};
        ::utime(ItemStaging::itemFolder(id).c_str(), &times);
    };
    // Removed long ago (its removal history went at a quit): pruned.
    const QUuid old = QUuid::createUuid();
    testing::writeFile(ItemStaging::itemFolder(old) / "old", "x");
    dated(old, 3600);
    // Finished after the last save, then the shelf was killed: back on the shelf.
    const QUuid unsaved = QUuid::createUuid();
    testing::writeFile(ItemStaging::itemFolder(unsaved) / "unsaved", "x");
    // Killed halfway through its copy: nothing to bring back.
    const QUuid partial = QUuid::createUuid();
    testing::writeFile(ItemStaging::itemFolder(partial) / ".staging-1", "x");

    auto store = restoreHeld();
    ShelfItem fresh = dropped("fresh");  // a drop whose copy lands before the pruning runs
    store->add({fresh});
    clock.holdBackgroundWork(false);
    clock.advance(ShelfStore::kLongestSaveWait);
    EXPECT_FALSE(fs::exists(ItemStaging::itemFolder(old)));
    EXPECT_FALSE(fs::exists(ItemStaging::itemFolder(partial)));
    EXPECT_TRUE(fs::exists(ItemStaging::itemFolder(kept.id) / "kept"));
    EXPECT_TRUE(fs::exists(ItemStaging::itemFolder(fresh.id) / "fresh"));
    // Newer than the saved items, older than the drop made since the start.
    ASSERT_EQ(store->items().size(), 3u);
    EXPECT_EQ(store->items()[1].id, unsaved);
    EXPECT_EQ(savedItems().size(), 3u);
}

}  // namespace
}  // namespace mosswick
