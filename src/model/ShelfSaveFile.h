#pragma once

#include <QByteArray>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "model/ShelfItem.h"

namespace mosswick {

// "shelf.json": one JSON array of item records, top of the shelf first, pretty-printed with keys
// sorted. Writes are atomic and may come from any thread; a write of an older snapshot that
// arrives after a newer one was written is skipped, so the file never goes back in time.
class ShelfSaveFile {
public:
    explicit ShelfSaveFile(std::filesystem::path file);

    const std::filesystem::path& path() const { return file_; }

    static QByteArray encode(const std::vector<ShelfItem>& items);
    // Nothing when the bytes are not JSON or the top level is not an array; bad elements are
    // dropped.
    static std::optional<std::vector<ShelfItem>> decode(const QByteArray& bytes);

    // What reading the file gave: nothing there yet, the shelf, or a file that exists but cannot
    // be read or is no shelf at all (truncated, not JSON, nested past the parser's limit).
    struct Contents {
        enum class State { missing, read, damaged };
        State state = State::missing;
        std::vector<ShelfItem> items;
    };
    Contents read() const;
    // Renames a damaged file to "shelf.json.damaged-<time>" beside it, for the user or a bug report;
    // the new name, or nothing when it could not be moved.
    std::optional<std::filesystem::path> setAside() const;

    // Numbers snapshots in the order they were taken (main thread).
    std::uint64_t nextGeneration() { return ++issued_; }
    // Thread-safe. What went wrong when the write failed (logged); empty when it was written or
    // skipped as stale.
    std::string write(const std::vector<ShelfItem>& items, std::uint64_t generation);

private:
    std::filesystem::path file_;
    std::uint64_t issued_ = 0;
    std::mutex writing_;
    std::uint64_t written_ = 0;
};

}  // namespace mosswick
