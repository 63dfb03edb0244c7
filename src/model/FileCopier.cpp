#include "model/FileCopier.h"

#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <optional>
#include <vector>

#include "model/CopyLadder.h"
#include "model/FileDescriptor.h"
#include "model/FolderStack.h"
#include "model/Logging.h"
#include "model/TreeWalk.h"

namespace mosswick::FileCopier {

namespace {

thread_local Method lastUsed = Method::clone;

// What went wrong with one entry; the caller adds where.
struct Fault {
    const char* step;
    int error;
};

std::string describe(const Fault& fault, const std::filesystem::path& path) {
    return std::string(fault.step) + " " + path.string() + ": " + std::strerror(fault.error);
}

void keepTimes(int folderFd, const char* name, const struct stat& info) {
    const timespec times[2] = {info.st_atim, info.st_mtim};
    ::utimensat(folderFd, name, times, AT_SYMLINK_NOFOLLOW);
}

std::optional<Fault> copyFile(int fromFolder, const char* from, int toFolder, const char* to, int openFlags,
                              CopyLadder& ladder) {
    // Non-blocking, so a file swapped for a named pipe cannot hang the copy.
    FileDescriptor source(
        ::openat(fromFolder, from, O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK | openFlags));
    if (!source) return Fault{"open", errno};
    struct stat info {};
    if (::fstat(source.get(), &info) != 0) return Fault{"read", errno};
    if (!S_ISREG(info.st_mode)) return Fault{"copy", EINVAL};

    FileDescriptor destination(
        ::openat(toFolder, to, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!destination) return Fault{"create", errno};
    if (const int error = ladder.copy(source.get(), destination.get(), info)) return Fault{"copy", error};
    ::fchmod(destination.get(), info.st_mode & 07777);
    const timespec times[2] = {info.st_atim, info.st_mtim};
    ::futimens(destination.get(), times);
    if (destination.close() != 0) return Fault{"write", errno};
    return std::nullopt;
}

std::optional<Fault> copyLink(int fromFolder, const char* from, int toFolder, const char* to) {
    struct stat info {};
    if (::fstatat(fromFolder, from, &info, AT_SYMLINK_NOFOLLOW) != 0) return Fault{"look at", errno};
    char target[PATH_MAX];
    const ssize_t length = ::readlinkat(fromFolder, from, target, sizeof target);
    if (length < 0) return Fault{"read link", errno};
    if (static_cast<size_t>(length) >= sizeof target) return Fault{"read link", ENAMETOOLONG};
    target[length] = '\0';
    if (::symlinkat(target, toFolder, to) != 0) return Fault{"create link", errno};
    keepTimes(toFolder, to, info);
    return std::nullopt;
}

// Anything neither file, folder nor link. A named pipe is recreated; a socket or a device is no
// content to keep (and cannot be made without privileges), so it is left out.
std::optional<Fault> copySpecial(int fromFolder, const char* from, int toFolder, const char* to,
                                 const std::filesystem::path& where) {
    struct stat info {};
    if (::fstatat(fromFolder, from, &info, AT_SYMLINK_NOFOLLOW) != 0) return Fault{"look at", errno};
    if (!S_ISFIFO(info.st_mode)) {
        qCInfo(lcStaging) << "Left out of a copy, not a file:" << where.c_str();
        return std::nullopt;
    }
    if (::mkfifoat(toFolder, to, info.st_mode & 07777) != 0) return Fault{"create pipe", errno};
    keepTimes(toFolder, to, info);
    return std::nullopt;
}

// Copies a folder tree entry by entry, mirroring the walk's folders in the destination. A
// folder's mode and times are set once it is full, or adding its entries would change them.
class TreeCopy final : public TreeWalk::Visitor {
public:
    TreeCopy(const TreeWalk& walk, const std::filesystem::path& destination, CopyLadder& ladder)
        : walk_(walk), destination_(destination), ladder_(ladder) {}

    TreeWalk::Step visit(int folderFd, const char* name, TreeWalk::Kind kind) override {
        std::optional<Fault> fault;
        switch (kind) {
            case TreeWalk::Kind::folder:
                return TreeWalk::Step::descend;
            case TreeWalk::Kind::file:
                fault = copyFile(folderFd, name, into_.fd(), name, O_NOFOLLOW, ladder_);
                // Deleted since the folder was listed: nothing left to keep.
                if (fault && fault->error == ENOENT && std::strcmp(fault->step, "open") == 0) fault.reset();
                break;
            case TreeWalk::Kind::symlink:
                fault = copyLink(folderFd, name, into_.fd(), name);
                break;
            case TreeWalk::Kind::other:
                fault = copySpecial(folderFd, name, into_.fd(), name, walk_.pathOf(name));
                break;
        }
        if (!fault) return TreeWalk::Step::next;
        fail(*fault, name);
        return TreeWalk::Step::stop;
    }

    bool entered(const FolderStack& source, const char* name) override {
        const bool top = *name == '\0';
        if ((top ? ::mkdir(destination_.c_str(), S_IRWXU) : ::mkdirat(into_.fd(), name, S_IRWXU)) != 0)
            return fail({"create folder", errno}, name);
        if (!(top ? into_.open(destination_) : into_.enter(name))) return fail({"open folder", errno}, name);
        folderInfo_.push_back(source.info());
        return true;
    }

    bool left(int, const char* name) override {
        const struct stat info = folderInfo_.back();
        folderInfo_.pop_back();
        if (!into_.leave()) return fail({"return from", errno}, name);
        const bool top = into_.empty();
        const int folder = top ? AT_FDCWD : into_.fd();
        const char* path = top ? destination_.c_str() : name;
        // The folder's mode is best effort: its contents are copied already.
        if (::fchmodat(folder, path, info.st_mode & 07777, 0) != 0) {
        }
        keepTimes(folder, path, info);
        return true;
    }

    bool unreadable(const char* name, int error) override { return fail({"open folder", error}, name); }

    const std::string& error() const { return error_; }

private:
    bool fail(const Fault& fault, const char* name) {
        if (error_.empty()) error_ = describe(fault, walk_.pathOf(name));
        return false;
    }

    const TreeWalk& walk_;
    const std::filesystem::path& destination_;
    CopyLadder& ladder_;
    FolderStack into_;
    std::vector<struct stat> folderInfo_;
    std::string error_;
};

std::string copyTree(const std::filesystem::path& source, const std::filesystem::path& destination,
                     CopyLadder& ladder) {
    const std::filesystem::path destinationFolder =
        destination.parent_path().empty() ? "." : destination.parent_path();
    if (isWithin(destinationFolder, source))
        return "copy " + source.string() + ": cannot copy a folder into itself";
    TreeWalk walk;
    TreeCopy copy(walk, destination, ladder);
    if (walk.run(source, copy)) return {};
    if (!copy.error().empty()) return copy.error();
    return describe({"copy", walk.error()}, source);
}

}  // namespace

std::string copy(const std::filesystem::path& source, const std::filesystem::path& destination,
                 Method firstRung) {
    CopyLadder ladder(firstRung);
    std::string error;
    struct stat info {};
    if (::stat(source.c_str(), &info) != 0) {
        const Fault fault{"look at", errno};
        struct stat link {};
        const bool dangling = ::lstat(source.c_str(), &link) == 0 && S_ISLNK(link.st_mode);
        if (!dangling) return describe(fault, source);
        if (const auto linkFault = copyLink(AT_FDCWD, source.c_str(), AT_FDCWD, destination.c_str()))
            error = describe(*linkFault, source);
    } else if (S_ISDIR(info.st_mode)) {
        error = copyTree(source, destination, ladder);
    } else if (S_ISREG(info.st_mode)) {
        if (const auto fault = copyFile(AT_FDCWD, source.c_str(), AT_FDCWD, destination.c_str(), 0, ladder))
            error = describe(*fault, fault->step == std::string_view("create") ? destination : source);
    } else {
        error = "copy " + source.string() + ": neither a file nor a folder";
    }
    lastUsed = ladder.lowestRungUsed();
    return error;
}

Method lastMethod() { return lastUsed; }

bool isWithin(const std::filesystem::path& inner, const std::filesystem::path& outer) {
    struct stat target {};
    if (::stat(outer.c_str(), &target) != 0) return false;
    struct stat info {};
    if (::stat(inner.c_str(), &info) != 0) return false;
    if (info.st_dev == target.st_dev && info.st_ino == target.st_ino) return true;

    const std::filesystem::path start = S_ISDIR(info.st_mode) ? inner : inner.parent_path();
    FileDescriptor folder(::open(start.empty() ? "." : start.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    // Up through "..", which follows the folders as they are on disk; "/" is its own parent.
    while (folder && ::fstat(folder.get(), &info) == 0) {
        if (info.st_dev == target.st_dev && info.st_ino == target.st_ino) return true;
        FileDescriptor parent(::openat(folder.get(), "..", O_PATH | O_DIRECTORY | O_CLOEXEC));
        struct stat above {};
        if (!parent || ::fstat(parent.get(), &above) != 0) return false;
        if (above.st_dev == info.st_dev && above.st_ino == info.st_ino) return false;
        folder = std::move(parent);
    }
    return false;
}

}  // namespace mosswick::FileCopier
