#include "model/ItemStaging.h"

#include <dirent.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QMimeDatabase>
#include <QRandomGenerator>
#include <cerrno>
#include <cstring>
#include <vector>

#include "model/AppFiles.h"
#include "model/AtomicFile.h"
#include "model/FileCopier.h"
#include "model/FileDescriptor.h"
#include "model/FileRemover.h"
#include "model/LocalPath.h"
#include "model/Logging.h"
#include "model/TreeWalk.h"
#include "model/WholeFile.h"

namespace mosswick::ItemStaging {

namespace {

const QString kGenericType = QStringLiteral("application/octet-stream");
// As much of a file as the MIME database's content rules look at.
constexpr std::size_t kSniffLength = 16 * 1024;

Failure failure(const std::string& message) {
    qCWarning(lcStaging) << "Staging failed:" << message.c_str();
    return Failure{message};
}

std::string describe(const char* step, const std::filesystem::path& path) {
    return std::string(step) + " " + path.string() + ": " + std::strerror(errno);
}

// The name a copy gets: the source's last component, a trailing "/" ignored.
std::filesystem::path copyName(const std::filesystem::path& source) {
    std::filesystem::path name = source.filename();
    if (name.empty()) name = source.parent_path().filename();
    if (name == "." || name == "..") return {};
    return name;
}

bool sameFile(const std::filesystem::path& a, const std::filesystem::path& b) {
    struct stat first {};
    struct stat second {};
    return ::stat(a.c_str(), &first) == 0 && ::stat(b.c_str(), &second) == 0 &&
           first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

bool isFolder(const std::filesystem::path& path, bool followLinks) {
    struct stat info {};
    const int result = followLinks ? ::stat(path.c_str(), &info) : ::lstat(path.c_str(), &info);
    return result == 0 && S_ISDIR(info.st_mode);
}

// Puts a finished copy in place of an earlier one of the same name, whether either is a file or
// a folder.
std::string replace(const std::filesystem::path& finished, const std::filesystem::path& destination) {
    if (::rename(finished.c_str(), destination.c_str()) == 0) return {};
    if (errno != EISDIR && errno != ENOTDIR && errno != ENOTEMPTY && errno != EEXIST)
        return describe("rename", destination);
    if (::renameat2(AT_FDCWD, finished.c_str(), AT_FDCWD, destination.c_str(), RENAME_EXCHANGE) == 0) {
        // `finished` now names the earlier copy.
        if (const std::string error = FileRemover::removeAll(finished); !error.empty())
            qCInfo(lcStaging) << "Could not remove a replaced copy:" << error.c_str();
        return {};
    }
    FileRemover::removeAll(destination);
    if (::rename(finished.c_str(), destination.c_str()) == 0) return {};
    return describe("rename", destination);
}

// The last resort for a file whose copy failed: all of it read into memory and written at once.
std::string writeWholeFile(const std::filesystem::path& source, const std::filesystem::path& destination) {
    const WholeFile whole(source);
    if (!whole.isValid()) return whole.error();
    const auto mode = static_cast<int>(whole.info().st_mode & 07777);
    if (std::string error = AtomicFile::write(destination, whole.bytes(), mode); !error.empty()) return error;
    const timespec times[2] = {whole.info().st_atim, whole.info().st_mtim};
    ::utimensat(AT_FDCWD, destination.c_str(), times, 0);
    return {};
}

std::optional<QUuid> uuidNamed(const char* name) {
    if (std::strlen(name) != 36) return std::nullopt;
    const QUuid id = QUuid::fromString(QLatin1StringView(name, 36));
    if (id.isNull()) return std::nullopt;
    return id;
}

// Adds up the logical sizes of the visible regular files of a tree.
class VisibleSize final : public TreeWalk::Visitor {
public:
    TreeWalk::Step visit(int folderFd, const char* name, TreeWalk::Kind kind) override {
        if (name[0] == '.') return TreeWalk::Step::next;
        if (kind == TreeWalk::Kind::folder) return TreeWalk::Step::descend;
        struct stat info {};
        if (kind == TreeWalk::Kind::file && ::fstatat(folderFd, name, &info, AT_SYMLINK_NOFOLLOW) == 0 &&
            S_ISREG(info.st_mode))
            total_ += info.st_size;
        return TreeWalk::Step::next;
    }
    bool unreadable(const char*, int) override { return true; }

    qint64 total() const { return total_; }

private:
    qint64 total_ = 0;
};

QString specialFileType(mode_t mode) {
    if (S_ISCHR(mode)) return QStringLiteral("inode/chardevice");
    if (S_ISBLK(mode)) return QStringLiteral("inode/blockdevice");
    if (S_ISFIFO(mode)) return QStringLiteral("inode/fifo");
    if (S_ISSOCK(mode)) return QStringLiteral("inode/socket");
    return kGenericType;
}

}  // namespace

const std::filesystem::path& directory() {
    static const std::filesystem::path folder = AppFiles::stagingDirectory();
    return folder;
}

std::filesystem::path itemFolder(const QUuid& id) {
    return directory() / id.toString(QUuid::WithoutBraces).toUpper().toStdString();
}

Result<std::filesystem::path> stage(const std::filesystem::path& source, const QUuid& id) {
    return stage(source, id, [](const std::filesystem::path& from, const std::filesystem::path& to) {
        return FileCopier::copy(from, to);
    });
}

Result<std::filesystem::path> stage(const std::filesystem::path& source, const QUuid& id,
                                    const CopyStep& copy) {
    const std::filesystem::path folder = itemFolder(id);
    if (!AppFiles::makePrivateDirectory(folder)) return failure(describe("create", folder));
    const std::filesystem::path name = copyName(source);
    if (name.empty()) return failure("stage " + source.string() + ": no name to give the copy");
    const std::filesystem::path destination = folder / name;

    if (sameFile(source, destination)) return destination;
    // Replacing the copy would delete the source with it.
    if (LocalPath::exists(destination) && FileCopier::isWithin(source, destination))
        return failure("stage " + source.string() + ": lies inside its own earlier copy");

    // Short, so that even a source name of the longest length leaves room for it.
    const std::filesystem::path partial =
        folder / (".staging-" + std::to_string(QRandomGenerator::global()->generate64()));
    std::string error = copy(source, partial);
    if (error.empty()) error = replace(partial, destination);
    if (error.empty()) return destination;
    FileRemover::removeAll(partial);
    if (isFolder(source, true)) return failure(error);

    qCInfo(lcStaging) << "Copy failed, reading the whole file instead:" << error.c_str();
    error = writeWholeFile(source, partial);
    if (error.empty()) error = replace(partial, destination);
    if (error.empty()) return destination;
    FileRemover::removeAll(partial);
    return failure(error);
}

Result<std::filesystem::path> promiseDestination(const QUuid& id) {
    std::filesystem::path folder = itemFolder(id);
    if (!AppFiles::makePrivateDirectory(folder)) return failure(describe("create", folder));
    return folder;
}

std::vector<std::string> entries() {
    std::vector<std::string> names;
    DIR* listing = ::opendir(directory().c_str());
    if (!listing) return names;
    while (const dirent* entry = ::readdir(listing)) {
        const char* name = entry->d_name;
        if (std::strcmp(name, ".") != 0 && std::strcmp(name, "..") != 0) names.emplace_back(name);
    }
    ::closedir(listing);
    return names;
}

std::vector<ShelfItem> pruneOrphans(const std::vector<std::string>& listed, const std::set<QUuid>& keeping,
                                    std::optional<qint64> recoverSince) {
    std::vector<ShelfItem> recovered;
    for (const std::string& name : listed) {
        const std::optional<QUuid> id = uuidNamed(name.c_str());
        if (id && keeping.count(*id) != 0 && isFolder(directory() / name, false)) continue;
        if (id && recoverSince) {
            struct stat info {};
            const std::optional<std::filesystem::path> copy = finishedCopy(*id);
            if (copy && ::lstat((directory() / name).c_str(), &info) == 0 &&
                info.st_mtim.tv_sec >= *recoverSince) {
                recovered.push_back(recoveredItem(*id, *copy, info.st_mtim.tv_sec));
                continue;
            }
        }
        if (const std::string error = FileRemover::removeAll(directory() / name); !error.empty())
            qCInfo(lcStaging) << "Could not prune:" << error.c_str();
    }
    std::sort(recovered.begin(), recovered.end(),
              [](const ShelfItem& a, const ShelfItem& b) { return a.addedAt > b.addedAt; });
    return recovered;
}

void pruneOrphans(const std::set<QUuid>& keeping) { pruneOrphans(entries(), keeping, std::nullopt); }

std::optional<std::filesystem::path> finishedCopy(const QUuid& id) {
    const std::filesystem::path folder = itemFolder(id);
    if (!isFolder(folder, false)) return std::nullopt;
    std::optional<std::filesystem::path> found;
    std::error_code listing;
    for (const auto& entry : std::filesystem::directory_iterator(folder, listing)) {
        if (entry.path().filename().c_str()[0] == '.') continue;
        if (found) return std::nullopt;
        found = entry.path();
    }
    return found;
}

ShelfItem recoveredItem(const QUuid& id, const std::filesystem::path& copy, qint64 folderTime) {
    ShelfItem item;
    item.id = id;
    item.displayName = LocalPath::displayName(copy);
    item.stagedURL = LocalPath::toUrl(copy, isFolder(copy, false));
    item.contentTypeIdentifier = contentType(copy);
    item.byteSize = deepFileSize(copy);
    // The folder was made when the item came; its copy may be older (times are kept).
    item.addedAt = Timestamp::fromDateTime(QDateTime::fromSecsSinceEpoch(folderTime));
    return item;
}

std::vector<ShelfItem> recoverItems() {
    std::vector<ShelfItem> items;
    std::error_code error;
    for (const auto& folder : std::filesystem::directory_iterator(directory(), error)) {
        const std::optional<QUuid> id = uuidNamed(folder.path().filename().c_str());
        if (!id || !isFolder(folder.path(), false)) continue;
        const std::optional<std::filesystem::path> copy = finishedCopy(*id);
        if (!copy) {
            qCWarning(lcStaging) << "Left an item folder as it is:" << folder.path().c_str()
                                 << "does not hold exactly one visible entry";
            continue;
        }
        struct stat info {};
        const qint64 added = ::lstat(folder.path().c_str(), &info) == 0 ? info.st_mtim.tv_sec : 0;
        items.push_back(recoveredItem(*id, *copy, added));
    }
    std::sort(items.begin(), items.end(),
              [](const ShelfItem& a, const ShelfItem& b) { return a.addedAt > b.addedAt; });
    return items;
}

bool holdsItsOwnCopy(const ShelfItem& item) {
    if (!item.stagedURL) return true;
    const std::optional<std::filesystem::path> copy = LocalPath::fromUrl(*item.stagedURL);
    if (!copy) return false;
    const std::filesystem::path folder = itemFolder(item.id).lexically_normal();
    const std::filesystem::path inside = copy->lexically_normal().lexically_relative(folder);
    return !inside.empty() && *inside.begin() != ".." && *inside.begin() != "." && isFolder(folder, false);
}

void discard(const QUuid& id) {
    if (const std::string error = FileRemover::removeAll(itemFolder(id)); !error.empty())
        qCInfo(lcStaging) << "Could not discard a copy:" << error.c_str();
}

QString contentType(const std::filesystem::path& file) {
    struct stat info {};
    if (::stat(file.c_str(), &info) != 0) return kGenericType;
    if (S_ISDIR(info.st_mode)) return QStringLiteral("inode/directory");
    if (!S_ISREG(info.st_mode)) return specialFileType(info.st_mode);

    // The name only matters for its extension and glob patterns; bytes that are not UTF-8 read as
    // U+FFFD without hurting either. The contents are read here, as Qt cannot open such a name.
    const QString name = LocalPath::displayName(file);
    QByteArray head;
    FileDescriptor fd(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
    if (fd) {
        head.resize(static_cast<qsizetype>(kSniffLength));
        qsizetype filled = 0;
        while (filled < head.size()) {
            const ssize_t got =
                ::read(fd.get(), head.data() + filled, static_cast<size_t>(head.size() - filled));
            if (got < 0 && errno == EINTR) continue;
            if (got <= 0) break;
            filled += got;
        }
        head.truncate(filled);
    }
    const QMimeDatabase database;
    const QMimeType type = fd ? database.mimeTypeForFileNameAndData(name, head)
                              : database.mimeTypeForFile(name, QMimeDatabase::MatchExtension);
    return type.isValid() ? type.name() : kGenericType;
}

qint64 fileSize(const std::filesystem::path& file) {
    struct stat info {};
    if (::stat(file.c_str(), &info) != 0 || S_ISDIR(info.st_mode)) return 0;
    return info.st_size > 0 ? static_cast<qint64>(info.st_size) : static_cast<qint64>(info.st_blocks) * 512;
}

qint64 deepFileSize(const std::filesystem::path& file) {
    if (!isFolder(file, true)) return fileSize(file);
    TreeWalk walk;
    VisibleSize size;
    walk.run(file, size);
    return size.total();
}

}  // namespace mosswick::ItemStaging
