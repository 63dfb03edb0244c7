#pragma once

#include <gtest/gtest.h>

#include <QDateTime>
#include <QStringList>

#include "ingest/DropIngest.h"
#include "ingest/FileItems.h"
#include "model/AppFiles.h"
#include "model/DefaultsStore.h"
#include "model/Preferences.h"
#include "model/ShelfStore.h"
#include "support/FakePasteboard.h"
#include "support/ManualScheduler.h"
#include "support/TestFolders.h"

namespace mosswick::testing {

// Collects what the ingestion category logs at warning level or above while it lives.
class IngestLog {
public:
    IngestLog();
    ~IngestLog();
    IngestLog(const IngestLog&) = delete;
    IngestLog& operator=(const IngestLog&) = delete;
    QStringList warnings() const;

private:
    QtMessageHandler previous_;
};

// While it lives, a plain file stands where the staging folder was: no item folder can be made.
class StagingAreaBlocked {
public:
    StagingAreaBlocked();
    ~StagingAreaBlocked();
    StagingAreaBlocked(const StagingAreaBlocked&) = delete;
    StagingAreaBlocked& operator=(const StagingAreaBlocked&) = delete;

private:
    std::filesystem::path aside_;
};

// A shelf with its own store and manual clock, and ingestion wired to them as the drop handler
// wires it.
class IngestTest : public ::testing::Test {
protected:
    // Puts the pasteboard's items on the shelf, as a drop does.
    std::vector<ShelfItem> drop(const Pasteboard& pasteboard, bool acceptsFilePromises = true);
    // Runs the background copies and measurements to their end, and hands them over.
    void finishBackgroundWork() { clock.advance(FileItems::kUpdateInterval); }

    const ShelfItem* onShelf(const QUuid& id) const;
    static std::filesystem::path itemFile(const ShelfItem& item);

    struct CleanSlate {
        CleanSlate() { clearAppData(); }
    } cleanSlate;
    ManualScheduler clock;
    MemoryDefaultsStore defaults;
    Preferences preferences{defaults};
    ShelfStore store{preferences, clock, AppFiles::saveFile()};
    QDateTime now{QDate(2024, 5, 1), QTime(13, 7, 9)};
    IngestServices services{clock, preferences, store, [this] { return now; }};
    std::vector<ShelfItem> updates;
    IngestLog log;
};

}  // namespace mosswick::testing
