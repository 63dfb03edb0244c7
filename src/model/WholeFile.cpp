#include "model/WholeFile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <vector>

#include "model/FileDescriptor.h"

namespace mosswick {

namespace {

// Smaller files are read: mapping them saves nothing.
constexpr off_t kMapFrom = 1 << 20;
constexpr std::size_t kReadChunk = 64 * 1024;

// File systems whose files can change or vanish under a mapping without notice.
bool isRemote(const struct statfs& fs) {
    switch (static_cast<unsigned long>(fs.f_type)) {
        case 0x6969:      // NFS
        case 0x517B:      // SMB
        case 0xFF534D42:  // CIFS
        case 0xFE534D42:  // SMB2
        case 0x65735546:  // FUSE
        case 0x00C36400:  // Ceph
        case 0x5346414F:  // AFS
        case 0x01021997:  // 9P
        case 0x73757245:  // Coda
            return true;
        default:
            return false;
    }
}

}  // namespace

WholeFile::WholeFile(const std::filesystem::path& file) {
    FileDescriptor fd(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
    if (!fd || ::fstat(fd.get(), &info_) != 0) {
        error_ = "read " + file.string() + ": " + std::strerror(errno);
        return;
    }
    if (!S_ISREG(info_.st_mode)) {
        error_ = "read " + file.string() + ": not a regular file";
        return;
    }
    if (map(fd.get()) || read(fd.get())) return;
    error_ = "read " + file.string() + ": " + std::strerror(errno);
}

WholeFile::~WholeFile() {
    if (mapping_) ::munmap(mapping_, mappedLength_);
}

QByteArray WholeFile::bytes() const {
    if (!mapping_) return read_;
    return QByteArray::fromRawData(static_cast<const char*>(mapping_), static_cast<qsizetype>(mappedLength_));
}

bool WholeFile::map(int fd) {
    struct statfs fs {};
    if (info_.st_size < kMapFrom || ::fstatfs(fd, &fs) != 0 || isRemote(fs)) return false;
    const auto length = static_cast<std::size_t>(info_.st_size);
    void* mapping = ::mmap(nullptr, length, PROT_READ, MAP_PRIVATE | MAP_POPULATE, fd, 0);
    if (mapping == MAP_FAILED) return false;
    // A page that could not be read in would fault later with SIGBUS; read such a file instead,
    // where the failure is an error code.
    const std::size_t pageSize = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    std::vector<unsigned char> resident((length + pageSize - 1) / pageSize);
    bool allResident = ::mincore(mapping, length, resident.data()) == 0;
    for (std::size_t i = 0; allResident && i < resident.size(); ++i) allResident = (resident[i] & 1) != 0;
    if (!allResident) {
        ::munmap(mapping, length);
        return false;
    }
    mapping_ = mapping;
    mappedLength_ = length;
    return true;
}

bool WholeFile::read(int fd) {
    // The reported size is only a hint: procfs files report 0.
    if (info_.st_size > 0) read_.reserve(static_cast<qsizetype>(info_.st_size));
    std::vector<char> chunk(kReadChunk);
    for (;;) {
        const ssize_t got = ::read(fd, chunk.data(), chunk.size());
        if (got < 0) {
            if (errno == EINTR) continue;
            return false;
        }
        if (got == 0) return true;
        read_.append(chunk.data(), static_cast<qsizetype>(got));
    }
}

}  // namespace mosswick
