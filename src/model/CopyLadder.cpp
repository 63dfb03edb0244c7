#include "model/CopyLadder.h"

#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace mosswick {

namespace {

using Method = FileCopier::Method;

constexpr size_t kBufferSize = 1 << 20;

// Errors by which a file system says it cannot do this rung at all (as opposed to a failing disk
// or a full one, which the next rung would meet as well).
bool isRefusal(int error) {
    switch (error) {
        case EOPNOTSUPP:
        case EXDEV:
        case EINVAL:
        case ENOSYS:
        case ENOTTY:
        case EBADF:
        case EPERM:
        case ETXTBSY:
            return true;
        default:
            return false;
    }
}

// Fewer blocks than bytes: there are holes worth keeping.
bool looksSparse(const struct stat& info) {
    return info.st_size > 0 && static_cast<off_t>(info.st_blocks) * 512 < info.st_size;
}

int writeAll(int fd, const char* data, size_t length, off_t at) {
    while (length > 0) {
        const ssize_t written = ::pwrite(fd, data, length, at);
        if (written < 0) {
            if (errno == EINTR) continue;
            return errno;
        }
        if (written == 0) return EIO;
        data += written;
        length -= static_cast<size_t>(written);
        at += written;
    }
    return 0;
}

}  // namespace

CopyLadder::CopyLadder(Method firstRung) : firstRung_(firstRung), lowestUsed_(firstRung) {}

void CopyLadder::note(Method rung) { lowestUsed_ = std::max(lowestUsed_, rung); }

char* CopyLadder::buffer() {
    if (!buffer_) buffer_.reset(new char[kBufferSize]);
    return buffer_.get();
}

int CopyLadder::copy(int source, int destination, const struct stat& info) {
    if (firstRung_ == Method::clone && cloneRefusedOn_ != info.st_dev) {
        if (::ioctl(destination, FICLONE, source) == 0) return 0;
        if (isRefusal(errno)) cloneRefusedOn_ = info.st_dev;
    }
    note(Method::copyFileRange);

    Span copied{0, 0};
    if (info.st_size > 0) {
        copied = looksSparse(info) ? copyDataExtents(source, destination, info)
                                   : copyRange(source, destination, 0, info.st_size, info.st_dev);
        if (copied.error != 0) return copied.error;
    }
    // Whatever lies past the reported size: all of a procfs file, or what was appended meanwhile.
    return copied.reached < info.st_size ? 0 : copyRest(source, destination, copied.reached);
}

CopyLadder::Span CopyLadder::copyDataExtents(int source, int destination, const struct stat& info) {
    const off_t size = info.st_size;
    off_t at = 0;
    while (at < size) {
        off_t data = ::lseek(source, at, SEEK_DATA);
        off_t hole = size;
        if (data < 0) {
            if (errno == ENXIO) break;  // nothing but a hole up to the end
            data = at;                  // no hole support: copy the rest as data
        } else {
            hole = std::min(size, ::lseek(source, data, SEEK_HOLE));
            if (hole <= data) hole = size;
        }
        if (data >= size) break;
        const Span span = copyRange(source, destination, data, hole, info.st_dev);
        if (span.error != 0 || span.reached < hole) return span;
        at = hole;
    }
    // A hole at the end is made by the file's length alone.
    if (::ftruncate(destination, size) != 0) return {at, errno};
    return {size, 0};
}

CopyLadder::Span CopyLadder::copyRange(int source, int destination, off_t from, off_t to, dev_t device) {
    off_t at = from;
    if (firstRung_ != Method::readWrite && rangeRefusedOn_ != device) {
        while (at < to) {
            loff_t in = at;
            loff_t out = at;
            const ssize_t copied =
                ::copy_file_range(source, &in, destination, &out, static_cast<size_t>(to - at), 0);
            if (copied > 0) {
                at += copied;
                continue;
            }
            if (copied < 0 && errno == EINTR) continue;
            // Nothing copied: the file ended early, or a file system that copies nothing this way
            // (procfs on some kernels). Reading tells which.
            if (copied < 0 && isRefusal(errno)) rangeRefusedOn_ = device;
            break;
        }
    }
    return at < to ? readWrite(source, destination, at, to) : Span{at, 0};
}

CopyLadder::Span CopyLadder::readWrite(int source, int destination, off_t from, off_t to) {
    off_t at = from;
    while (at < to) {
        const size_t wanted = static_cast<size_t>(std::min<off_t>(to - at, kBufferSize));
        const ssize_t got = ::pread(source, buffer(), wanted, at);
        if (got < 0) {
            if (errno == EINTR) continue;
            return {at, errno};
        }
        if (got == 0) break;
        note(Method::readWrite);
        if (const int error = writeAll(destination, buffer(), static_cast<size_t>(got), at))
            return {at, error};
        at += got;
    }
    return {at, 0};
}

int CopyLadder::copyRest(int source, int destination, off_t from) {
    off_t at = from;
    bool positioned = true;  // pread works; stream-like files need plain reads from where they are
    for (;;) {
        const ssize_t got =
            positioned ? ::pread(source, buffer(), kBufferSize, at) : ::read(source, buffer(), kBufferSize);
        if (got < 0) {
            if (errno == EINTR) continue;
            if (errno == ESPIPE && positioned) {
                positioned = false;
                continue;
            }
            return errno;
        }
        if (got == 0) return 0;
        note(Method::readWrite);
        if (const int error = writeAll(destination, buffer(), static_cast<size_t>(got), at)) return error;
        at += got;
    }
}

}  // namespace mosswick
