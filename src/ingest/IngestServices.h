#pragma once

#include <QDateTime>
#include <functional>

namespace mosswick {

class Preferences;
class Scheduler;
class ShelfStore;

// What ingestion works with besides the pasteboard.
struct IngestServices {
    // Runs the staging copies and file measurements off the main thread.
    Scheduler& scheduler;
    // Whether symbolic links are replaced by what they point to.
    const Preferences& preferences;
    // Learns of finished copies and takes away promises that failed.
    ShelfStore& store;
    // The wall clock: when items were added, and the names of images.
    std::function<QDateTime()> now = [] { return QDateTime::currentDateTime(); };

    // Over the process-wide scheduler, preferences and store.
    static IngestServices shared();
};

}  // namespace mosswick
