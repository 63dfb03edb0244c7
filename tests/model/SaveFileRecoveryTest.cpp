// The shelf keeps the only copy of a user's file: what a damaged save file, a hand-edited record, a
// hostile data folder or a burst of changes must never cost.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <utime.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "model/AppFiles.h"
#include "model/DefaultsStore.h"
#include "model/ItemStaging.h"
#include "model/LocalPath.h"
#include "model/Preferences.h"
#include "model/ShelfStore.h"
#include "support/ManualScheduler.h"
#include "support/TestFolders.h"

namespace mosswick {
namespace {

class SaveFileRecoveryTest : public ::testing::Test {
protected:
    void SetUp() override {
        testing::clearAppData();
        Scheduler::setShared(&clock);
    }
    void TearDown() override { Scheduler::setShared(nullptr); }

    // A store as it is once its saved records have arrived from the background.
    std::unique_ptr<ShelfStore> makeStore() {
        auto store = std::make_unique<ShelfStore>(preferences, clock, AppFiles::saveFile());
        clock.drain();
        return store;
    }

    // A staged copy on disk, its folder dated `secondsAgo` back.
    static ShelfItem staged(const std::string& name, int secondsAgo = 0) {
        ShelfItem item;
        item.id = QUuid::createUuid();
        item.displayName = QString::fromStdString(name);
        const auto file = ItemStaging::itemFolder(item.id) / name;
        testing::writeFile(file, "contents of " + name);
        item.stagedURL = LocalPath::toUrl(file);
        const utimbuf times{::time(nullptr) - secondsAgo, ::time(nullptr) - secondsAgo};
        ::utime(ItemStaging::itemFolder(item.id).c_str(), &times);
        return item;
    }

    static std::vector<std::string> names(const std::vector<ShelfItem>& items) {
        std::vector<std::string> result;
        for (const ShelfItem& item : items) result.push_back(item.displayName.toStdString());
        return result;
    }

    static std::vector<std::filesystem::path> setAside() {
        std::vector<std::filesystem::path> found;
        for (const auto& entry : std::filesystem::directory_iterator(AppFiles::root()))
            if (entry.path().filename().string().starts_with("shelf.json.damaged-"))
                found.push_back(entry.path());
        return found;
    }

