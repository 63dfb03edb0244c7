#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>

#include "model/AppFiles.h"
#include "model/DefaultsStore.h"
#include "model/ItemStaging.h"
#include "model/LocalPath.h"
#include "model/Preferences.h"
#include "model/ShelfStore.h"
#include "model/ThumbnailCache.h"
#include "support/ManualScheduler.h"
#include "support/TestFolders.h"

namespace mosswick {
namespace {

using testing::ManualScheduler;

class RecordingThumbnails final : public ThumbnailCache {
public:
    void evict(const QUuid& id) override { evicted.push_back(id); }
    std::vector<QUuid> evicted;
};

class ShelfStoreTest : public ::testing::Test {
protected:
    void SetUp() override {
        testing::clearAppData();
        Scheduler::setShared(&clock);
    }
    void TearDown() override { Scheduler::setShared(nullptr); }

    // A store as it is once its saved records have arrived from the background.
    std::unique_ptr<ShelfStore> makeStore() {
        auto store = std::make_unique<ShelfStore>(preferences, clock, AppFiles::saveFile());
        store->setThumbnailCache(&thumbnails);
        clock.drain();
        return store;
    }

    // An item whose staged copy really exists, as ingestion leaves it.
    static ShelfItem stagedItem(const QString& name, std::optional<QUuid> batch = std::nullopt) {
        ShelfItem item;
        item.id = QUuid::createUuid();
        item.displayName = name;
        item.batchID = batch;
        const auto file = ItemStaging::itemFolder(item.id) / name.toStdString();
        testing::writeFile(file, "contents of " + name.toStdString());
        item.stagedURL = LocalPath::toUrl(file);
        return item;
    }

    static bool hasStagedFolder(const ShelfItem& item) {
        return std::filesystem::exists(ItemStaging::itemFolder(item.id));
    }

    static std::vector<QString> names(const std::vector<ShelfItem>& items) {
        std::vector<QString> result;
        for (const auto& item : items) result.push_back(item.displayName);
        return result;
    }

    std::vector<QString> savedNames() {
        auto saved = ShelfSaveFile(AppFiles::saveFile()).read();
        return saved.state == ShelfSaveFile::Contents::State::read
                   ? names(saved.items)
                   : std::vector<QString>{QStringLiteral("<no save file>")};
    }

