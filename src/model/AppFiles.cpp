#include "model/AppFiles.h"

namespace mosswick::AppFiles {
const std::filesystem::path& root() {
    static std::filesystem::path p;
    return p;
}
std::filesystem::path stagingDirectory() { return root() / "Staged"; }
std::filesystem::path saveFile() { return root() / "shelf.json"; }
bool makePrivateDirectory(const std::filesystem::path&) { return false; }
}  // namespace mosswick::AppFiles
