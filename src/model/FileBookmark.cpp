#include "model/FileBookmark.h"

#include <QDataStream>
#include <QIODevice>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include "model/LocalPath.h"

namespace mosswick::FileBookmark {

namespace {

const QByteArray kMagic = QByteArrayLiteral("MWBK");
constexpr quint8 kVersion = 1;
// Magic, version, device, inode, size, mtime (s, ns), has-birth flag, birth time (s, ns).
constexpr qsizetype kHeaderSize = 4 + 1 + 8 + 8 + 8 + 8 + 4 + 1 + 8 + 4;

struct Moment {
    qint64 seconds = 0;
    quint32 nanoseconds = 0;
    bool operator==(const Moment&) const = default;
};

// What the blob remembers of the file.
struct Record {
    quint64 device = 0;
    quint64 inode = 0;
    qint64 size = 0;
    Moment modified;
    // Inode numbers are reused once a file is deleted; where the file system keeps a birth
    // time, it tells a newcomer that got the old number from the original.
    std::optional<Moment> born;
    std::filesystem::path path;

    bool isSameFile(const Record& other) const {
        if (device != other.device || inode != other.inode) return false;
        return !born || !other.born || *born == *other.born;
    }
};

// The entry itself (links are not followed); `directory` is a descriptor or AT_FDCWD.
std::optional<Record> examine(int directory, const char* name) {
    struct statx info {};
    if (::statx(directory, name, AT_SYMLINK_NOFOLLOW, STATX_BASIC_STATS | STATX_BTIME, &info) != 0)
        return std::nullopt;
    Record record;
    record.device = makedev(info.stx_dev_major, info.stx_dev_minor);
    record.inode = info.stx_ino;
    record.size = static_cast<qint64>(info.stx_size);
    record.modified = {info.stx_mtime.tv_sec, info.stx_mtime.tv_nsec};
    if (info.stx_mask & STATX_BTIME) record.born = Moment{info.stx_btime.tv_sec, info.stx_btime.tv_nsec};
    return record;
}

QByteArray encode(const Record& record) {
    QByteArray blob;
    QDataStream out(&blob, QIODevice::WriteOnly);
    out.setByteOrder(QDataStream::BigEndian);
    out.writeRawData(kMagic.constData(), static_cast<int>(kMagic.size()));
    const Moment born = record.born.value_or(Moment{});
    out << kVersion << record.device << record.inode << record.size << record.modified.seconds
        << record.modified.nanoseconds << quint8(record.born ? 1 : 0) << born.seconds << born.nanoseconds;
    // The path closes the blob, so its bytes need no length and no encoding.
    blob.append(LocalPath::bytes(record.path));
    return blob;
}

std::optional<Record> decode(const QByteArray& blob) {
    if (blob.size() <= kHeaderSize || !blob.startsWith(kMagic)) return std::nullopt;
    QDataStream in(blob.left(kHeaderSize));
    in.setByteOrder(QDataStream::BigEndian);
    in.skipRawData(static_cast<int>(kMagic.size()));
    quint8 version = 0;
    quint8 hasBirth = 0;
    Record record;
    Moment born;
    in >> version >> record.device >> record.inode >> record.size >> record.modified.seconds >>
        record.modified.nanoseconds >> hasBirth >> born.seconds >> born.nanoseconds;
    if (in.status() != QDataStream::Ok || version != kVersion) return std::nullopt;
    if (hasBirth) record.born = born;
    const QByteArray path = blob.mid(kHeaderSize);
    if (path.front() != '/' || path.contains('\0')) return std::nullopt;
    record.path = LocalPath::fromBytes(path);
    return record;
}

// "$XDG_DATA_HOME/Trash/files", read as bytes: the variable need not be UTF-8.
std::optional<std::filesystem::path> trashFolder() {
    const char* dataHome = std::getenv("XDG_DATA_HOME");
    if (dataHome && dataHome[0] == '/') return std::filesystem::path(dataHome) / "Trash" / "files";
    const char* home = std::getenv("HOME");
    if (home && home[0] == '/') return std::filesystem::path(home) / ".local/share/Trash/files";
    return std::nullopt;
}

// The direct entry of `folder` that is the recorded file, under whatever name it has now.
std::optional<std::filesystem::path> findAmong(const std::filesystem::path& folder, const Record& recorded) {
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(::opendir(folder.c_str()), ::closedir);
    if (!listing) return std::nullopt;
    while (const dirent* entry = ::readdir(listing.get())) {
        // The listing's own inode numbers spare a status call for every other entry.
        if (entry->d_ino != recorded.inode) continue;
        const auto found = examine(::dirfd(listing.get()), entry->d_name);
        if (found && found->isSameFile(recorded)) return folder / entry->d_name;
    }
    return std::nullopt;
}

}  // namespace

std::optional<QByteArray> create(const std::filesystem::path& file) {
    std::error_code error;
    std::filesystem::path absolute = std::filesystem::absolute(file, error).lexically_normal();
    if (error || absolute.empty()) return std::nullopt;
    if (!absolute.has_filename()) absolute = absolute.parent_path();  // a folder named as "…/folder/"
    auto record = examine(AT_FDCWD, absolute.c_str());
    if (!record) return std::nullopt;
    record->path = absolute;
    return encode(*record);
}

std::optional<std::filesystem::path> resolve(const QByteArray& bookmark) {
    const auto recorded = decode(bookmark);
    if (!recorded) return std::nullopt;
    if (const auto there = examine(AT_FDCWD, recorded->path.c_str()); there && there->isSameFile(*recorded))
        return recorded->path;
    if (auto renamed = findAmong(recorded->path.parent_path(), *recorded)) return renamed;
    if (const auto trash = trashFolder()) return findAmong(*trash, *recorded);
    return std::nullopt;
}

}  // namespace mosswick::FileBookmark
