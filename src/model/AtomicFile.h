#pragma once

#include <QByteArray>
#include <filesystem>
#include <string>

namespace mosswick {

// Replaces a file's contents all at once: the bytes go to a temporary file beside it, are
// flushed to disk, and the temporary file is renamed over the target. A reader (or a crash) sees
// the old file or the new one, never a mix.
namespace AtomicFile {

// Returns an empty string on success, else what went wrong.
std::string write(const std::filesystem::path& target, const QByteArray& bytes, int mode = 0600);

// Removes temporary files a killed writer left beside `target`.
void removeLeftovers(const std::filesystem::path& target);

}  // namespace AtomicFile
}  // namespace mosswick
