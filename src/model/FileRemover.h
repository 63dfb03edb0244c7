#pragma once

#include <filesystem>
#include <string>

namespace mosswick {

// Removes a file, a symbolic link (never what it points to) or a whole folder tree, however deep
// and whatever its permissions: the shelf's copies keep their originals' modes, read-only
// folders included.
namespace FileRemover {

// Removes `path` and everything in it. Nothing there counts as success. Returns an empty string
// on success, else what could not be removed (as much as possible is removed anyway).
std::string removeAll(const std::filesystem::path& path);

}  // namespace FileRemover
}  // namespace mosswick
