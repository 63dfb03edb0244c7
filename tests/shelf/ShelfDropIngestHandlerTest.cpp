// The shelf's drop handler: a drop's data read through Qt, its items put on the shelf. Promised
// files through this path are covered by the desktop tests, with real sources.
#include <gtest/gtest.h>

#include <QMimeData>

#include "ingest/FileItems.h"
#include "model/AppFiles.h"
#include "model/DefaultsStore.h"
#include "model/LocalPath.h"
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

TEST_F(ShelfDropIngestHandlerTest, DroppedFilesGoOnTopAndAreCopied) {
    const auto folder = testing::freshFolder("dropped");
    testing::writeFile(folder / "a.txt", "a");
    testing::writeFile(folder / "b.txt", "b");
    QMimeData earlier;
    earlier.setText(QStringLiteral("earlier"));
    ASSERT_TRUE(drop(earlier));

    QMimeData files;
    files.setUrls({LocalPath::toUrl(folder / "a.txt"), LocalPath::toUrl(folder / "b.txt")});
    EXPECT_TRUE(drop(files));
    clock.advance(FileItems::kUpdateInterval);
    ASSERT_EQ(store.items().size(), 3u);
    EXPECT_EQ(store.items()[0].displayName, QStringLiteral("a.txt"));
    EXPECT_EQ(store.items()[1].displayName, QStringLiteral("b.txt"));
    EXPECT_TRUE(store.items()[0].stagedURL && store.items()[1].stagedURL);
}

TEST_F(ShelfDropIngestHandlerTest, ADropWithNothingToTakeIsRefused) {
    QMimeData data;
    data.setData(QStringLiteral("application/x-something-private"), "bytes");
    EXPECT_FALSE(drop(data));
    EXPECT_TRUE(store.items().empty());
}

}  // namespace
}  // namespace mosswick
