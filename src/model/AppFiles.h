#pragma once

#include <filesystem>

namespace mosswick {

// Where Mosswick keeps its data: "$XDG_DATA_HOME/Mosswick" (default ~/.local/share/Mosswick)
// holding the save file "shelf.json" and the staging folder "Staged". Both folders are
// private to the user (0700) and are created when asked for.
namespace AppFiles {

// Computed once, on first use; creation failures are ignored (the path is returned anyway).
const std::filesystem::path& root();
// root()/"Staged", created on every call.
std::filesystem::path stagingDirectory();
// root()/"shelf.json".
std::filesystem::path saveFile();

// Makes sure `folder` is a real folder owned by this user and private to them: one left open to
// others is closed to 0700, a symbolic link or anything else in its place is renamed aside
// (logged) and a new folder made. False when that fails.
bool makeOwnFolder(const std::filesystem::path& folder);

// Creates `folder` and missing parents; the folders this creates are made 0700. False on failure.
bool makePrivateDirectory(const std::filesystem::path& folder);

}  // namespace AppFiles
}  // namespace mosswick
