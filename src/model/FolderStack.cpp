#include "model/FolderStack.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace mosswick {

namespace {
constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
}

FolderStack::FolderStack(std::size_t maxOpen) : maxOpen_(maxOpen < 2 ? 2 : maxOpen) {}

FolderStack::~FolderStack() {
    for (const Level& level : levels_) {
        if (level.fd >= 0) ::close(level.fd);
    }
}

bool FolderStack::open(const std::filesystem::path& folder) {
    if (!levels_.empty()) {
        errno = EBUSY;
        return false;
    }
    const int fd = ::open(folder.c_str(), kFolderFlags);
    return fd >= 0 && push(fd);
}

bool FolderStack::enter(const char* name) {
    const int fd = ::openat(this->fd(), name, kFolderFlags | O_NOFOLLOW);
    return fd >= 0 && push(fd);
}

bool FolderStack::push(int fd) {
    Level level{fd, {}};
    if (::fstat(fd, &level.info) != 0) {
        const int error = errno;
        ::close(fd);
        errno = error;
        return false;
    }
    if (!ancestors_.insert(identity(level.info)).second) {
        ::close(fd);
        errno = ELOOP;
        return false;
    }
    levels_.push_back(level);
    if (levels_.size() - firstOpen_ > maxOpen_) {
        ::close(levels_[firstOpen_].fd);
        levels_[firstOpen_].fd = -1;
        ++firstOpen_;
    }
    return true;
}

bool FolderStack::leave() {
    if (levels_.empty()) return true;
    Level child = levels_.back();
    levels_.pop_back();
    ancestors_.erase(identity(child.info));
    if (!levels_.empty() && levels_.back().fd < 0) {
        Level& parent = levels_.back();
        const int fd = ::openat(child.fd, "..", kFolderFlags);
        struct stat info {};
        const bool same = fd >= 0 && ::fstat(fd, &info) == 0 && identity(info) == identity(parent.info);
        const int error = fd < 0 ? errno : ESTALE;
        ::close(child.fd);
        if (!same) {
            if (fd >= 0) ::close(fd);
            errno = error;
            return false;
        }
        parent.fd = fd;
        firstOpen_ = levels_.size() - 1;
        return true;
    }
    ::close(child.fd);
    return true;
}

}  // namespace mosswick
