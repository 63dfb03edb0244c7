// The shelf's drop handler over Qt's drop data. What it takes and puts on the shelf is shown by the
// desktop test shelf_drops, with real sources.
#include <gtest/gtest.h>

#include <QMimeData>

#include "model/AppFiles.h"
#include "model/DefaultsStore.h"
#include "model/Preferences.h"
#include "model/ShelfStore.h"
#include "platform/qt/QMimeDataPasteboard.h"
#include "shelf/ShelfDropIngestHandler.h"
#include "support/ManualScheduler.h"
#include "support/TestFolders.h"

namespace mosswick {
namespace {

class ShelfDropIngestHandlerTest : public ::testing::Test {
protected:
    ShelfDropIngestHandlerTest() { testing::clearAppData(); }

    bool drop(const QMimeData& data) { return handler.drop(data, DropContext{Qt::CopyAction, {}, {}}); }

    testing::ManualScheduler clock;
    MemoryDefaultsStore defaults;
    Preferences preferences{defaults};
    ShelfStore store{preferences, clock, AppFiles::saveFile()};
    ShelfDropIngestHandler handler{
        [](const QMimeData& data) { return std::make_unique<QMimeDataPasteboard>(data); },
        IngestServices{clock, preferences, store}};
};

TEST_F(ShelfDropIngestHandlerTest, ADropWithNothingToTakeIsRefused) {
    QMimeData data;
    data.setData(QStringLiteral("application/x-something-private"), "bytes");
    EXPECT_FALSE(drop(data));
    EXPECT_TRUE(store.items().empty());
}

}  // namespace
}  // namespace mosswick
