#pragma once

#include <QString>
#include <QUuid>
#include <filesystem>
#include <set>
#include <string>
#include <variant>

namespace mosswick {

// The shelf's own copies: one folder per item, named by the item's upper-case UUID, inside the
// staging directory, holding the copy under the source's own name. Stateless; callable from any
// thread (callers never stage the same item twice at once).
namespace ItemStaging {

// A failed file operation: what went wrong, for the log.
struct Failure {
    std::string message;
};

template <typename T>
using Result = std::variant<T, Failure>;

// AppFiles::stagingDirectory(), taken on first use and kept.
const std::filesystem::path& directory();

// directory()/UUID.
std::filesystem::path itemFolder(const QUuid& id);

// Copies `source` (a file or folder; never moved or altered) into the item's folder under its own
// name, replacing an earlier copy of that name, and returns where the copy is. Files are cloned,
// else copied in the kernel, else read and written; should all that fail, the whole file is read
// and written atomically. Folders are copied recursively, keeping modes and times; symbolic links
// inside them are copied as links.
Result<std::filesystem::path> stage(const std::filesystem::path& source, const QUuid& id);

// The item's folder, created, into which a promised file is delivered.
Result<std::filesystem::path> promiseDestination(const QUuid& id);

// Removes every entry of the staging directory that is not the folder of a kept item
// (names are read as UUIDs in either case). Never fails.
void pruneOrphans(const std::set<QUuid>& keeping);

// Removes the item's folder and everything in it. Never fails.
void discard(const QUuid& id);

// MIME type by name and contents (shared-mime-info); "inode/directory" for a folder;
// "application/octet-stream" when unknown or unreadable.
QString contentType(const std::filesystem::path& file);

// Logical size of a file (else its allocated size); 0 for folders and anything unreadable.
qint64 fileSize(const std::filesystem::path& file);

// As fileSize, but a folder counts the logical sizes of all visible files inside it: hidden
// entries (and everything in hidden folders) are skipped, symbolic links never followed.
qint64 deepFileSize(const std::filesystem::path& file);

}  // namespace ItemStaging
}  // namespace mosswick
