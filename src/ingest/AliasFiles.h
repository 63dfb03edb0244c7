#pragma once

#include <filesystem>

namespace mosswick {

// On Linux an alias is a symbolic link.
namespace AliasFiles {

// What a symbolic link finally leads to, when that exists; anything else (not a link, a dangling
// link, a loop) comes back unchanged, so a link whose target is gone is kept as the link itself.
std::filesystem::path resolve(const std::filesystem::path& file);

}  // namespace AliasFiles
}  // namespace mosswick
