#pragma once

#include <filesystem>
#include <string>

namespace mosswick::testing {

// Sets HOME and every XDG folder (data, config, cache, runtime) below `root`.
void pointUserFoldersAt(const std::filesystem::path& root);

// Empties Mosswick's data folder (the save file and the staging area), so tests that share one
// process start from nothing.
void clearAppData();

// A fresh, empty folder below the sandbox for a test's own files.
std::filesystem::path freshFolder(const std::string& name);

// Writes `bytes` to `file`, creating parent folders.
void writeFile(const std::filesystem::path& file, const std::string& bytes);
std::string readFile(const std::filesystem::path& file);

}  // namespace mosswick::testing
