// What the shelf says: the toolbar's count and buttons, and each tile's words and flags.
#include <gtest/gtest.h>

#include "ShelfFixture.h"
#include "interaction/ShelfToolbarState.h"
#include "interaction/TileDescription.h"

namespace mosswick {
namespace {

struct ToolbarRow {
    const char* name;
    qsizetype items;
    bool hasRemovals;
    const char* label;
    bool bringBack;
    bool clear;
};

class ToolbarStateTest : public ::testing::TestWithParam<ToolbarRow> {};

TEST_P(ToolbarStateTest, CountsItemsAndOffersOnlyWhatApplies) {
    const ToolbarRow& row = GetParam();
    const ShelfToolbarState state = ShelfToolbarState::of(row.items, row.hasRemovals);
    EXPECT_EQ(state.countLabel, QString::fromUtf8(row.label));
    EXPECT_EQ(state.showsBringBack, row.bringBack);
    EXPECT_EQ(state.showsClear, row.clear);
}

INSTANTIATE_TEST_SUITE_P(Rows, ToolbarStateTest,
                         ::testing::Values(ToolbarRow{"empty", 0, false, "", false, false},
                                           ToolbarRow{"emptiedBefore", 0, true, "", true, false},
                                           ToolbarRow{"one", 1, false, "1 item", false, true},
                                           ToolbarRow{"two", 2, false, "2 items", false, true},
                                           ToolbarRow{"manyWithHistory", 120, true, "120 items", true, true}),
                         [](const auto& row) { return std::string(row.param.name); });

using testing::ShelfFixture;
using TileTextsTest = ShelfFixture;

TEST_F(TileTextsTest, ToolbarCountsItemsNotTiles) {
    store->add(batch({"a.jpg", "b.jpg", "c.jpg"}));
    store->add({item("d.pdf")});
    EXPECT_EQ(ShelfStore::tiles(store->items()).size(), 2u);
    EXPECT_EQ(ShelfToolbarState::of(*store).countLabel, "4 items");
}

TEST_F(TileTextsTest, AStackShowsItsCountAndKeepsItsBatchAsIdentity) {
    const auto photos = batch({"a.jpg", "b.jpg", "c.jpg"});
    const TileDescription d = TileDescription::of(ShelfTile{photos}, [](const ShelfItem&) { return false; });
    EXPECT_TRUE(d.isStack());
    EXPECT_EQ(d.title, "3 items");
    EXPECT_EQ(d.key, *photos.front().batchID);
    EXPECT_EQ(d.detail, "a.jpg, b.jpg, c.jpg");
    EXPECT_TRUE(d.toolTip.startsWith("3 items\na.jpg"));
    EXPECT_FALSE(d.isOriginMissing);
}

TEST_F(TileTextsTest, APromisedItemSaysItIsWaiting) {
    ShelfItem promised = item("Archive entry.txt", "text/plain");
    promised.isPromised = true;
    const TileDescription d =
        TileDescription::of(ShelfTile{{promised}}, [](const ShelfItem&) { return false; });
    EXPECT_EQ(d.title, QString::fromUtf8("Archive entry.txt — waiting for the file"));
    EXPECT_TRUE(d.isWaiting);
    // Drawn as the name, then the rest of the caption where the size would be.
    EXPECT_EQ(d.headline, "Archive entry.txt");
    EXPECT_EQ(d.detail, QString::fromUtf8("— waiting for the file"));
}

TEST_F(TileTextsTest, AScreenReaderHearsNameKindAndSize) {
    auto never = [](const ShelfItem&) { return false; };
    auto spoken = [&](std::vector<ShelfItem> items) {
        return TileDescription::of({std::move(items)}, never).spoken;
    };

    ShelfItem photo = item("Holiday photo.png", "image/png");
    photo.byteSize = 105'800;
    ShelfItem waiting = item("Archive entry.txt", "text/plain");
    waiting.isPromised = true;
    ShelfItem link = item("Mosswick", "text/x-uri");
    link.webURL = QUrl("https://example.org/mosswick");
    ShelfItem folder = item("Projects", "inode/directory");
    ShelfItem unknownType = item("blob", "application/x-no-such-type");
    ShelfItem empty = item("empty.txt", "text/plain");
    empty.byteSize = 0;

    const struct {
        std::vector<ShelfItem> items;
        const char* expected;
    } rows[] = {
        {{photo}, "Holiday photo.png, PNG image, 105.8 kB"},
        // Nothing to weigh yet: the name, what it is, and that it waits.
        {{waiting}, "Archive entry.txt, plain text document, waiting for the file"},
        {{link}, "Mosswick, Web link, example.org"},
        // A folder's size is not its contents'; none is said.
        {{folder}, "Projects, folder"},
        {{unknownType}, "blob, 2.5 kB"},
        {{empty}, "empty.txt, plain text document"},
        {batch({"a.jpg", "b.jpg", "c.jpg"}), "3 items: a.jpg, b.jpg, c.jpg"},
    };
    for (const auto& row : rows) EXPECT_EQ(spoken(row.items), QString::fromUtf8(row.expected));
}

TEST_F(TileTextsTest, AMissingOriginalIsBadgedAndExplained) {
    const ShelfItem gone = item("moved away.pdf");
    auto onlyGone = [&](const ShelfItem& candidate) { return candidate.id == gone.id; };

    const TileDescription single = TileDescription::of(ShelfTile{{gone}}, onlyGone);
    EXPECT_TRUE(single.isOriginMissing);
    EXPECT_TRUE(single.toolTip.endsWith(
        QString::fromUtf8("Original file is missing — Mosswick's copy will be used")));

    // One missing member is enough to badge a stack.
    auto stack = batch({"x.jpg", "y.jpg"});
    stack.push_back(gone);
    EXPECT_TRUE(TileDescription::of(ShelfTile{stack}, onlyGone).isOriginMissing);
    EXPECT_FALSE(TileDescription::of(ShelfTile{{item("here.pdf")}}, onlyGone).isOriginMissing);
}

TEST_F(TileTextsTest, AnItemWithoutACopySaysWhy) {
    ShelfItem uncopied = item("report.pdf");
    uncopied.copyProblem = QStringLiteral("write /data/Staged/X/report.pdf: No space left on device");
    const TileDescription d =
        TileDescription::of(ShelfTile{{uncopied}}, [](const ShelfItem&) { return false; });
    EXPECT_TRUE(d.isCopyMissing);
    EXPECT_EQ(d.detail, QStringLiteral("No copy kept"));
    EXPECT_TRUE(d.toolTip.endsWith(QStringLiteral("the original will be used (No space left on device)")));
}

TEST_F(TileTextsTest, DetailNamesTheKindOfThing) {
    auto none = [](const ShelfItem&) { return false; };
    EXPECT_EQ(TileDescription::of(ShelfTile{{item("report.pdf")}}, none).detail, "2.5 kB");

    ShelfItem folder = item("Projects", "inode/directory");
    EXPECT_EQ(TileDescription::of(ShelfTile{{folder}}, none).detail, "Folder");
    EXPECT_TRUE(TileDescription::of(ShelfTile{{folder}}, none).isDirectory);

    ShelfItem link = item("Example.desktop", "application/x-desktop");
    link.webURL = QUrl("https://www.example.org/some/page");
    const TileDescription linkTile = TileDescription::of(ShelfTile{{link}}, none);
    EXPECT_EQ(linkTile.detail, "www.example.org");
    EXPECT_TRUE(linkTile.isLink);
}

TEST_F(TileTextsTest, ATileIsSelectedWhenAnyOfItsItemsIs) {
    const auto photos = batch({"a.jpg", "b.jpg"});
    EXPECT_TRUE(TileDescription::isSelected(ShelfTile{photos}, {photos[1].id}));
    EXPECT_FALSE(TileDescription::isSelected(ShelfTile{photos}, {QUuid::createUuid()}));
    EXPECT_FALSE(TileDescription::isSelected(ShelfTile{photos}, {}));
}

}  // namespace
}  // namespace mosswick
