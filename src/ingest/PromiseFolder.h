#pragma once

#include <filesystem>
#include <optional>

namespace mosswick {

// The item's folder a promised file is delivered into.
namespace PromiseFolder {

// What the source delivered: the proposed name when something is there, else what it wrote under
// a name of its own (some sources keep their own name and use only the folder asked for): a
// visible entry before a hidden one, the first by name among several. Nothing in an empty folder.
std::optional<std::filesystem::path> arrivedFile(const std::filesystem::path& folder,
                                                 const std::filesystem::path& proposedName);

}  // namespace PromiseFolder
}  // namespace mosswick
