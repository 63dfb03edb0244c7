#pragma once

#include <filesystem>
#include <string>

namespace mosswick {

// Copies one regular file or a whole folder tree the fastest way the file system allows.
namespace FileCopier {

// The rungs of the copy ladder, fastest first.
enum class Method { clone, copyFileRange, readWrite };

// Copies `source` to `destination` (which must not exist); a symbolic link at `source` itself is
// followed, a dangling one copied as a link. Regular files: a reflink clone (FICLONE), else
// copy_file_range, else a read/write loop, keeping holes, the mode and the times; `firstRung`
// starts further down the ladder. Folders: recursively, keeping modes and times; symbolic links
// inside are recreated, never followed; named pipes are recreated, sockets and devices left out.
// Returns an empty string on success, else what went wrong (a partial destination is left for
// the caller to remove).
std::string copy(const std::filesystem::path& source, const std::filesystem::path& destination,
                 Method firstRung = Method::clone);

// The furthest rung down the ladder that any regular file of the last copy on this thread needed.
Method lastMethod();

// Whether `inner` is `outer` or lies inside it, judged by the folders on disk (through links and
// mounts), not by the names.
bool isWithin(const std::filesystem::path& inner, const std::filesystem::path& outer);

}  // namespace FileCopier
}  // namespace mosswick
