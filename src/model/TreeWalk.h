#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "model/FolderStack.h"

namespace mosswick {

// Walks a folder tree depth first, in a loop rather than by recursion, so neither a deep tree nor
// a wide one can overflow the stack. A folder's entries are all read before any is visited, so a
// visitor may create or remove entries as it goes. Symbolic links are reported, never followed
// (only the top folder may be reached through one).
class TreeWalk {
public:
    enum class Kind : std::uint8_t { folder, file, symlink, other };
    enum class Step { next, descend, stop };

    class Visitor {
    public:
        virtual ~Visitor() = default;
        // An entry of the current folder `folderFd`; `descend` is honoured for folders only.
        virtual Step visit(int folderFd, const char* name, Kind kind) = 0;
        // A folder was opened and listed and is current now; the top folder comes first, named "".
        virtual bool entered(const FolderStack&, const char* /*name*/) { return true; }
        // Every entry of the folder `name` was visited and its parent `parentFd` is current again
        // (-1 after the top folder).
        virtual bool left(int /*parentFd*/, const char* /*name*/) { return true; }
        // A sub folder could not be opened or listed: true skips it, false stops the walk.
        virtual bool unreadable(const char* /*name*/, int /*error*/) { return false; }
    };

    // Walks the folder `top`. False when the walk stopped early: the top folder could not be
    // read, the visitor stopped it, or the way back up was lost (error() says why, 0 when the
    // visitor stopped it).
    bool run(const std::filesystem::path& top, Visitor& visitor);

    int error() const { return error_; }
    // Where an entry of the current folder is, for messages.
    std::filesystem::path pathOf(const char* name) const;

private:
    struct Entry {
        std::uint32_t offset;  // into Frame::names
        std::uint8_t type;     // a DT_ value
    };
    struct Frame {
        std::string name;
        std::string names;  // the entries' names, each ending in '\0'
        std::vector<Entry> entries;
        std::size_t next = 0;
    };

    bool list(int fd, Frame& frame);
    bool stopWith(int error);

    std::filesystem::path top_;
    std::vector<Frame> frames_;
    std::vector<char> buffer_;
    int error_ = 0;
};

}  // namespace mosswick
