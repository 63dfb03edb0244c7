#include "support/TestFolders.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sys/stat.h>

#include "model/AppFiles.h"

namespace mosswick::testing {

namespace {
std::filesystem::path sandboxRoot;
}

void pointUserFoldersAt(const std::filesystem::path& root) {
    sandboxRoot = root;
    const auto set = [&](const char* variable, const char* folder) {
        const auto path = root / folder;
        std::filesystem::create_directories(path);
        ::chmod(path.c_str(), 0700);
        ::setenv(variable, path.c_str(), 1);
    };
    set("HOME", "home");
    set("XDG_DATA_HOME", "home/.local/share");
    set("XDG_CONFIG_HOME", "home/.config");
    set("XDG_CACHE_HOME", "home/.cache");
    set("XDG_RUNTIME_DIR", "runtime");
}

void clearAppData() {
    const auto& root = AppFiles::root();
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(root, ignored))
        std::filesystem::remove_all(entry.path(), ignored);
}

std::filesystem::path freshFolder(const std::string& name) {
    const auto base = sandboxRoot.empty() ? std::filesystem::temp_directory_path() : sandboxRoot;
    const auto folder = base / "work" / name;
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    return folder;
}

void writeFile(const std::filesystem::path& file, const std::string& bytes) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << bytes;
}

std::string readFile(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

}  // namespace mosswick::testing
