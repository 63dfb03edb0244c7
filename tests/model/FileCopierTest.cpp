#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <random>
#include <string>

#include "model/FileCopier.h"
#include "model/FileDescriptor.h"
#include "ModelTestHelpers.h"

namespace mosswick {
namespace {

namespace fs = std::filesystem;
using FileCopier::Method;
using testing::readFile;
using testing::Scratch;
using testing::writeFile;

std::string noise(std::size_t length, unsigned seed) {
    std::mt19937 generator(seed);
    std::string bytes(length, '\0');
    for (char& byte : bytes) byte = static_cast<char>(generator());
    return bytes;
}

void setTimes(const fs::path& path, time_t seconds, long nanoseconds) {
    const timespec times[2] = {{seconds - 100, 0}, {seconds, nanoseconds}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW), 0) << path;
}

struct stat statusOf(const fs::path& path) {
    struct stat info {};
    ::lstat(path.c_str(), &info);
    return info;
}

// A file of `size` bytes holding `pieces` of data at the given offsets and holes elsewhere.
void writeSparse(const fs::path& path, off_t size, const std::map<off_t, std::string>& pieces) {
    FileDescriptor fd(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644));
    ASSERT_TRUE(fd);
    for (const auto& [offset, bytes] : pieces) {
        ASSERT_EQ(::pwrite(fd.get(), bytes.data(), bytes.size(), offset), static_cast<ssize_t>(bytes.size()));
    }
    ASSERT_EQ(::ftruncate(fd.get(), size), 0);
}

// Everything about a tree that a faithful copy keeps: kinds, modes, modification times, contents
// and link targets, keyed by the path inside the tree.
std::map<std::string, std::string> snapshot(const fs::path& top) {
    std::map<std::string, std::string> entries;
    const auto describe = [](const fs::path& path) {
        const struct stat info = statusOf(path);
        std::string text = std::to_string(info.st_mode) + " " + std::to_string(info.st_mtim.tv_sec) + "." +
                           std::to_string(info.st_mtim.tv_nsec);
        if (S_ISREG(info.st_mode)) text += " data:" + readFile(path);
        if (S_ISLNK(info.st_mode)) text += " link:" + fs::read_symlink(path).string();
        return text;
    };
    entries["."] = describe(top);
    for (const auto& entry : fs::recursive_directory_iterator(top))
        entries[fs::relative(entry.path(), top).string()] = describe(entry.path());
    return entries;
}

