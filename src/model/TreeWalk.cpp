#include "model/TreeWalk.h"

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>

namespace mosswick {

namespace {

constexpr std::size_t kListBufferSize = 64 * 1024;

bool isDotOrDotDot(const char* name) {
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

// The kind of an entry whose listing did not say; nothing when it is gone already.
std::optional<TreeWalk::Kind> lookUp(int folderFd, const char* name) {
    struct stat info {};
    if (::fstatat(folderFd, name, &info, AT_SYMLINK_NOFOLLOW) != 0) {
        if (errno == ENOENT) return std::nullopt;
        return TreeWalk::Kind::other;
    }
    if (S_ISDIR(info.st_mode)) return TreeWalk::Kind::folder;
    if (S_ISREG(info.st_mode)) return TreeWalk::Kind::file;
    if (S_ISLNK(info.st_mode)) return TreeWalk::Kind::symlink;
    return TreeWalk::Kind::other;
}

std::optional<TreeWalk::Kind> kindOf(std::uint8_t type, int folderFd, const char* name) {
    switch (type) {
        case DT_DIR:
            return TreeWalk::Kind::folder;
        case DT_REG:
            return TreeWalk::Kind::file;
        case DT_LNK:
            return TreeWalk::Kind::symlink;
        case DT_UNKNOWN:
            return lookUp(folderFd, name);
        default:
            return TreeWalk::Kind::other;
    }
}

}  // namespace

bool TreeWalk::list(int fd, Frame& frame) {
    if (buffer_.empty()) buffer_.resize(kListBufferSize);
    for (;;) {
        const ssize_t filled = ::getdents64(fd, buffer_.data(), buffer_.size());
        if (filled < 0) {
            if (errno == EINTR) continue;
            return false;
        }
        if (filled == 0) return true;
        for (ssize_t at = 0; at < filled;) {
            const auto* record = reinterpret_cast<const struct dirent64*>(buffer_.data() + at);
            at += record->d_reclen;
            if (isDotOrDotDot(record->d_name)) continue;
            frame.entries.push_back({static_cast<std::uint32_t>(frame.names.size()), record->d_type});
            frame.names.append(record->d_name, std::strlen(record->d_name) + 1);
        }
    }
}

bool TreeWalk::stopWith(int error) {
    error_ = error;
    return false;
}

std::filesystem::path TreeWalk::pathOf(const char* name) const {
    std::filesystem::path path = top_;
    for (std::size_t i = 1; i < frames_.size(); ++i) path /= frames_[i].name;
    return *name ? path / name : path;
}

bool TreeWalk::run(const std::filesystem::path& top, Visitor& visitor) {
    top_ = top;
    frames_.clear();
    error_ = 0;
    FolderStack folders;
    frames_.emplace_back();
    if (!folders.open(top) || !list(folders.fd(), frames_.back())) return stopWith(errno);
    if (!visitor.entered(folders, "")) return false;

    while (!frames_.empty()) {
        Frame& frame = frames_.back();
        if (frame.next == frame.entries.size()) {
            const std::string name = std::move(frame.name);
            frames_.pop_back();
            if (!folders.leave()) return stopWith(errno);
            if (!visitor.left(frames_.empty() ? -1 : folders.fd(), name.c_str())) return false;
            continue;
        }
        const Entry entry = frame.entries[frame.next++];
        const char* name = frame.names.data() + entry.offset;
        const std::optional<Kind> kind = kindOf(entry.type, folders.fd(), name);
        if (!kind) continue;
        const Step step = visitor.visit(folders.fd(), name, *kind);
        if (step == Step::stop) return false;
        if (step != Step::descend || *kind != Kind::folder) continue;

        Frame child;
        child.name = name;
        if (!folders.enter(name)) {
            const int error = errno;
            if (visitor.unreadable(child.name.c_str(), error)) continue;
            return stopWith(error);
        }
        if (!list(folders.fd(), child)) {
            const int error = errno;
            if (!folders.leave()) return stopWith(errno);
            if (visitor.unreadable(child.name.c_str(), error)) continue;
            return stopWith(error);
        }
        frames_.push_back(std::move(child));
        if (!visitor.entered(folders, frames_.back().name.c_str())) return false;
    }
    return true;
}

}  // namespace mosswick
