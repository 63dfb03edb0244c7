#pragma once

#include <QByteArray>
#include <filesystem>
#include <optional>

namespace mosswick {

// A way back to a file after it moved: an opaque, versioned blob recording the file's path,
// device, inode, size and modification time (and its birth time where the file system keeps
// one). Resolving finds the file at its old path when the inode there still matches, else by
// device and inode among the entries of its old folder (a rename) and of the user's trash (a move
// to the trash). A different file now at the old path is never taken for the original.
namespace FileBookmark {

// Nothing when the file cannot be examined. A symbolic link is recorded as the link itself.
std::optional<QByteArray> create(const std::filesystem::path& file);

// The file's present location, or nothing when it cannot be found (or the blob is not one of
// ours).
std::optional<std::filesystem::path> resolve(const QByteArray& bookmark);

}  // namespace FileBookmark
}  // namespace mosswick
