#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QStringList>
#include <QUuid>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <variant>

#include "model/AppFiles.h"
#include "model/FileDescriptor.h"
#include "model/ItemStaging.h"
#include "model/WholeFile.h"
#include "ModelTestHelpers.h"

namespace mosswick {
namespace {

namespace fs = std::filesystem;
using testing::readFile;
using testing::Scratch;
using testing::writeFile;

const QUuid kItem = QUuid::fromString(QStringLiteral("{6f1c2a3b-4d5e-4f60-8a9b-0c1d2e3f4a5b}"));
const char* const kItemFolderName = "6F1C2A3B-4D5E-4F60-8A9B-0C1D2E3F4A5B";

struct StagingLog : testing::CategoryWarnings {
    StagingLog() : CategoryWarnings("mosswick.staging") {}
};

fs::path staged(const ItemStaging::Result<fs::path>& result) {
    if (const auto* failure = std::get_if<ItemStaging::Failure>(&result)) {
        ADD_FAILURE() << "staging failed: " << failure->message;
        return {};
    }
    return std::get<fs::path>(result);
}

unsigned modeOf(const fs::path& path) {
    struct stat info {};
    ::lstat(path.c_str(), &info);
    return info.st_mode & 07777;
}

std::vector<std::string> namesIn(const fs::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

ItemStaging::CopyStep failingCopy(bool leaveDebris) {
    return [leaveDebris](const fs::path&, const fs::path& to) {
        if (leaveDebris) writeFile(to, "half a copy");
        return std::string("injected failure");
    };
}

class ItemStagingTest : public ::testing::Test {
protected:
    void SetUp() override { testing::clearAppData(); }
};

// ---- Where things live ------------------------------------------------------------------------

TEST_F(ItemStagingTest, TheStagingFolderIsMadeAgainPrivateOnAccess) {
    fs::remove_all(AppFiles::root() / "Staged");
    EXPECT_EQ(AppFiles::stagingDirectory(), fs::path(std::getenv("XDG_DATA_HOME")) / "Mosswick" / "Staged");
    EXPECT_TRUE(fs::is_directory(AppFiles::root() / "Staged"));
    EXPECT_EQ(modeOf(AppFiles::root() / "Staged"), 0700u);
}

TEST_F(ItemStagingTest, MakesMissingParentsPrivateWhateverTheUmask) {
    const Scratch folder("private");
    writeFile(folder / "a file", "x");
    const mode_t umask = ::umask(0);
    EXPECT_TRUE(AppFiles::makePrivateDirectory(folder / "one" / "two" / "three/"));
    EXPECT_TRUE(AppFiles::makePrivateDirectory(folder / "one" / "two"));
    EXPECT_FALSE(AppFiles::makePrivateDirectory(folder / "a file"));
    EXPECT_FALSE(AppFiles::makePrivateDirectory(folder / "a file" / "below"));
    ::umask(umask);
    for (const char* created : {"one", "one/two", "one/two/three"})
        EXPECT_EQ(modeOf(folder / created), 0700u) << created;
}

// ---- Staging and restaging --------------------------------------------------------------------

TEST_F(ItemStagingTest, StagesAFileIntoTheItemsUpperCaseFolderAndReplacesItOnRestaging) {
    const Scratch folder("report");
    writeFile(folder / "Report.pdf", "first");

    const fs::path copy = staged(ItemStaging::stage(folder / "Report.pdf", kItem));
    EXPECT_EQ(copy, ItemStaging::directory() / kItemFolderName / "Report.pdf");
    EXPECT_EQ(ItemStaging::itemFolder(kItem), ItemStaging::directory() / kItemFolderName);
    EXPECT_EQ(staged(ItemStaging::promiseDestination(kItem)), copy.parent_path());
    EXPECT_EQ(readFile(copy), "first");
    EXPECT_EQ(modeOf(copy.parent_path()), 0700u);

    writeFile(folder / "Report.pdf", "second, longer");
    EXPECT_EQ(staged(ItemStaging::stage(folder / "Report.pdf", kItem)), copy);
    EXPECT_EQ(readFile(copy), "second, longer");
    EXPECT_EQ(namesIn(copy.parent_path()), std::vector<std::string>{"Report.pdf"})
        << "debris left beside the copy";
    EXPECT_EQ(readFile(folder / "Report.pdf"), "second, longer") << "the source was altered";
}

TEST_F(ItemStagingTest, RestagingReplacesAFileByAFolderAndBackEvenWhenReadOnly) {
    const Scratch folder("kinds");
    writeFile(folder / "file" / "Thing", "a file");
    writeFile(folder / "tree" / "Thing" / "inside" / "leaf", "a folder");
    ::chmod((folder / "tree" / "Thing" / "inside").c_str(), 0555);
    ::chmod((folder / "tree" / "Thing").c_str(), 0555);

    const fs::path copy = staged(ItemStaging::stage(folder / "file" / "Thing", kItem));
    EXPECT_EQ(staged(ItemStaging::stage(folder / "tree" / "Thing/", kItem)), copy);
    EXPECT_EQ(readFile(copy / "inside" / "leaf"), "a folder");
    EXPECT_EQ(modeOf(copy / "inside"), 0555u);
    EXPECT_EQ(staged(ItemStaging::stage(folder / "tree" / "Thing", kItem)), copy);
    EXPECT_EQ(staged(ItemStaging::stage(folder / "file" / "Thing", kItem)), copy);
    EXPECT_EQ(readFile(copy), "a file");
    EXPECT_EQ(namesIn(copy.parent_path()), std::vector<std::string>{"Thing"});

    ::chmod((folder / "tree" / "Thing").c_str(), 0755);
    ::chmod((folder / "tree" / "Thing" / "inside").c_str(), 0755);
}

TEST_F(ItemStagingTest, RestagingTheCopyItselfOrSomethingInsideItLosesNothing) {
    const Scratch folder("self");
    writeFile(folder / "Box" / "Box", "inner");

    const fs::path copy = staged(ItemStaging::stage(folder / "Box", kItem));
    EXPECT_EQ(staged(ItemStaging::stage(copy, kItem)), copy);
    EXPECT_EQ(readFile(copy / "Box"), "inner");

    const StagingLog log;
    EXPECT_TRUE(std::holds_alternative<ItemStaging::Failure>(ItemStaging::stage(copy / "Box", kItem)));
    EXPECT_EQ(readFile(copy / "Box"), "inner");
}

// ---- The last resort after a failed copy -------------------------------------------------------

TEST_F(ItemStagingTest, AFailedFileCopyFallsBackToReadingTheWholeFile) {
    const Scratch folder("fallback");
    const std::string large(3 * 1024 * 1024, 'L');
    writeFile(folder / "small.txt", "small");
    writeFile(folder / "large.bin", large);
    writeFile(folder / std::string(255, 'n'), "longest name");
    ::chmod((folder / "large.bin").c_str(), 0640);
    const struct {
        const char* name;
        fs::path source;
        bool leaveDebris;
    } cases[] = {
        {"small file", folder / "small.txt", false},
        {"large file over a half copy", folder / "large.bin", true},
        {"procfs file of size 0", "/proc/version", false},
        {"file with the longest name", folder / std::string(255, 'n'), false},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(readFile(staged(ItemStaging::stage(row.source, kItem))), readFile(row.source));
        const fs::path copy = staged(ItemStaging::stage(row.source, kItem, failingCopy(row.leaveDebris)));
        EXPECT_EQ(readFile(copy), readFile(row.source));
        EXPECT_EQ(modeOf(copy), modeOf(row.source));
        EXPECT_EQ(namesIn(copy.parent_path()), std::vector<std::string>{copy.filename().string()});
        ItemStaging::discard(kItem);
    }
    EXPECT_TRUE(WholeFile(folder / "large.bin").isMapped());
    EXPECT_FALSE(WholeFile("/proc/version").isMapped());
}

TEST_F(ItemStagingTest, FailuresThatLoseTheCopyAreReportedAndLoggedAndKeepTheEarlierCopy) {
    const Scratch folder("failures");
    writeFile(folder / "Doc" / "page", "page");
    writeFile(folder / "notes.txt", "notes");
    ::mkfifo((folder / "pipe").c_str(), 0600);
    const fs::path earlier = staged(ItemStaging::stage(folder / "Doc", kItem));

    const struct {
        const char* name;
        fs::path source;
        ItemStaging::CopyStep copy;
    } cases[] = {
        {"folder whose copy fails", folder / "Doc", failingCopy(true)},
        {"missing source", folder / "Gone.txt", failingCopy(false)},
        {"named pipe", folder / "pipe", failingCopy(false)},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        const StagingLog log;
        const auto result = ItemStaging::stage(row.source, kItem, row.copy);
        ASSERT_TRUE(std::holds_alternative<ItemStaging::Failure>(result));
        EXPECT_FALSE(std::get<ItemStaging::Failure>(result).message.empty());
        EXPECT_EQ(log.warnings().size(), 1);
    }
    EXPECT_EQ(readFile(earlier / "page"), "page");
    EXPECT_EQ(namesIn(earlier.parent_path()), std::vector<std::string>{"Doc"});
}

// ---- Pruning and discarding ------------------------------------------------------------

TEST_F(ItemStagingTest, PruneKeepsOnlyTheFoldersOfKeptItems) {
    const QUuid other = QUuid::createUuid();
    const fs::path staging = ItemStaging::directory();
    const Scratch outside("prune-outside");
    writeFile(outside / "precious", "keep me");
    const std::string keptLower = QUuid::createUuid().toString(QUuid::WithoutBraces).toLower().toStdString();
    const std::string keptFile = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper().toStdString();
    const std::string keptLink = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper().toStdString();
    const std::set<QUuid> keeping = {kItem, QUuid::fromString(keptLower), QUuid::fromString(keptFile),
                                     QUuid::fromString(keptLink)};

    writeFile(staging / kItemFolderName / "kept.txt", "kept");
    writeFile(staging / keptLower / "lower.txt", "kept too");
    writeFile(staging / other.toString(QUuid::WithoutBraces).toUpper().toStdString() / "orphan", "x");
    writeFile(staging / other.toString().toStdString() / "braced", "x");
    writeFile(staging / ".directory", "folder view settings");
    writeFile(staging / "temp" / "leftover", "x");
    writeFile(staging / "\xff\xfe not UTF-8", "x");
    writeFile(staging / keptFile, "a file, not a folder");
    fs::create_directory_symlink(outside, staging / keptLink);
    writeFile(staging / "read-only" / "sub" / "file", "x");
    ::chmod((staging / "read-only" / "sub").c_str(), 0500);

    ItemStaging::pruneOrphans(keeping);

    std::vector<std::string> expected = {kItemFolderName, keptLower};
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(namesIn(staging), expected);
    EXPECT_EQ(readFile(staging / keptLower / "lower.txt"), "kept too");
    EXPECT_EQ(readFile(outside / "precious"), "keep me") << "pruning followed a link";
}

TEST_F(ItemStagingTest, DiscardRemovesTheItemsFolderAndIgnoresOneThatIsNotThere) {
    const Scratch folder("discard");
    writeFile(folder / "Tree" / "locked" / "file", "x");
    ::chmod((folder / "Tree" / "locked").c_str(), 0500);
    staged(ItemStaging::stage(folder / "Tree", kItem));
    ::chmod((folder / "Tree" / "locked").c_str(), 0700);

    ItemStaging::discard(kItem);
    EXPECT_FALSE(fs::exists(ItemStaging::itemFolder(kItem)));
    const StagingLog log;
    ItemStaging::discard(QUuid::createUuid());
    EXPECT_TRUE(log.warnings().isEmpty());
}

// ---- Sizes ------------------------------------------------------------------------------------

TEST_F(ItemStagingTest, SizesCountVisibleFilesAndNeverFollowLinks) {
    const Scratch folder("sizes");
    writeFile(folder / "ten.txt", "0123456789");
    writeFile(folder / "Folder" / "ten.txt", "0123456789");
    writeFile(folder / "Folder" / ".hidden", "12345");
    writeFile(folder / "Folder" / ".hidden folder" / "seven", "1234567");
    writeFile(folder / "Folder" / "nested" / "three", "123");
    fs::create_symlink(folder / "ten.txt", folder / "Folder" / "link to file");
    fs::create_directory_symlink(folder / "Folder", folder / "Folder" / "nested" / "loop");
    fs::create_directory_symlink(folder / "Folder", folder / "link to folder");
    writeFile(folder / ".hidden top" / "four", "1234");
    {
        FileDescriptor sparse(::open((folder / "sparse").c_str(), O_WRONLY | O_CREAT, 0644));
        ASSERT_EQ(::ftruncate(sparse.get(), 1 << 30), 0);
    }

    const struct {
        fs::path path;
        qint64 size;
        qint64 deepSize;
    } cases[] = {
        {folder / "ten.txt", 10, 10},
        {folder / "Folder", 0, 13},
        {folder / "link to folder", 0, 13},
        {folder / ".hidden top", 0, 4},
        {folder / "sparse", 1 << 30, 1 << 30},
        {folder / "missing", 0, 0},
        {"/proc/version", 0, 0},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(ItemStaging::fileSize(row.path), row.size) << row.path;
        EXPECT_EQ(ItemStaging::deepFileSize(row.path), row.deepSize) << row.path;
    }
}

TEST_F(ItemStagingTest, DeepSizeSkipsUnreadableFolders) {
    if (::geteuid() == 0) GTEST_SKIP() << "root reads every folder";
    const Scratch folder("unreadable");
    writeFile(folder / "Folder" / "readable", "12");
    writeFile(folder / "Folder" / "locked" / "secret", "1234");
    ::chmod((folder / "Folder" / "locked").c_str(), 0);
    EXPECT_EQ(ItemStaging::deepFileSize(folder / "Folder"), 2);
    ::chmod((folder / "Folder" / "locked").c_str(), 0700);
}

// ---- Content types ----------------------------------------------------------------------------

TEST_F(ItemStagingTest, ContentTypesComeFromNameAndContentsWhateverTheNamesBytes) {
    const Scratch folder("types");
    const std::string png("\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\0\0\x01\0\0\0\x01\x08\x06\0\0\0", 29);
    writeFile(folder / "notes.txt", "plain words\n");
    writeFile(folder / "picture", png);
    writeFile(folder / "caf\xe9 picture", png);
    writeFile(folder / "r\xe9sum\xe9.txt", "plain words\n");
    writeFile(folder / "blob.unknown-extension", std::string("\x01\x02\x03\xff\xfe\x00\x07", 7));
    fs::create_directories(folder / "caf\xe9 folder");
    ::mkfifo((folder / "pipe").c_str(), 0600);

    const struct {
        fs::path path;
        const char* type;
    } cases[] = {
        {folder / "notes.txt", "text/plain"},
        {folder / "picture", "image/png"},
        {folder / "caf\xe9 picture", "image/png"},
        {folder / "r\xe9sum\xe9.txt", "text/plain"},
        {folder / "blob.unknown-extension", "application/octet-stream"},
        {folder / "caf\xe9 folder", "inode/directory"},
        {folder / "missing.txt", "application/octet-stream"},
        {folder / "pipe", "inode/fifo"},
        {"/proc/version", "text/plain"},
    };
    for (const auto& row : cases)
        EXPECT_EQ(ItemStaging::contentType(row.path).toStdString(), row.type) << row.path;
}

}  // namespace
}  // namespace mosswick
