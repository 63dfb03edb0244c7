#include <gtest/gtest.h>

#include <random>

#include "model/FileBookmark.h"
#include "support/TestFolders.h"

using namespace mosswick;
using mosswick::testing::freshFolder;
using mosswick::testing::writeFile;
namespace fs = std::filesystem;

class FileBookmarkTest : public ::testing::Test {
protected:
    void SetUp() override {
        writeFile(original, "the original");
        bookmark = FileBookmark::create(original).value();
    }
    void TearDown() override { fs::remove_all(trash); }

    fs::path folder = freshFolder("bookmark"), original = folder / "Report.txt";
    fs::path trash = fs::path(std::getenv("XDG_DATA_HOME")) / "Trash/files";
    QByteArray bookmark;
};

TEST_F(FileBookmarkTest, FollowsARenameAndAMoveToTheTrashButNoFurther) {
    EXPECT_EQ(FileBookmark::resolve(bookmark), original);
    const fs::path renamed = folder / "Renamed caf\xe9\n.txt";
    fs::rename(original, renamed);
    EXPECT_EQ(FileBookmark::resolve(bookmark), renamed);
    fs::create_directories(trash);
    fs::rename(renamed, trash / "Report.txt");
    EXPECT_EQ(FileBookmark::resolve(bookmark), trash / "Report.txt");
    fs::rename(trash / "Report.txt", freshFolder("elsewhere") / "Report.txt");
    EXPECT_FALSE(FileBookmark::resolve(bookmark));
}

TEST_F(FileBookmarkTest, AnotherFileAtTheOldPathIsNotTheOriginal) {
    fs::rename(original, folder / "moved.txt");
    writeFile(original, "a newcomer");
    EXPECT_EQ(FileBookmark::resolve(bookmark), folder / "moved.txt");
    // Saved over by writing beside and renaming, as editors do: the original inode is gone.
    fs::rename(original, folder / "moved.txt");
    EXPECT_FALSE(FileBookmark::resolve(bookmark));
}

TEST_F(FileBookmarkTest, BlobsThatAreNotOursResolveToNothing) {
    std::mt19937 random(7);
    QByteArray laterVersion = bookmark;
    laterVersion[4] = char(99);
    std::vector<QByteArray> foreign = {{}, "garbage", bookmark.left(10), laterVersion};
    for (int size : {4, 60, 61, 4096}) {
        QByteArray noise(size, '\0');
        for (char& byte : noise) byte = char(random());
        foreign.insert(foreign.end(), {noise, bookmark.left(4) + noise});  // the second with our magic
    }
    for (const QByteArray& blob : foreign)
        EXPECT_FALSE(FileBookmark::resolve(blob)) << blob.toHex().constData();
}
