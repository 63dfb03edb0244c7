// The shelf's drop handler over Qt's drop data. What it takes and puts on the shelf is shown by the
// desktop test shelf_drops, with real sources.
#include <gtest/gtest.h>

#include <QMimeData>
#include <QUrl>

#include "model/AppFiles.h"
#include "model/LocalPath.h"
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
    ShelfDropIngestHandlerTest() {
        testing::clearAppData();
        handler.onDropped = [this] { ++dropsSeen; };
    }

    bool drop(const QMimeData& data) { return handler.drop(data, DropContext{Qt::CopyAction, {}, {}}); }

    testing::ManualScheduler clock;
    MemoryDefaultsStore defaults;
    Preferences preferences{defaults};
    ShelfStore store{preferences, clock, AppFiles::saveFile()};
    ShelfDropIngestHandler handler{
        [](const QMimeData& data) { return std::make_unique<QMimeDataPasteboard>(data); },
        IngestServices{clock, preferences, store}};
    int dropsSeen = 0;
};

TEST_F(ShelfDropIngestHandlerTest, ADropWithNothingToTakeIsRefused) {
    QMimeData data;
    data.setData(QStringLiteral("application/x-something-private"), "bytes");
    EXPECT_FALSE(drop(data));
    EXPECT_TRUE(store.items().empty());
}

// What reaches the handler: a file list naming files that are there or not, and a list named but
// sent empty (a drop that arrives without its data).
struct Offer {
    const char* name;
    std::vector<const char*> files;  // "+name": a file that exists; "-name": one that does not
    bool emptyList;
    bool taken;
};

class ShelfDropReadability : public ShelfDropIngestHandlerTest,
                             public ::testing::WithParamInterface<Offer> {};

TEST_P(ShelfDropReadability, TakesADropOnlyWhenAllOfItCanBeRead) {
    const Offer& offer = GetParam();
    const std::filesystem::path folder = testing::freshFolder("dropped");
    QList<QUrl> urls;
    for (const char* spec : offer.files) {
        const std::filesystem::path file = folder / (spec + 1);
        if (spec[0] == '+') testing::writeFile(file, "kept bytes");
        urls << LocalPath::toUrl(file, false);
    }
    QMimeData data;
    if (offer.emptyList)
        data.setData(QStringLiteral("text/uri-list"), QByteArray());
    else
        data.setUrls(urls);

    EXPECT_EQ(drop(data), offer.taken);
    EXPECT_EQ(store.items().size(), offer.taken ? offer.files.size() : 0u);
    EXPECT_EQ(dropsSeen, 1) << "every drop ends the drag, taken or not";
    clock.drain();
    EXPECT_EQ(store.items().size(), offer.taken ? offer.files.size() : 0u);
}

const Offer kOffers[] = {
    {"oneFile", {"+a.txt"}, false, true},         {"twoFiles", {"+a.txt", "+b.txt"}, false, true},
    {"missingFile", {"-gone.txt"}, false, false}, {"oneOfTwoMissing", {"+a.txt", "-gone.txt"}, false, false},
    {"listWithoutData", {}, true, false},
};

INSTANTIATE_TEST_SUITE_P(Table, ShelfDropReadability, ::testing::ValuesIn(kOffers),
                         [](const ::testing::TestParamInfo<Offer>& row) { return row.param.name; });

}  // namespace
}  // namespace mosswick
