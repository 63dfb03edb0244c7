#pragma once

#include <QString>
#include <QUuid>
#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <variant>
#include <vector>

#include "model/ShelfItem.h"

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
// inside them are copied as links. The copy is made under a hidden name beside the old one and
// takes its place only when complete, so a failed restaging keeps the earlier copy.
Result<std::filesystem::path> stage(const std::filesystem::path& source, const QUuid& id);

// The copying step of stage: source, destination; an empty string on success, else what went
// wrong. Replaceable so the fall-back after a failed copy can be exercised.
using CopyStep = std::function<std::string(const std::filesystem::path&, const std::filesystem::path&)>;
Result<std::filesystem::path> stage(const std::filesystem::path& source, const QUuid& id,
                                    const CopyStep& copy);

// The item's folder, created, into which a promised file is delivered.
Result<std::filesystem::path> promiseDestination(const QUuid& id);

// Removes every entry of the staging directory that is not the folder of a kept item
// (names are read as UUIDs in either case). Never fails.
void pruneOrphans(const std::set<QUuid>& keeping);
// The same, over entries listed earlier by entries(): a folder made since is never touched, so
// the removing may run off the main thread while new items are staged. With `recoverSince` (seconds
// since the epoch), item folders dated then or later that hold a finished copy are not removed but
// returned as items, newest first: the shelf was stopped before a save caught up with them.
std::vector<std::string> entries();
std::vector<ShelfItem> pruneOrphans(const std::vector<std::string>& listed, const std::set<QUuid>& keeping,
                                    std::optional<qint64> recoverSince);

// The one visible entry of the item's folder (a copy that finished: unfinished ones have hidden
// names), when the folder is a plain folder holding exactly one.
std::optional<std::filesystem::path> finishedCopy(const QUuid& id);

// Items for every item folder of the staging directory that holds one visible entry, newest folder
// first: the shelf made anew when its save file is lost. Folders that are not plain folders, or
// hold nothing or several entries, are left as they are.
std::vector<ShelfItem> recoverItems();
// The item a finished copy stands for, dated by its folder.
ShelfItem recoveredItem(const QUuid& id, const std::filesystem::path& copy, qint64 folderTime);

// True when the item has no staged copy, or its copy lies inside the item's own folder (a saved
// record edited by hand or by another program may point anywhere).
bool holdsItsOwnCopy(const ShelfItem& item);

// Removes the item's folder and everything in it. Never fails.
void discard(const QUuid& id);

// MIME type by name and contents (shared-mime-info); "inode/directory" for a folder;
// "application/octet-stream" when unknown or missing. A symbolic link is followed.
QString contentType(const std::filesystem::path& file);

// Logical size of a file (else its allocated size); 0 for folders and anything unreadable. A
// symbolic link is followed.
qint64 fileSize(const std::filesystem::path& file);

// As fileSize, but a folder counts the logical sizes of all visible regular files inside it:
// hidden entries (and everything in hidden folders) and unreadable ones are skipped, symbolic
// links inside are never followed (and count nothing). Walks the whole tree: call it off the main
// thread for a folder.
qint64 deepFileSize(const std::filesystem::path& file);

}  // namespace ItemStaging
}  // namespace mosswick