// A folder with a bit of everything a user's folder holds.
fs::path makeRichTree(const fs::path& top) {
    writeFile(top / "plain.txt", "plain");
    writeFile(top / "big.bin", noise(3 * 1024 * 1024 + 17, 1));
    writeFile(top / "empty", "");
    writeFile(top / ".hidden", "hidden");
    writeFile(top / ".config" / "inside", "in a hidden folder");
    writeFile(top / "caf\xe9 latin-1.txt", "not UTF-8");
    writeFile(top / "line\nbreak", "newline in the name");
    writeFile(top / "nested" / "deeper" / "leaf", "leaf");
    fs::create_directories(top / "empty folder");
    fs::create_symlink("plain.txt", top / "relative link");
    fs::create_symlink("/nonexistent/target", top / "dangling link");
    fs::create_symlink(".", top / "nested" / "loop");
    ::mkfifo((top / "pipe").c_str(), 0640);
    ::chmod((top / "plain.txt").c_str(), 0640);
    ::chmod((top / "big.bin").c_str(), 0755);
    ::chmod((top / "nested" / "deeper").c_str(), 0555);
    ::chmod((top / "nested").c_str(), 0750);
    setTimes(top / "plain.txt", 1'500'000'000, 123'456'789);
    setTimes(top / "relative link", 1'400'000'000, 5);
    setTimes(top / "nested" / "deeper", 1'300'000'000, 42);
    setTimes(top / "nested", 1'200'000'000, 0);
    setTimes(top, 1'100'000'000, 7);
    return top;
}

// ---- The ladder: every rung copies every kind of file faithfully ------------------------------

struct LadderCase {
    const char* name;
    Method firstRung;
};

class CopyLadderRungs : public ::testing::TestWithParam<LadderCase> {};

TEST_P(CopyLadderRungs, KeepHolesOfSparseFilesAndTheirLength) {
    const Scratch folder(std::string("sparse-") + GetParam().name);
    const off_t size = 16 * 1024 * 1024;
    const std::map<off_t, std::string> pieces = {
        {0, "start"}, {5 * 1024 * 1024, noise(70000, 3)}, {size - 4096 - 9, "near end"}};
    writeSparse(folder / "disk.img", size, pieces);
    writeSparse(folder / "trailing-hole.img", size, {{4096, "only data"}});
    for (const char* name : {"disk.img", "trailing-hole.img"}) {
        SCOPED_TRACE(name);
        const fs::path copy = folder / (std::string(name) + ".copy");
        ASSERT_EQ(FileCopier::copy(folder / name, copy, GetParam().firstRung), "");
        EXPECT_EQ(readFile(copy), readFile(folder / name));
        EXPECT_EQ(statusOf(copy).st_size, size);
        EXPECT_LT(statusOf(copy).st_blocks * 512, 1024 * 1024) << "holes were filled in";
    }
}

TEST_P(CopyLadderRungs, CopyProcfsFilesThatReportSizeZeroInFull) {
    const Scratch folder(std::string("procfs-") + GetParam().name);
    ASSERT_EQ(statusOf("/proc/version").st_size, 0) << "procfs no longer reports size 0";
    ASSERT_EQ(FileCopier::copy("/proc/version", folder / "version", GetParam().firstRung), "");
    EXPECT_EQ(readFile(folder / "version"), readFile("/proc/version"));
    EXPECT_FALSE(readFile(folder / "version").empty());
    EXPECT_EQ(FileCopier::lastMethod(), Method::readWrite);
}

TEST_P(CopyLadderRungs, CopyFilesOfEverySizeAndFoldersWithModesTimesLinksAndOddNames) {
    const Scratch folder(std::string("tree-") + GetParam().name);
    const fs::path source = makeRichTree(folder / "source");
    const auto before = snapshot(source);

    ASSERT_EQ(FileCopier::copy(source, folder / "copy", GetParam().firstRung), "");

    EXPECT_EQ(snapshot(folder / "copy"), before);
    // Clones are refused here (ext4), so a copy lands on the requested rung or below it.
    EXPECT_GE(FileCopier::lastMethod(), GetParam().firstRung);
    if (GetParam().firstRung == Method::readWrite) {
        EXPECT_EQ(FileCopier::lastMethod(), Method::readWrite);
    }
    EXPECT_EQ(snapshot(source), before) << "the source was altered";
}

INSTANTIATE_TEST_SUITE_P(FileCopier, CopyLadderRungs,
                         ::testing::Values(LadderCase{"clone", Method::clone},
                                           LadderCase{"copyFileRange", Method::copyFileRange},
                                           LadderCase{"readWrite", Method::readWrite}),
                         [](const auto& test) { return std::string(test.param.name); });

// ---- What a copy does with unusual sources ----------------------------------------------------

TEST(FileCopier, FollowsALinkGivenAsSourceButCopiesADanglingOneAsALink) {
    const Scratch folder("top-links");
    writeFile(folder / "target.txt", "target");
    fs::create_symlink(folder / "target.txt", folder / "link");
    fs::create_symlink("nowhere", folder / "dangling");

    ASSERT_EQ(FileCopier::copy(folder / "link", folder / "link.copy"), "");
    EXPECT_FALSE(fs::is_symlink(folder / "link.copy"));
    EXPECT_EQ(readFile(folder / "link.copy"), "target");

    ASSERT_EQ(FileCopier::copy(folder / "dangling", folder / "dangling.copy"), "");
    EXPECT_EQ(fs::read_symlink(folder / "dangling.copy"), "nowhere");
}

TEST(FileCopier, RefusesWhatCannotBeCopiedWithoutHangingOrClobbering) {
    const Scratch folder("refusals");
    ::mkfifo((folder / "pipe").c_str(), 0600);
    writeFile(folder / "a", "new");
    writeFile(folder / "existing", "old");
    writeFile(folder / "tree" / "file", "x");

    EXPECT_NE(FileCopier::copy(folder / "pipe", folder / "pipe.copy"), "");
    EXPECT_NE(FileCopier::copy(folder / "missing", folder / "missing.copy"), "");
    EXPECT_NE(FileCopier::copy(folder / "a", folder / "existing"), "");
    EXPECT_EQ(readFile(folder / "existing"), "old");
    const std::string intoItself = FileCopier::copy(folder / "tree", folder / "tree" / "copy");
    EXPECT_NE(intoItself.find("into itself"), std::string::npos) << intoItself;
    EXPECT_FALSE(fs::exists(folder / "tree" / "copy"));
}

// Lowers the process's descriptor limit while it lives.
class DescriptorLimit {
public:
    explicit DescriptorLimit(rlim_t limit) {
        ::getrlimit(RLIMIT_NOFILE, &saved_);
        rlimit lowered = saved_;
        lowered.rlim_cur = limit;
        ::setrlimit(RLIMIT_NOFILE, &lowered);
    }
    ~DescriptorLimit() { ::setrlimit(RLIMIT_NOFILE, &saved_); }

private:
    rlimit saved_{};
};

TEST(FileCopier, CopiesAndRemovesTreesDeeperThanPathMaxAndTheDescriptorLimit) {
    const Scratch folder("deep");
    const std::string level(40, 'd');
    const int depth = 300;  // about 12,000 bytes of path
    {
        FileDescriptor current(::open(folder.c_str(), O_RDONLY | O_DIRECTORY));
        ASSERT_EQ(::mkdirat(current.get(), "source", 0755), 0);
        current = FileDescriptor(::openat(current.get(), "source", O_RDONLY | O_DIRECTORY));
        for (int i = 0; i < depth; ++i) {
            ASSERT_EQ(::mkdirat(current.get(), level.c_str(), 0755), 0);
            current = FileDescriptor(::openat(current.get(), level.c_str(), O_RDONLY | O_DIRECTORY));
            ASSERT_TRUE(current);
        }
        FileDescriptor leaf(::openat(current.get(), "leaf", O_WRONLY | O_CREAT, 0644));
        ASSERT_EQ(::write(leaf.get(), "bottom", 6), 6);
    }

    {
        const DescriptorLimit limit(128);  // a folder per descriptor would need 600
        ASSERT_EQ(FileCopier::copy(folder / "source", folder / "copy"), "");
    }

    FileDescriptor current(::open((folder / "copy").c_str(), O_RDONLY | O_DIRECTORY));
    for (int i = 0; i < depth && current; ++i)
        current = FileDescriptor(::openat(current.get(), level.c_str(), O_RDONLY | O_DIRECTORY));
    ASSERT_TRUE(current);
    FileDescriptor leaf(::openat(current.get(), "leaf", O_RDONLY));
    char bytes[16] = {};
    EXPECT_EQ(::read(leaf.get(), bytes, sizeof bytes), 6);
    EXPECT_STREQ(bytes, "bottom");
    EXPECT_EQ(FileRemover::removeAll(folder), "");
    EXPECT_FALSE(fs::exists(folder.c_str()));
}

TEST(FileCopier, TellsWhetherOnePathLiesInsideAnother) {
    const Scratch folder("within");
    fs::create_directories(folder / "a" / "b");
    fs::create_directories(folder / "sibling");
    writeFile(folder / "a" / "b" / "file", "x");
    fs::create_directory_symlink(folder / "a", folder / "link to a");
    const struct {
        fs::path inner;
        fs::path outer;
        bool within;
    } cases[] = {
        {folder / "a", folder / "a", true},
        {folder / "a" / "b", folder / "a", true},
        {folder / "a" / "b" / "file", folder / "a", true},
        {folder / "link to a" / "b", folder / "a", true},
        {folder / "a", folder / "a" / "b", false},
        {folder / "sibling", folder / "a", false},
        {folder / "missing", folder / "a", false},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(FileCopier::isWithin(row.inner, row.outer), row.within) << row.inner << " in " << row.outer;
    }
}

}  // namespace
}  // namespace mosswick
