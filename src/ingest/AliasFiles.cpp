#include "ingest/AliasFiles.h"

#include <stdlib.h>
#include <sys/stat.h>

#include <memory>

namespace mosswick::AliasFiles {

std::filesystem::path resolve(const std::filesystem::path& file) {
    struct stat info {};
    if (::lstat(file.c_str(), &info) != 0 || !S_ISLNK(info.st_mode)) return file;
    // realpath fails for a dangling link or a loop, and succeeds only when the target exists.
    const std::unique_ptr<char, decltype(&::free)> target(::realpath(file.c_str(), nullptr), &::free);
    if (!target) return file;
    return std::filesystem::path(target.get());
}

}  // namespace mosswick::AliasFiles
