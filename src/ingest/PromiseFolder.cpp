#include "ingest/PromiseFolder.h"

#include <dirent.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "model/LocalPath.h"

namespace mosswick::PromiseFolder {

std::optional<std::filesystem::path> arrivedFile(const std::filesystem::path& folder,
                                                 const std::filesystem::path& proposedName) {
    if (!proposedName.empty() && LocalPath::exists(folder / proposedName)) return folder / proposedName;
    std::vector<std::string> visible;
    std::vector<std::string> hidden;
    DIR* listing = ::opendir(folder.c_str());
    if (!listing) return std::nullopt;
    while (const dirent* entry = ::readdir(listing)) {
        const char* name = entry->d_name;
        if (std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0) continue;
        (name[0] == '.' ? hidden : visible).emplace_back(name);
    }
    ::closedir(listing);
    const std::vector<std::string>& candidates = visible.empty() ? hidden : visible;
    if (candidates.empty()) return std::nullopt;
    return folder / *std::min_element(candidates.begin(), candidates.end());
}

}  // namespace mosswick::PromiseFolder
