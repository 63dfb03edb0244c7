#include "model/FileRemover.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "model/TreeWalk.h"

namespace mosswick::FileRemover {

namespace {

std::string describe(const char* step, const std::filesystem::path& path, int error) {
    return std::string(step) + " " + path.string() + ": " + std::strerror(error);
}

class Removal final : public TreeWalk::Visitor {
public:
    explicit Removal(const TreeWalk& walk) : walk_(walk) {}

    TreeWalk::Step visit(int folderFd, const char* name, TreeWalk::Kind kind) override {
        if (kind == TreeWalk::Kind::folder) {
            // A read-only or unlistable folder of a copy must still be emptied.
            if (::fchmodat(folderFd, name, S_IRWXU, 0) != 0) {
                // Nothing to say yet: removing what is inside reports why, if it fails too.
            }
            return TreeWalk::Step::descend;
        }
        if (::unlinkat(folderFd, name, 0) != 0 && errno != ENOENT) note("remove", name, errno);
        return TreeWalk::Step::next;
    }

    bool left(int parentFd, const char* name) override {
        if (parentFd >= 0 && ::unlinkat(parentFd, name, AT_REMOVEDIR) != 0 && errno != ENOENT)
            note("remove", name, errno);
        return true;
    }

    bool unreadable(const char* name, int error) override {
        note("open", name, error);
        return true;
    }

    const std::string& firstError() const { return firstError_; }

private:
    void note(const char* step, const char* name, int error) {
        if (firstError_.empty()) firstError_ = describe(step, walk_.pathOf(name), error);
    }

    const TreeWalk& walk_;
    std::string firstError_;
};

}  // namespace

std::string removeAll(const std::filesystem::path& path) {
    struct stat info {};
    if (::lstat(path.c_str(), &info) != 0) {
        return errno == ENOENT ? std::string() : describe("look at", path, errno);
    }
    if (!S_ISDIR(info.st_mode)) {
        if (::unlink(path.c_str()) == 0 || errno == ENOENT) return {};
        return describe("remove", path, errno);
    }
    ::chmod(path.c_str(), S_IRWXU);
    TreeWalk walk;
    Removal removal(walk);
    const bool walked = walk.run(path, removal);
    if (::rmdir(path.c_str()) == 0 || errno == ENOENT) return {};
    const int error = errno;
    if (!removal.firstError().empty()) return removal.firstError();
    if (!walked && walk.error() != 0) return describe("walk", path, walk.error());
    return describe("remove", path, error);
}

}  // namespace mosswick::FileRemover