    testing::ManualScheduler clock;
    MemoryDefaultsStore defaults;
    Preferences preferences{defaults};
};

struct DamageRow {
    const char* name;
    std::string contents;
};

class DamagedSaveFile : public SaveFileRecoveryTest, public ::testing::WithParamInterface<DamageRow> {};

TEST_P(DamagedSaveFile, KeepsEveryCopySetsTheFileAsideAndRebuildsTheShelf) {
    const ShelfItem older = staged("older.txt", 3600);
    const ShelfItem newer = staged("newer.pdf", 60);
    testing::writeFile(AppFiles::saveFile(), GetParam().contents);

    auto store = makeStore();
    EXPECT_TRUE(store->recoveredFromDamagedSaveFile());
    EXPECT_EQ(store->notice(), ShelfStore::Notice::recoveredFromDamage);
    EXPECT_EQ(names(store->items()), (std::vector<std::string>{"newer.pdf", "older.txt"}));
    EXPECT_EQ(store->items().front().id, newer.id);
    EXPECT_EQ(store->items().front().stagedURL, newer.stagedURL);
    EXPECT_EQ(store->items().front().byteSize, qint64(std::string("contents of newer.pdf").size()));
    EXPECT_TRUE(std::filesystem::exists(ItemStaging::itemFolder(older.id) / "older.txt"));

    const auto aside = setAside();
    ASSERT_EQ(aside.size(), 1u);
    EXPECT_EQ(testing::readFile(aside.front()), GetParam().contents) << "the evidence is kept as it was";

    // The rebuilt shelf is saved, and read normally at the next start.
    clock.advance(ShelfStore::kSaveDelay);
    auto again = makeStore();
    EXPECT_FALSE(again->recoveredFromDamagedSaveFile());
    EXPECT_EQ(names(again->items()), (std::vector<std::string>{"newer.pdf", "older.txt"}));
}

INSTANTIATE_TEST_SUITE_P(Rows, DamagedSaveFile,
                         ::testing::Values(DamageRow{"truncated", "[\n    {\n        \"displayName\": \"a"},
                                           DamageRow{"notJson", "not json"},
                                           DamageRow{"notAnArray", "{\"items\": []}"}, DamageRow{"empty", ""},
                                           DamageRow{"nestedPastTheParser",
                                                     std::string(100001, '[').append(100001, ']')}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(SaveFileRecoveryTest, WithoutASaveFileFinishedCopiesComeBackAndTheRestIsPruned) {
    // Killed before its first save: the copy is all there is.
    const ShelfItem leftover = staged("leftover");
    testing::writeFile(ItemStaging::directory() / "not an item", "x");
    auto store = makeStore();
    clock.drain();
    EXPECT_EQ(names(store->items()), (std::vector<std::string>{"leftover"}));
    EXPECT_FALSE(std::filesystem::exists(ItemStaging::directory() / "not an item"));
}

TEST_F(SaveFileRecoveryTest, ARecordWhoseCopyLiesOutsideItsFolderIsDropped) {
    // Dated well before the save, so that the folders of the dropped records are pruned rather
    // than taken for copies that finished after it.
    const ShelfItem good = staged("good", 3600);
    ShelfItem outside = staged("outside", 3600);
    outside.stagedURL = QUrl::fromLocalFile(QStringLiteral("/etc/passwd"));
    ShelfItem climbing = staged("climbing", 3600);
    climbing.stagedURL = LocalPath::toUrl(ItemStaging::itemFolder(climbing.id) / ".." / ".." / "elsewhere");
    ShelfItem originOutside = staged("originOutside", 3600);
    originOutside.originURL = QUrl::fromLocalFile(QStringLiteral("/etc/hosts"));
    QJsonArray array;
    for (const ShelfItem& item : {good, outside, climbing, originOutside}) array.append(item.toJson());
    testing::writeFile(AppFiles::saveFile(), QJsonDocument(array).toJson().toStdString());

    EXPECT_EQ(names(makeStore()->items()), (std::vector<std::string>{"good", "originOutside"}));
}

TEST_F(SaveFileRecoveryTest, AStagingFolderThatIsALinkIsSetAsideAndItsTargetLeftAlone) {
    const std::filesystem::path elsewhere = testing::freshFolder("someone-elses");
    testing::writeFile(elsewhere / "precious.txt", "not Mosswick's");
    std::filesystem::create_directories(AppFiles::root());
    std::filesystem::create_directory_symlink(elsewhere, AppFiles::root() / "Staged");

    EXPECT_TRUE(makeStore()->items().empty());
    EXPECT_EQ(testing::readFile(elsewhere / "precious.txt"), "not Mosswick's");
    struct stat info {};
    ASSERT_EQ(::lstat((AppFiles::root() / "Staged").c_str(), &info), 0);
    EXPECT_TRUE(S_ISDIR(info.st_mode)) << "a real folder took the link's place";
}

TEST_F(SaveFileRecoveryTest, FoldersLeftOpenToOthersAreClosed) {
    const std::filesystem::path folder = testing::freshFolder("loose") / "Mosswick";
    std::filesystem::create_directories(folder);
    ::chmod(folder.c_str(), 0777);
    ASSERT_TRUE(AppFiles::makeOwnFolder(folder));
    struct stat info {};
    ::stat(folder.c_str(), &info);
    EXPECT_EQ(info.st_mode & 07777, 0700u);
}

// The saved shelf arrives from the background after start-up; what happens before it does must
// neither be lost nor write a part of the shelf over the file.
struct ArrivalRow {
    const char* name;
    enum class File { none, shelf, damaged } file;
    // Quit before the background read was even done: flush() must take the records itself.
    bool flushFirst;
};

class SavedShelfArrival : public SaveFileRecoveryTest, public ::testing::WithParamInterface<ArrivalRow> {};

TEST_P(SavedShelfArrival, ItemsAddedBeforeTheRecordsStayOnTopAndNothingPartIsWritten) {
    using File = ArrivalRow::File;
    const ArrivalRow& row = GetParam();
    const ShelfItem newer = staged("saved newer", 600);
    const ShelfItem older = staged("saved older", 3600);
    std::string before;
    if (row.file == File::shelf) {
        ShelfSaveFile(AppFiles::saveFile()).write({newer, older}, 1);
        before = testing::readFile(AppFiles::saveFile());
    } else if (row.file == File::damaged) {
        before = "[{\"truncated";
        testing::writeFile(AppFiles::saveFile(), before);
    }

    clock.holdBackgroundWork(true);
    auto store = std::make_unique<ShelfStore>(preferences, clock, AppFiles::saveFile());
    const ShelfItem dropped = staged("dropped at start");
    store->add({dropped});
    EXPECT_FALSE(store->isRestored());
    EXPECT_EQ(names(store->items()), (std::vector<std::string>{"dropped at start"}));
    clock.advance(ShelfStore::kLongestSaveWait + ShelfStore::kSaveRetryDelay);
    EXPECT_TRUE(store->hasPendingSave());
    if (row.file == File::none)
        EXPECT_FALSE(std::filesystem::exists(AppFiles::saveFile())) << "saved before the records came";
    else
        EXPECT_EQ(testing::readFile(AppFiles::saveFile()), before) << "a part of the shelf was written";

    if (row.flushFirst) {
        store->flush();
    } else {
        clock.holdBackgroundWork(false);
        clock.advance(ShelfStore::kSaveDelay);
    }
    // Without a save file the two copies come back as finished after a save that never came.
    const std::vector<std::string> expected{"dropped at start", "saved newer", "saved older"};
    EXPECT_TRUE(store->isRestored());
    EXPECT_EQ(names(store->items()), expected);
    EXPECT_EQ(names(ShelfSaveFile(AppFiles::saveFile()).read().items), expected);
    EXPECT_EQ(store->recoveredFromDamagedSaveFile(), row.file == File::damaged);

    // Whatever the background still had queued changes nothing, and every copy is still there.
    clock.holdBackgroundWork(false);
    clock.advance(ShelfStore::kLongestSaveWait);
    EXPECT_EQ(names(store->items()), expected);
    for (const ShelfItem& item : {newer, older, dropped})
        EXPECT_TRUE(std::filesystem::exists(ItemStaging::itemFolder(item.id)))
            << item.displayName.toStdString();
}

INSTANTIATE_TEST_SUITE_P(Rows, SavedShelfArrival,
                         ::testing::Values(ArrivalRow{"noSaveFile", ArrivalRow::File::none, false},
                                           ArrivalRow{"saved", ArrivalRow::File::shelf, false},
                                           ArrivalRow{"savedFlushedFirst", ArrivalRow::File::shelf, true},
                                           ArrivalRow{"damaged", ArrivalRow::File::damaged, false},
                                           ArrivalRow{"damagedFlushedFirst", ArrivalRow::File::damaged,
                                                      true}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(SaveFileRecoveryTest, RecordsArrivingAfterADropFillTheShelfBelowItUpToTheLimit) {
    preferences.setMaximumItemCount(2);
    const ShelfItem first = staged("first", 600);
    const ShelfItem second = staged("second", 3600);
    ShelfSaveFile(AppFiles::saveFile()).write({first, second}, 1);

    clock.holdBackgroundWork(true);
    auto store = std::make_unique<ShelfStore>(preferences, clock, AppFiles::saveFile());
    store->add({staged("dropped")});
    store->remove({store->items().front().id}, true);  // an undoable removal, newer than the records
    store->add({staged("dropped again")});
    clock.holdBackgroundWork(false);
    clock.drain();
    EXPECT_EQ(names(store->items()), (std::vector<std::string>{"dropped again", "first"}));
    ASSERT_EQ(store->removalHistory().size(), 2u);
    EXPECT_EQ(names(store->removalHistory().front()), (std::vector<std::string>{"dropped"}));
    EXPECT_EQ(names(store->removalHistory().back()), (std::vector<std::string>{"second"}))
        << "the records past the limit are the oldest removal";
    EXPECT_TRUE(std::filesystem::exists(ItemStaging::itemFolder(second.id) / "second"));
}

TEST_F(SaveFileRecoveryTest, ABurstOfChangesIsSavedWithinASecond) {
    auto store = makeStore();
    for (int i = 0; i < 12; ++i) {
        store->add({staged(std::string("burst").append(std::to_string(i)))});
        clock.advance(0.1);
    }
    // Each change came before the last one's delay ran out; the first must not wait past a second.
    EXPECT_EQ(ShelfSaveFile(AppFiles::saveFile()).read().items.size(), 10u);
    clock.advance(ShelfStore::kSaveDelay);
    EXPECT_EQ(ShelfSaveFile(AppFiles::saveFile()).read().items.size(), 12u);
}

}  // namespace
}  // namespace mosswick

namespace mosswick {
namespace {

TEST_F(SaveFileRecoveryTest, ASavedShelfPastTheLimitKeepsTheRestInTheRemovalHistory) {
    preferences.setMaximumItemCount(3);
    QJsonArray array;
    std::vector<ShelfItem> saved;
    for (int i = 0; i < 5; ++i) {
        saved.push_back(staged("item" + std::to_string(i)));
        array.append(saved.back().toJson());
    }
    testing::writeFile(AppFiles::saveFile(), QJsonDocument(array).toJson().toStdString());

    auto store = makeStore();
    EXPECT_EQ(names(store->items()), (std::vector<std::string>{"item0", "item1", "item2"}));
    ASSERT_EQ(store->removalHistory().size(), 1u);
    EXPECT_EQ(names(store->removalHistory().front()), (std::vector<std::string>{"item3", "item4"}));
    EXPECT_TRUE(std::filesystem::exists(ItemStaging::itemFolder(saved[4].id) / "item4")) << "copies kept";
}

TEST_F(SaveFileRecoveryTest, AShelfThatCannotSaveSaysSoAndSavesOnceItCanAgain) {
    auto store = makeStore();
    // Something that is no file stands where the save file goes, as a full disk would stop it.
    std::filesystem::create_directories(AppFiles::saveFile() / "in the way");
    store->add({staged("a")});
    clock.advance(ShelfStore::kSaveDelay);
    EXPECT_EQ(store->notice(), ShelfStore::Notice::cannotSave);
    EXPECT_FALSE(store->noticeDetail().isEmpty());

    std::filesystem::remove_all(AppFiles::saveFile());
    clock.advance(ShelfStore::kSaveRetryDelay + ShelfStore::kSaveDelay);
    EXPECT_EQ(store->notice(), ShelfStore::Notice::none);
    EXPECT_EQ(names(ShelfSaveFile(AppFiles::saveFile()).read().items), (std::vector<std::string>{"a"}));
}

}  // namespace
}  // namespace mosswick
