#pragma once

#include <sys/stat.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <set>
#include <utility>
#include <vector>

namespace mosswick {

// The chain of open folders from the top of a tree down to the one being worked in. Only the
// deepest few keep their descriptors, so a tree of any depth can be walked without running out
// of descriptors or past PATH_MAX: a parent whose descriptor was let go is reopened through ".."
// and must still be the folder that was left. A folder that is its own ancestor (a bind mount
// loop) is refused, so no walk can go round in circles.
class FolderStack {
public:
    explicit FolderStack(std::size_t maxOpen = 24);
    ~FolderStack();
    FolderStack(const FolderStack&) = delete;
    FolderStack& operator=(const FolderStack&) = delete;

    // Opens the top folder; a symbolic link there is followed. False with errno set.
    bool open(const std::filesystem::path& folder);
    // Makes the sub folder `name` of the current folder current, never through a symbolic link.
    // False with errno set (ELOOP when it is one of its own ancestors).
    bool enter(const char* name);
    // Makes the parent current again (nothing is current after leaving the top). False with errno
    // set when the parent could not be reopened or is no longer the folder that was left.
    bool leave();

    bool empty() const { return levels_.empty(); }
    std::size_t depth() const { return levels_.size(); }
    // The current folder's descriptor and its status as it was opened.
    int fd() const { return levels_.back().fd; }
    const struct stat& info() const { return levels_.back().info; }

private:
    struct Level {
        int fd;
        struct stat info;
    };
    using Identity = std::pair<std::uint64_t, std::uint64_t>;  // device, inode

    bool push(int fd);
    static Identity identity(const struct stat& info) { return {info.st_dev, info.st_ino}; }

    std::vector<Level> levels_;
    std::set<Identity> ancestors_;
    std::size_t maxOpen_;
    std::size_t firstOpen_ = 0;  // levels below this index have let their descriptor go
};

}  // namespace mosswick
