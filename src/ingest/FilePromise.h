#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

namespace mosswick {

// A file a drag source promises to write only once the drop is taken (X Direct Save on X11):
// the receiver names where it wants the file, the source writes it, and the receiver hears of it
// later.
class FilePromise {
public:
    // Where the file is wanted: the item's own folder, and the name proposed for it there. A
    // source may write under a name of its own in that folder instead.
    struct Destination {
        std::filesystem::path folder;
        std::filesystem::path fileName;
    };

    // One delivered file, or why none came.
    struct Delivery {
        std::optional<std::filesystem::path> file;
        QString problem;
    };
    using Reader = std::function<void(const Delivery&)>;

    virtual ~FilePromise() = default;

    // MIME types of the promised files, in order; may be empty.
    virtual QStringList fileTypes() const = 0;
    // The names the source proposes, as the bytes it gave; may be empty, or anything but a plain
    // file name.
    virtual std::vector<QByteArray> fileNames() const = 0;

    // Asks the source for the files; to be called while the drop is being handled. `reader` runs
    // later on the main thread, never inside this call, once for each file (a promise of one file
    // is answered exactly once, with the file or with the problem).
    virtual void receive(const Destination& destination, Reader reader) = 0;
};

}  // namespace mosswick
