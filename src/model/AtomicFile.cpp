#include "model/AtomicFile.h"

#include <QRandomGenerator>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace mosswick::AtomicFile {

namespace {
std::string failure(const char* step, const std::filesystem::path& path) {
    return std::string(step) + " " + path.string() + ": " + std::strerror(errno);
}
}  // namespace

namespace {
// Built by appending: GCC 12 at -O3 warns (-Wrestrict) about its own inlined `"." + std::string`.
std::string temporaryPrefix(const std::filesystem::path& target) {
    std::string prefix(1, '.');
    prefix += target.filename().string();
    prefix += '.';
    return prefix;
}
}  // namespace

void removeLeftovers(const std::filesystem::path& target) {
    const std::string prefix = temporaryPrefix(target);
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(target.parent_path(), ignored)) {
        const std::string name = entry.path().filename().string();
        if (name.starts_with(prefix) && name.ends_with(".tmp"))
            std::filesystem::remove(entry.path(), ignored);
    }
}

std::string write(const std::filesystem::path& target, const QByteArray& bytes, int mode) {
    std::string name = temporaryPrefix(target);
    name += std::to_string(QRandomGenerator::global()->generate64());
    name += ".tmp";
    const std::filesystem::path temporary = target.parent_path() / name;
    const int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (fd < 0) return failure("create", temporary);

    const char* data = bytes.constData();
    size_t left = static_cast<size_t>(bytes.size());
    while (left > 0) {
        const ssize_t n = ::write(fd, data, left);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) {
            std::string error = failure("write", temporary);
            ::close(fd);
            ::unlink(temporary.c_str());
            return error;
        }
        data += n;
        left -= static_cast<size_t>(n);
    }
    if (::fsync(fd) != 0 || ::close(fd) != 0) {
        std::string error = failure("flush", temporary);
        ::unlink(temporary.c_str());
        return error;
    }
    if (::rename(temporary.c_str(), target.c_str()) != 0) {
        std::string error = failure("rename", target);
        ::unlink(temporary.c_str());
        return error;
    }
    return {};
}

}  // namespace mosswick::AtomicFile
