#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <memory>
#include <optional>

#include "model/FileCopier.h"

namespace mosswick {

// Copies the bytes of one open regular file into another by the fastest rung that works: a
// reflink clone, then copy_file_range, then read and write. Holes in a sparse source stay holes.
// A rung refused for a source device is not tried again for it, so a tree of many files asks
// once.
class CopyLadder {
public:
    explicit CopyLadder(FileCopier::Method firstRung = FileCopier::Method::clone);

    // Copies everything `source` holds into the empty file `destination`, up to its real end:
    // a procfs file reports size 0 and a sysfs file 4096 whatever they hold. 0 on success, else
    // an errno value.
    int copy(int source, int destination, const struct stat& info);

    // The furthest rung down the ladder any copy so far needed.
    FileCopier::Method lowestRungUsed() const { return lowestUsed_; }

private:
    struct Span {
        off_t reached;  // short of the requested end when the file ended early
        int error;
    };

    Span copyRange(int source, int destination, off_t from, off_t to, dev_t device);
    Span copyDataExtents(int source, int destination, const struct stat& info);
    Span readWrite(int source, int destination, off_t from, off_t to);
    int copyRest(int source, int destination, off_t from);
    char* buffer();
    void note(FileCopier::Method rung);

    FileCopier::Method firstRung_;
    FileCopier::Method lowestUsed_;
    std::optional<dev_t> cloneRefusedOn_;
    std::optional<dev_t> rangeRefusedOn_;
    std::unique_ptr<char[]> buffer_;
};

}  // namespace mosswick
