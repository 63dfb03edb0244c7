#include "model/AppFiles.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QtGlobal>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <vector>

namespace mosswick::AppFiles {

namespace {

bool isFolder(const std::filesystem::path& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

// An absolute path from the environment; XDG says relative ones are to be ignored.
const char* absoluteVariable(const char* name) {
    const char* value = std::getenv(name);
    return value && value[0] == '/' ? value : nullptr;
}

std::filesystem::path homeFolder() {
    if (const char* home = absoluteVariable("HOME")) return home;
    std::vector<char> buffer(16384);
    struct passwd entry {};
    struct passwd* found = nullptr;
    if (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found &&
        found->pw_dir && found->pw_dir[0] == '/')
        return found->pw_dir;
    return {};
}

std::filesystem::path dataHome() {
    if (const char* dataHome = absoluteVariable("XDG_DATA_HOME")) return dataHome;
    const std::filesystem::path home = homeFolder();
    if (home.empty()) qFatal("Mosswick: no home folder to keep its data in");
    return home / ".local" / "share";
}

}  // namespace

const std::filesystem::path& root() {
    static const std::filesystem::path folder = [] {
        std::filesystem::path path = dataHome() / "Mosswick";
        makeOwnFolder(path);
        return path;
    }();
    return folder;
}

std::filesystem::path stagingDirectory() {
    std::filesystem::path folder = root() / "Staged";
    makeOwnFolder(folder);
    return folder;
}

bool makeOwnFolder(const std::filesystem::path& folder) {
    struct stat info {};
    if (::lstat(folder.c_str(), &info) == 0) {
        if (S_ISDIR(info.st_mode) && info.st_uid == ::geteuid()) {
            // Folders left readable by others (by an older version, or by hand) are closed again.
            if ((info.st_mode & 07777) != S_IRWXU && ::chmod(folder.c_str(), S_IRWXU) != 0)
                qWarning("Mosswick: could not make %s private: %s", folder.c_str(), std::strerror(errno));
            return true;
        }
        // A link could send pruning into someone else's files; anything else is not ours to use.
        std::filesystem::path aside = folder;
        aside += std::string(".set-aside-").append(std::to_string(::time(nullptr)));
        if (::rename(folder.c_str(), aside.c_str()) != 0) {
            qWarning("Mosswick: %s is not a folder of this user's and could not be set aside: %s",
                     folder.c_str(), std::strerror(errno));
            return false;
        }
        qWarning("Mosswick: %s was not a folder of this user's; it was set aside as %s", folder.c_str(),
                 aside.c_str());
    }
    return makePrivateDirectory(folder);
}

std::filesystem::path saveFile() { return root() / "shelf.json"; }

bool makePrivateDirectory(const std::filesystem::path& folder) {
    // Missing folders are collected upwards and then made downwards, without recursion.
    std::vector<std::filesystem::path> missing;
    std::filesystem::path next = folder.lexically_normal();
    if (next.has_relative_path() && !next.has_filename()) next = next.parent_path();  // "a/b/" is "a/b"
    while (!next.empty()) {
        if (::mkdir(next.c_str(), S_IRWXU) == 0) {
            // Exactly 0700, whatever the umask says.
            ::chmod(next.c_str(), S_IRWXU);
            break;
        }
        if (errno == EEXIST) {
            if (!isFolder(next)) return false;
            break;
        }
        if (errno != ENOENT) return false;
        missing.push_back(next);
        const std::filesystem::path parent = next.parent_path();
        if (parent == next) return false;
        next = parent;
    }
    if (next.empty()) return false;
    while (!missing.empty()) {
        const std::filesystem::path& path = missing.back();
        if (::mkdir(path.c_str(), S_IRWXU) == 0) {
            ::chmod(path.c_str(), S_IRWXU);
        } else if (errno != EEXIST || !isFolder(path)) {
            return false;
        }
        missing.pop_back();
    }
    return true;
}

}  // namespace mosswick::AppFiles
