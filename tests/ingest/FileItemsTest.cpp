// Dropped files and folders: the item made at once, its copy made in the background, symbolic
// links, and files that misbehave.
#include <sys/stat.h>
#include <unistd.h>

#include "model/FileBookmark.h"
#include "model/ItemStaging.h"
#include "model/LocalPath.h"
#include "support/IngestFixture.h"

namespace mosswick {
namespace {

namespace fs = std::filesystem;
using testing::FakePasteboard;
using testing::readFile;
using testing::writeFile;

class FileItemsTest : public testing::IngestTest {
protected:
    ShelfItem dropOne(const fs::path& file) {
        FakePasteboard pasteboard;
        pasteboard.withFile(file);
        auto items = drop(pasteboard);
        EXPECT_EQ(items.size(), 1u);
        return items.empty() ? ShelfItem{} : items.front();
    }

    fs::path folder = testing::freshFolder("files");
};

TEST_F(FileItemsTest, AFileIsReferencedAtOnceAndItsCopyCompletesTheItemLater) {
    // No extension: only its contents tell the type.
    const fs::path script = folder / "build-all";
    writeFile(script, "#!/bin/sh\necho building\n");

    const ShelfItem item = dropOne(script);
    EXPECT_EQ(item.displayName, QStringLiteral("build-all"));
    EXPECT_EQ(item.originURL, LocalPath::toUrl(script));
    ASSERT_TRUE(item.originBookmark);
    EXPECT_EQ(FileBookmark::resolve(*item.originBookmark), script);
    EXPECT_EQ(item.byteSize, 24);
    EXPECT_EQ(item.addedAt, Timestamp::fromDateTime(now));
    EXPECT_FALSE(item.stagedURL);
    EXPECT_FALSE(item.isPromised);
    EXPECT_FALSE(fs::exists(ItemStaging::itemFolder(item.id))) << "copied only off the main thread";

    finishBackgroundWork();
    const ShelfItem* staged = onShelf(item.id);
    ASSERT_TRUE(staged);
    EXPECT_EQ(itemFile(*staged), ItemStaging::itemFolder(item.id) / "build-all");
    EXPECT_EQ(readFile(itemFile(*staged)), readFile(script));
    EXPECT_EQ(staged->contentTypeIdentifier, QStringLiteral("application/x-shellscript"));
    EXPECT_EQ(staged->originURL, item.originURL);
    EXPECT_TRUE(log.warnings().isEmpty());
}

TEST_F(FileItemsTest, SymbolicLinksAreFollowedOnlyWhenAskedAndOnlyToSomethingThere) {
    writeFile(folder / "target.txt", "the target");
    fs::create_symlink(folder / "target.txt", folder / "shortcut");
    fs::create_symlink(folder / "gone.txt", folder / "dangling");

    EXPECT_EQ(dropOne(folder / "shortcut").originURL, LocalPath::toUrl(folder / "shortcut"));

    preferences.setResolveAliasFiles(true);
    const ShelfItem resolved = dropOne(folder / "shortcut");
    EXPECT_EQ(resolved.originURL, LocalPath::toUrl(folder / "target.txt"));
    EXPECT_EQ(resolved.displayName, QStringLiteral("target.txt"));

    const ShelfItem dangling = dropOne(folder / "dangling");
    EXPECT_EQ(dangling.originURL, LocalPath::toUrl(folder / "dangling"));
    EXPECT_EQ(dangling.displayName, QStringLiteral("dangling"));
}

TEST_F(FileItemsTest, AFileThatVanishesBeforeItsCopyLeavesTheShelfAndTheLossIsLogged) {
    writeFile(folder / "brief.txt", "here for a moment");
    const ShelfItem item = dropOne(folder / "brief.txt");
    fs::remove(folder / "brief.txt");

    finishBackgroundWork();
    EXPECT_FALSE(onShelf(item.id)) << "a tile with neither copy nor original";
    EXPECT_TRUE(store.removalHistory().empty());
    EXPECT_FALSE(fs::exists(ItemStaging::itemFolder(item.id)));
    ASSERT_EQ(log.warnings().size(), 1);
    EXPECT_TRUE(log.warnings()[0].contains(QLatin1String("brief.txt")));
}

TEST_F(FileItemsTest, AnUnreadableFileStaysReferencedAndTheLossIsLogged) {
    if (::geteuid() == 0) GTEST_SKIP() << "root reads every file";
    writeFile(folder / "secret.txt", "no peeking");
    ::chmod((folder / "secret.txt").c_str(), 0);
    const ShelfItem item = dropOne(folder / "secret.txt");
    finishBackgroundWork();
    ::chmod((folder / "secret.txt").c_str(), 0600);
    ASSERT_TRUE(onShelf(item.id));
    EXPECT_FALSE(onShelf(item.id)->stagedURL);
    EXPECT_EQ(log.warnings().size(), 1);
}

TEST_F(FileItemsTest, ACopyThatCannotBeKeptLeavesTheItemOnTheOriginalAndSaysWhy) {
    writeFile(folder / "report.pdf", "the only one");
    const ShelfItem item = dropOne(folder / "report.pdf");
    {
        const testing::StagingAreaBlocked blocked;
        finishBackgroundWork();
    }
    const ShelfItem* kept = onShelf(item.id);
    ASSERT_TRUE(kept);
    EXPECT_FALSE(kept->stagedURL);
    EXPECT_EQ(kept->dragURL(), item.originURL);
    EXPECT_FALSE(kept->copyProblem.isEmpty());
    EXPECT_EQ(log.warnings().size(), 1);
}

TEST_F(FileItemsTest, ItemsAFullShelfDropsAtOnceAreNeverCopied) {
    preferences.setMaximumItemCount(2);
    FakePasteboard pasteboard;
    for (const char* name : {"a", "b", "c"}) {
        writeFile(folder / name, name);
        pasteboard.withFile(folder / name);
    }
    const auto items = drop(pasteboard);
    finishBackgroundWork();
    ASSERT_EQ(store.items().size(), 2u);
    EXPECT_TRUE(store.items()[0].stagedURL && store.items()[1].stagedURL);
    EXPECT_FALSE(fs::exists(ItemStaging::itemFolder(items[2].id)));
}

TEST_F(FileItemsTest, ACopyFinishedAfterItsItemLeftForGoodIsDeleted) {
    writeFile(folder / "a.txt", "a");
    writeFile(folder / "b.txt", "b");
    const ShelfItem forgotten = dropOne(folder / "a.txt");
    const ShelfItem undoable = dropOne(folder / "b.txt");
    clock.holdBackgroundWork(true);
    clock.drain();  // the copies are under way
    store.remove({forgotten.id}, false);
    store.remove({undoable.id}, true);
    clock.runBackgroundWork();
    finishBackgroundWork();

    EXPECT_FALSE(fs::exists(ItemStaging::itemFolder(forgotten.id)));
    EXPECT_TRUE(fs::exists(ItemStaging::itemFolder(undoable.id))) << "it can still come back";
}

TEST_F(FileItemsTest, TenThousandFilesInOneDropAreOneBatchAndPushNothingElseOff) {
    preferences.setMaximumItemCount(0);  // no limit
    FakePasteboard earlier;
    earlier.withText(QStringLiteral("already here"));
    drop(earlier);

    FakePasteboard pasteboard;
    for (int i = 0; i < 10000; ++i) {
        const fs::path file = folder / ("file" + std::to_string(i));
        writeFile(file, "x");
        pasteboard.withFile(file);
    }
    const auto items = drop(pasteboard);
    ASSERT_EQ(items.size(), 10000u);
    EXPECT_TRUE(items.front().batchID);
    EXPECT_TRUE(std::all_of(items.begin(), items.end(),
                            [&](const ShelfItem& item) { return item.batchID == items.front().batchID; }));
    ASSERT_EQ(store.items().size(), 10001u);
    EXPECT_EQ(store.items().front().displayName, QStringLiteral("file0"));
    EXPECT_EQ(store.items().back().displayName, QStringLiteral("already here.txt"));
}

}  // namespace
}  // namespace mosswick
