#pragma once

#include <filesystem>
#include <string>

namespace mosswick {

// Copies one regular file or a whole folder tree the fastest way the file system allows.
namespace FileCopier {

// How a regular file's bytes were copied; benchmarks and tests read it.
enum class Method { clone, copyFileRange, readWrite };

// Copies `source` to `destination` (which must not exist). Regular files: a reflink clone
// (FICLONE), else copy_file_range, else a read/write loop, keeping the mode and times. Folders:
// recursively, keeping modes and times; symbolic links are recreated, never followed. Returns an
// empty string on success, else what went wrong (a partial destination is left for the caller
// to remove).
std::string copy(const std::filesystem::path& source, const std::filesystem::path& destination);

// The method the last copy of a regular file on this thread used.
Method lastMethod();

}  // namespace FileCopier
}  // namespace mosswick