    ManualScheduler clock;
    MemoryDefaultsStore defaults;
    Preferences preferences{defaults};
    RecordingThumbnails thumbnails;
};

using Names = std::vector<QString>;

TEST_F(ShelfStoreTest, AddingToAFullShelfDropsTheOldestForGood) {
    preferences.setMaximumItemCount(3);
    auto store = makeStore();
    const ShelfItem a = stagedItem("a"), b = stagedItem("b"), c = stagedItem("c");
    store->add({a, b, c});
    store->setSelection({b.id, c.id});

    const ShelfItem d = stagedItem("d"), e = stagedItem("e");
    store->add({d, e});

    EXPECT_EQ(names(store->items()), (Names{"d", "e", "a"}));
    EXPECT_FALSE(hasStagedFolder(b));
    EXPECT_FALSE(hasStagedFolder(c));
    EXPECT_TRUE(hasStagedFolder(a));
    EXPECT_TRUE(store->selection().empty());
    EXPECT_TRUE(store->removalHistory().empty());
    EXPECT_EQ(thumbnails.evicted, (std::vector<QUuid>{b.id, c.id}));
}

TEST_F(ShelfStoreTest, AMaximumBelowOneMeansNoLimit) {
    preferences.setMaximumItemCount(0);
    auto store = makeStore();
    for (int i = 0; i < 120; ++i) store->add({stagedItem(QString::number(i))});
    EXPECT_EQ(store->items().size(), 120u);
}

TEST_F(ShelfStoreTest, RemovalHistoryKeepsTenBatchesAndTheirCopies) {
    auto store = makeStore();
    std::vector<ShelfItem> items;
    for (int i = 0; i < 11; ++i) items.push_back(stagedItem(QString::number(i)));
    store->add(items);
    for (const ShelfItem& item : items) store->remove({item.id}, true);

    ASSERT_EQ(store->removalHistory().size(), 10u);
    EXPECT_FALSE(hasStagedFolder(items[0]));  // the oldest batch fell out of the history
    EXPECT_TRUE(hasStagedFolder(items[1]));

    store->restoreLastRemoved();
    store->restoreLastRemoved();
    EXPECT_EQ(names(store->items()), (Names{"9", "10"}));
}

TEST_F(ShelfStoreTest, RemovingWithoutUndoDeletesCopiesAtOnce) {
    auto store = makeStore();
    const ShelfItem a = stagedItem("a"), b = stagedItem("b");
    store->add({a, b});
    store->setSelection({a.id, b.id});
    store->remove({a.id}, false);
    EXPECT_FALSE(hasStagedFolder(a));
    EXPECT_TRUE(store->removalHistory().empty());
    EXPECT_EQ(store->selection(), (std::set<QUuid>{b.id}));
    EXPECT_EQ(thumbnails.evicted, (std::vector<QUuid>{a.id}));
}

TEST_F(ShelfStoreTest, RemovingNothingOnTheShelfChangesNothingAndSavesNothing) {
    auto store = makeStore();
    store->add({stagedItem("a")});
    clock.advance(1);
    ASSERT_FALSE(store->hasPendingSave());
    store->remove({QUuid::createUuid()}, true);
    store->remove({}, true);
    EXPECT_FALSE(store->hasPendingSave());
    EXPECT_TRUE(store->removalHistory().empty());
    EXPECT_EQ(store->items().size(), 1u);
}

TEST_F(ShelfStoreTest, BringingBackAFullShelfTrimsTheBottom) {
    preferences.setMaximumItemCount(2);
    auto store = makeStore();
    const ShelfItem a = stagedItem("a"), b = stagedItem("b");
    store->add({a, b});
    store->remove({a.id}, true);
    store->add({stagedItem("c")});
    store->restoreLastRemoved();
    EXPECT_EQ(names(store->items()), (Names{"a", "c"}));
    EXPECT_FALSE(hasStagedFolder(b));
}

TEST_F(ShelfStoreTest, UpdateReplacesByIdButKeepsTheStoredBatch) {
    auto store = makeStore();
    const QUuid batch = QUuid::createUuid();
    ShelfItem a = stagedItem("a", batch);
    store->add({a, stagedItem("b", batch)});
    clock.advance(1);

    ShelfItem changed = a;
    changed.displayName = "a2";
    changed.byteSize = 42;
    changed.batchID = QUuid::createUuid();
    store->update(changed);
    EXPECT_EQ(store->items()[0].displayName, "a2");
    EXPECT_EQ(store->items()[0].byteSize, 42);
    EXPECT_EQ(store->items()[0].batchID, batch);
    EXPECT_TRUE(store->hasPendingSave());

    clock.advance(1);
    ShelfItem stranger = stagedItem("stranger");
    store->update(stranger);
    EXPECT_FALSE(store->hasPendingSave());
    EXPECT_EQ(store->items().size(), 2u);
}

TEST_F(ShelfStoreTest, ManyUpdatesAreOneChange) {
    auto store = makeStore();
    const QUuid batch = QUuid::createUuid();
    ShelfItem a = stagedItem("a", batch), b = stagedItem("b", batch), c = stagedItem("c");
    store->add({a, b, c});
    clock.advance(1);
    int changes = 0;
    QObject::connect(store.get(), &ShelfStore::itemsChanged, [&] { ++changes; });

    a.displayName = "a2";
    a.batchID.reset();
    c.byteSize = 7;
    store->update(std::vector<ShelfItem>{a, c, stagedItem("stranger")});
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(names(store->items()), (std::vector<QString>{"a2", "b", "c"}));
    EXPECT_EQ(store->items()[0].batchID, batch);
    EXPECT_EQ(store->items()[2].byteSize, 7);
    EXPECT_TRUE(store->hasPendingSave());

    clock.advance(1);
    store->update(std::vector<ShelfItem>{stagedItem("nobody")});
    EXPECT_EQ(changes, 1);
    EXPECT_FALSE(store->hasPendingSave());
}

TEST_F(ShelfStoreTest, StacksSelectAndDragAsOneUnit) {
    auto store = makeStore();
    const QUuid batch = QUuid::createUuid();
    const ShelfItem s1 = stagedItem("s1", batch), s2 = stagedItem("s2", batch);
    const ShelfItem x = stagedItem("x"), y = stagedItem("y");
    const ShelfItem lonely = stagedItem("lonely", QUuid::createUuid());  // a batch of one
    store->add({x, s1, y, s2, lonely});

    // Tiles keep the order of their first items; a stack gathers its members in shelf order.
    const auto tiles = ShelfStore::tiles(store->items());
    ASSERT_EQ(tiles.size(), 4u);
    EXPECT_EQ(names(tiles[1].items), (Names{"s1", "s2"}));
    EXPECT_EQ(names(store->members(lonely)), (Names{"lonely"}));

    store->toggleSelection(s2, false);
    EXPECT_EQ(store->selection(), (std::set<QUuid>{s1.id, s2.id}));
    store->toggleSelection(x, true);
    EXPECT_EQ(store->selection().size(), 3u);

    // A selected item drags the selection, with every stack a selected member belongs to.
    store->setSelection({s1.id, y.id});
    EXPECT_EQ(names(store->dragPayload(y)), (Names{"s1", "y", "s2"}));
    // An unselected item drags just itself (or its stack).
    EXPECT_EQ(names(store->dragPayload(x)), (Names{"x"}));
    // A stack with one selected member is deselected whole by an extending click.
    store->toggleSelection(s2, true);
    EXPECT_EQ(store->selection(), (std::set<QUuid>{y.id}));

    store->ungroup(s1);
    EXPECT_EQ(ShelfStore::tiles(store->items()).size(), 5u);
}

TEST_F(ShelfStoreTest, ABurstOfChangesIsSavedOnceWithTheLastState) {
    auto store = makeStore();
    store->add({stagedItem("a")});
    clock.advance(0.3);
    store->add({stagedItem("b")});
    clock.advance(0.3);
    store->add({stagedItem("c")});
    clock.advance(0.39);
    EXPECT_FALSE(std::filesystem::exists(AppFiles::saveFile()));
    clock.advance(0.02);
    EXPECT_EQ(savedNames(), (Names{"c", "b", "a"}));
}

TEST_F(ShelfStoreTest, FlushWritesAtOnceAndAStaleWriteNeverOverwritesIt) {
    auto store = makeStore();
    store->add({stagedItem("a")});
    clock.holdBackgroundWork(true);
    clock.advance(0.4);  // the debounce fired and its write is still running...
    store->add({stagedItem("b")});
    store->flush();  // ...when quit flushes a newer state
    EXPECT_FALSE(store->hasPendingSave());
    EXPECT_EQ(savedNames(), (Names{"b", "a"}));
    clock.runBackgroundWork();
    EXPECT_EQ(savedNames(), (Names{"b", "a"}));
}

TEST_F(ShelfStoreTest, TheSaveFileIsAPrettySortedArray) {
    auto store = makeStore();
    store->add({stagedItem("a")});
    store->flush();
    const QByteArray bytes = QByteArray::fromStdString(testing::readFile(AppFiles::saveFile()));
    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    ASSERT_TRUE(document.isArray());
    EXPECT_TRUE(bytes.contains("\n    {"));
    EXPECT_LT(bytes.indexOf("\"addedAt\""), bytes.indexOf("\"displayName\""));
    EXPECT_LT(bytes.indexOf("\"displayName\""), bytes.indexOf("\"stagedURL\""));
}

TEST_F(ShelfStoreTest, RestoreKeepsItemsWithAFileAndPrunesEverythingElse) {
    ShelfItem kept, gone;
    {
        auto store = makeStore();
        kept = stagedItem("kept");
        gone = stagedItem("gone");
        store->add({kept, gone});
        store->flush();
    }
    std::filesystem::remove_all(ItemStaging::itemFolder(gone.id) / "gone");
    testing::writeFile(ItemStaging::directory() / ".hidden", "x");
    testing::writeFile(ItemStaging::directory() / "temp" / "f", "x");

    auto store = makeStore();
    clock.drain();  // what the disk says comes from the background
    EXPECT_EQ(names(store->items()), (Names{"kept"}));
    EXPECT_TRUE(hasStagedFolder(kept));
    EXPECT_FALSE(hasStagedFolder(gone));
    EXPECT_FALSE(std::filesystem::exists(ItemStaging::directory() / ".hidden"));
    EXPECT_FALSE(std::filesystem::exists(ItemStaging::directory() / "temp"));
}

TEST_F(ShelfStoreTest, RestoreTurnedOffEmptiesTheStagingArea) {
    ShelfItem a;
    {
        auto store = makeStore();
        a = stagedItem("a");
        store->add({a});
        store->flush();
    }
    ASSERT_TRUE(hasStagedFolder(a));
    preferences.setRestoreItemsOnLaunch(false);
    EXPECT_TRUE(makeStore()->items().empty());
    clock.drain();
    EXPECT_FALSE(hasStagedFolder(a));
}

}  // namespace
}  // namespace mosswick
