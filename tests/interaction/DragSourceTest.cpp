// A press on a tile becomes a click or a drag; what the drag carries and offers, which operations
// it allows, and what becomes of the items when it ends.
#include <gtest/gtest.h>

#include "ShelfFixture.h"
#include "interaction/DragSource.h"
#include "interaction/TileMenu.h"
#include "interaction/Workspace.h"
#include "model/LocalPath.h"

namespace mosswick {
namespace {

namespace fs = std::filesystem;

class RecordingWorkspace final : public Workspace {
public:
    void open(const QUrl& file) override { opened.push_back(file); }
    void reveal(const std::vector<QUrl>& files) override { revealed.push_back(files); }
    std::vector<QUrl> opened;
    std::vector<std::vector<QUrl>> revealed;
};

class RecordingMenu final : public TileMenu {
public:
    void popUp(const ShelfItem& item, QPoint) override { shownFor.push_back(item.displayName); }
    std::vector<QString> shownFor;
};

const QRectF kTile(0, 0, 200, 80);
const QPointF kMiddle(60, 40);

class DragSourceTest : public testing::ShelfFixture {
protected:
    void SetUp() override {
        ShelfFixture::SetUp();
        folder = testing::freshFolder("drag-source");
        source = std::make_unique<DragSource>(*store, preferences);
        source->setWorkspace(&workspace);
        source->setTileMenu(&menu);
    }

    // An item whose original is a real file in the test's folder, with a staged copy beside it.
    ShelfItem fileItem(const std::string& name, const std::string& contents = "contents",
                       std::optional<QUuid> batch = std::nullopt) {
        const fs::path original = folder / "originals" / name;
        const fs::path staged = folder / "staged" / name;
        testing::writeFile(original, contents);
        testing::writeFile(staged, contents);
        ShelfItem made = item(LocalPath::displayName(original), QStringLiteral("text/plain"), batch);
        made.originURL = LocalPath::toUrl(original);
        made.stagedURL = LocalPath::toUrl(staged);
        return made;
    }
    static fs::path pathOf(const std::optional<QUrl>& url) { return *LocalPath::fromUrl(*url); }

    // The items of the store in order, as the tests name them.
    const ShelfItem& at(size_t index) const { return store->items().at(index); }
    std::set<QString> selectedNames() const {
        std::set<QString> names;
        for (const ShelfItem& stored : store->items())
            if (store->selection().count(stored.id)) names.insert(stored.displayName);
        return names;
    }
    static std::vector<QString> names(const std::vector<ShelfItem>& items) {
        std::vector<QString> found;
        for (const ShelfItem& one : items) found.push_back(one.displayName);
        return found;
    }
    static QByteArray typeBytes(const DragSource::Drag& drag, const char* type) {
        for (const auto& [name, bytes] : drag.types)
            if (name == QLatin1String(type)) return bytes;
        return "<absent>";
    }

    // Presses on the item, moves by (dx, dy), releases if it stayed a click; the drag, if any.
    std::optional<DragSource::Drag> pressAndMove(const ShelfItem& pressed, QPointF by, bool ctrl = false) {
        EXPECT_EQ(source->mouseDown(pressed, kMiddle, kTile, ctrl), DragSource::Press::pressed);
        auto drag = source->mouseDragged(kMiddle + by);
        if (!drag && source->isPressed()) source->mouseUp(1);
        return drag;
    }

    fs::path folder;
    RecordingWorkspace workspace;
    RecordingMenu menu;
    std::unique_ptr<DragSource> source;
};

TEST_F(DragSourceTest, APressBecomesADragOnlyPastFourPointsOfMovement) {
    struct Row {
        const char* name;
        QPointF by;
        bool drags;
    };
    const Row rows[] = {
        {"still", {0, 0}, false},
        {"exactly four across", {4.0, 0}, false},
        {"exactly four up", {0, -4.0}, false},
        {"just past four", {4.01, 0}, true},
        {"diagonal just under", {2.828, 2.828}, false},
        {"diagonal just over", {2.83, 2.83}, true},
        {"far", {-40, 25}, true},
    };
    store->add({fileItem("a.txt")});
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const auto drag = pressAndMove(at(0), row.by);
        EXPECT_EQ(drag.has_value(), row.drags);
        EXPECT_FALSE(source->isPressed()) << "the press is over either way";
        if (drag) source->dragEnded(false, false);
    }
}

TEST_F(DragSourceTest, SelectionChangesAtThePressOrOnlyAtAReleaseThatStayedAClick) {
    struct Row {
        const char* name;
        std::set<QString> before;
        bool ctrl;
        bool drags;
        std::set<QString> afterPress;
        std::set<QString> afterEnd;
        std::vector<QString> dragged;
    };
    // The press is on "b"; "s1" and "s2" are one stack.
    const Row rows[] = {
        {"click on an unselected tile", {"a"}, false, false, {"b"}, {"b"}, {}},
        {"Ctrl-click adds at once", {"a"}, true, false, {"a", "b"}, {"a", "b"}, {}},
        {"click on one of several selected collapses on release",
         {"a", "b", "s1", "s2"},
         false,
         false,
         {"a", "b", "s1", "s2"},
         {"b"},
         {}},
        {"...unless it became a drag of them all",
         {"a", "b", "s1", "s2"},
         false,
         true,
         {"a", "b", "s1", "s2"},
         {"a", "b", "s1", "s2"},
         {"a", "b", "s1", "s2"}},
        {"Ctrl-click on a selected tile takes it out on release",
         {"a", "b"},
         true,
         false,
         {"a", "b"},
         {"a"},
         {}},
        {"...unless it became a drag", {"a", "b"}, true, true, {"a", "b"}, {"a", "b"}, {"a", "b"}},
        {"a drag from an unselected tile carries it alone", {"a"}, false, true, {"b"}, {"b"}, {"b"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        store->removeAll();
        const QUuid stack = QUuid::createUuid();
        store->add({fileItem("a"), fileItem("b"), fileItem("s1", "1", stack), fileItem("s2", "2", stack)});
        std::set<QUuid> before;
        for (const ShelfItem& stored : store->items())
            if (row.before.count(stored.displayName)) before.insert(stored.id);
        store->setSelection(before);

        const ShelfItem b = at(1);
        ASSERT_EQ(b.displayName, "b");
        source->mouseDown(b, kMiddle, kTile, row.ctrl);
        EXPECT_EQ(selectedNames(), row.afterPress);
        const auto drag = source->mouseDragged(kMiddle + QPointF(row.drags ? 10 : 1, 0));
        ASSERT_EQ(drag.has_value(), row.drags);
        if (drag) {
            EXPECT_EQ(names(drag->items), row.dragged);
            source->mouseUp(1);  // the release that ends a drag changes nothing
            source->dragEnded(false, false);
        } else {
            source->mouseUp(1);
        }
        EXPECT_EQ(selectedNames(), row.afterEnd);
    }
}

TEST_F(DragSourceTest, ThePressedStackIsSelectedWholeAndADragWithoutStackingCarriesOnlyItsGroup) {
    const QUuid stack = QUuid::createUuid();
    store->add({fileItem("a"), fileItem("s1", "1", stack), fileItem("s2", "2", stack)});
    source->mouseDown(at(1), kMiddle, kTile, false);
    source->mouseUp(1);
    EXPECT_EQ(selectedNames(), (std::set<QString>{"s1", "s2"}));

    store->toggleSelection(at(0), true);
    preferences.setCombineMultipleFilesToStack(false);
    auto drag = pressAndMove(at(1), {0, 9});
    ASSERT_TRUE(drag);
    EXPECT_EQ(names(drag->items), (std::vector<QString>{"s1", "s2"}));
    source->dragEnded(false, false);

    preferences.setCombineMultipleFilesToStack(true);
    drag = pressAndMove(at(1), {0, 9});
    ASSERT_TRUE(drag);
    EXPECT_EQ(names(drag->items), (std::vector<QString>{"a", "s1", "s2"}));
}

TEST_F(DragSourceTest, TheCloseSquareTakesTheWholeGroupAwayInOneUndoableStep) {
    const QUuid stack = QUuid::createUuid();
    struct Row {
        QPointF at;
        bool closes;
    };
    // The square is 20 wide, 2 in from the top-right corner of the 200 x 80 tile.
    const Row rows[] = {{{178, 2}, true},     {{198, 22}, true},    {{188, 12}, true},  {{177.9, 12}, false},
                        {{188, 22.1}, false}, {{198.1, 12}, false}, {{188, 1.9}, false}};
    for (const Row& row : rows) {
        SCOPED_TRACE(::testing::Message() << row.at.x() << "," << row.at.y());
        store->removeAll();
        store->add({fileItem("a"), fileItem("s1", "1", stack), fileItem("s2", "2", stack)});
        const auto press = source->mouseDown(at(1), row.at, kTile, false);
        EXPECT_EQ(press == DragSource::Press::closed, row.closes);
        EXPECT_EQ(itemNames().size(), row.closes ? 1u : 3u);
        EXPECT_EQ(source->isPressed(), !row.closes);
        source->mouseUp(1);
        if (!row.closes) continue;
        store->restoreLastRemoved();
        EXPECT_EQ(itemNames(), (std::vector<QString>{"s1", "s2", "a"})) << "one step brings the stack back";
    }
}

TEST_F(DragSourceTest, EachAlternateDataSettingOffersItsTextBesideTheFile) {
    const std::string contents = "Zwei Zeilen\nä ö ü — ✓";
    store->add({fileItem("notes ä.txt", contents)});
    const fs::path original = pathOf(at(0).originURL);
    const QByteArray uri = "file://" + QByteArray(original.parent_path().c_str()) + "/notes%20%C3%A4.txt\r\n";
    struct Row {
        AlternateDragData setting;
        std::optional<QByteArray> text;
    };
    const Row rows[] = {
        {AlternateDragData::none, std::nullopt},
        {AlternateDragData::filePath, QByteArray(original.c_str())},
        {AlternateDragData::fileName, QByteArray("notes ä.txt")},
        {AlternateDragData::fileContents, QByteArray::fromStdString(contents)},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(rawValue(row.setting).toStdString());
        preferences.setAlternateDragData(row.setting);
        const auto drag = pressAndMove(at(0), {10, 0});
        ASSERT_TRUE(drag);
        std::vector<QString> types;
        for (const auto& [name, bytes] : drag->types) types.push_back(name);
        if (row.text) {
            EXPECT_EQ(types,
                      (std::vector<QString>{"text/uri-list", "text/plain;charset=utf-8", "text/plain"}));
            EXPECT_EQ(typeBytes(*drag, "text/plain;charset=utf-8"), *row.text);
            EXPECT_EQ(typeBytes(*drag, "text/plain"), *row.text);
        } else {
            EXPECT_EQ(types, (std::vector<QString>{"text/uri-list"})) << "no text at all";
        }
        EXPECT_EQ(typeBytes(*drag, "text/uri-list"), uri);
        source->dragEnded(false, false);
    }
}

TEST_F(DragSourceTest, ContentsAreOfferedAsTextOnlyWhenTheyAreUtf8TextOfAModestSize) {
    struct Row {
        const char* name;
        std::string contents;
        bool offered;
    };
    const Row rows[] = {
        {"utf8.txt", "plain ✓", true},
        {"latin1.txt", "caf\xe9 cr\xe8me", false},
        {"cut short.txt", "ends in half a character \xe2\x9c", false},
        {"empty.txt", "", true},
        {"large.txt", std::string(DragPayload::kLongestContentsText + 1, 'x'), false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const auto entry =
            DragPayload::pasteboardItem(fileItem(row.name, row.contents), AlternateDragData::fileContents);
        ASSERT_TRUE(entry);
        EXPECT_EQ(entry->text.has_value(), row.offered);
    }
    ShelfItem folderItem = item("folder");
    fs::create_directories(folder / "a folder");
    folderItem.originURL = LocalPath::toUrl(folder / "a folder", true);
    const auto entry = DragPayload::pasteboardItem(folderItem, AlternateDragData::fileContents);
    ASSERT_TRUE(entry);
    EXPECT_FALSE(entry->text) << "a folder has no contents to offer";
    EXPECT_EQ(DragPayload::pasteboardItem(folderItem, AlternateDragData::filePath)->text,
              QByteArray((folder / "a folder").c_str()));
}

TEST_F(DragSourceTest, NamesOfAnyBytesArriveAsThePercentEncodedBytesOfThePath) {
    struct Row {
        std::string name;
        QByteArray encoded;
    };
    const Row rows[] = {
        {"two words.pdf", "two%20words.pdf"}, {"Café Ünïcode.txt", "Caf%C3%A9%20%C3%9Cn%C3%AFcode.txt"},
        {"line\nbreak", "line%0Abreak"},      {"not-utf8-\xff\xfe.bin", "not-utf8-%FF%FE.bin"},
        {"100%#?.txt", "100%25%23%3F.txt"},
    };
    for (const Row& row : rows) {
        const ShelfItem made = fileItem(row.name);
        const auto entry = DragPayload::pasteboardItem(made, AlternateDragData::fileName);
        ASSERT_TRUE(entry);
        EXPECT_EQ(entry->fileURI, "file://" + QByteArray((folder / "originals").c_str()) + "/" + row.encoded);
        EXPECT_EQ(*entry->text, QByteArray::fromStdString(row.name)) << "the name's own bytes";
    }
}

TEST_F(DragSourceTest, ItemsWithoutAFileToHandOutAreLeftOutAndTheOperationFollowsTheOriginals) {
    struct Row {
        const char* name;
        bool deleteOriginal;
        bool deleteStaged;
        bool promised;
    };
    struct Case {
        const char* name;
        std::vector<Row> items;
        std::vector<QString> dragged;  // empty: no drag starts
        Qt::DropActions operations;
    };
    const Case cases[] = {
        {"all originals there",
         {{"a", false, false, false}, {"b", false, false, false}},
         {"a", "b"},
         Qt::CopyAction | Qt::MoveAction},
        {"one original gone: its copy is offered, and copy alone",
         {{"a", true, false, false}, {"b", false, false, false}},
         {"a", "b"},
         Qt::CopyAction},
        {"original and copy gone: left out",
         {{"a", true, true, false}, {"b", false, false, false}},
         {"b"},
         Qt::CopyAction | Qt::MoveAction},
        {"a promise still arriving: left out",
         {{"a", false, false, true}, {"b", true, false, false}},
         {"b"},
         Qt::CopyAction},
        {"nothing to hand out: no drag", {{"a", true, true, false}}, {}, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        store->removeAll();
        std::vector<ShelfItem> items;
        for (const Row& row : c.items) {
            ShelfItem made = fileItem(row.name);
            if (row.deleteOriginal) fs::remove(pathOf(made.originURL));
            if (row.deleteStaged) fs::remove(pathOf(made.stagedURL));
            made.isPromised = row.promised;
            items.push_back(made);
        }
        store->add(items);
        std::set<QUuid> all;
        for (const ShelfItem& made : items) all.insert(made.id);
        store->setSelection(all);
        const auto drag = pressAndMove(at(0), {10, 0});
        ASSERT_EQ(drag.has_value(), !c.dragged.empty());
        if (!drag) continue;
        EXPECT_EQ(names(drag->items), c.dragged);
        EXPECT_EQ(drag->operations, c.operations);
        if (c.items[0].deleteOriginal && !c.items[0].deleteStaged) {
            EXPECT_TRUE(typeBytes(*drag, "text/uri-list").contains("/staged/a\r\n")) << "the copy stands in";
        }
        source->dragEnded(false, false);
    }
}

TEST_F(DragSourceTest, ADropRemovesTheItemsExactlyWhenThePreferenceAndShiftDiffer) {
    struct Row {
        bool preference;
        bool shift;
        bool accepted;
        bool removes;
    };
    const Row rows[] = {
        {true, false, true, true},    {true, true, true, false},   {false, false, true, false},
        {false, true, true, true},    {true, false, false, false}, {true, true, false, false},
        {false, false, false, false}, {false, true, false, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(::testing::Message() << "preference " << row.preference << ", shift " << row.shift
                                          << ", accepted " << row.accepted);
        store->removeAll();
        store->add({fileItem("a"), fileItem("b"), fileItem("c")});
        store->setSelection({at(0).id, at(1).id});
        preferences.setRemoveItemsWhenDraggedOut(row.preference);
        const size_t historyBefore = store->removalHistory().size();
        ASSERT_TRUE(pressAndMove(at(1), {0, 10}));
        source->dragEnded(row.accepted, row.shift);
        EXPECT_TRUE(source->draggedItems().empty());
        const std::vector<QString> expected =
            row.removes ? std::vector<QString>{"c"} : std::vector<QString>{"a", "b", "c"};
        EXPECT_EQ(itemNames(), expected);
        if (!row.removes) continue;
        EXPECT_EQ(store->removalHistory().size(), historyBefore + 1);
        store->restoreLastRemoved();
        EXPECT_EQ(itemNames(), (std::vector<QString>{"a", "b", "c"})) << "brought back";
        EXPECT_TRUE(fs::exists(pathOf(at(0).stagedURL))) << "the copies stay for the target to fetch";
    }
}

TEST_F(DragSourceTest, ADoubleClickOpensOneItemAndRevealsAStacksMembersThatStillExist) {
    const QUuid stack = QUuid::createUuid();
    ShelfItem single = fileItem("single.txt");
    ShelfItem there = fileItem("there", "1", stack);
    ShelfItem copyOnly = fileItem("copy-only", "2", stack);
    ShelfItem gone = fileItem("gone", "3", stack);
    fs::remove(pathOf(copyOnly.originURL));
    fs::remove(pathOf(gone.originURL));
    fs::remove(pathOf(gone.stagedURL));
    store->add({single, there, copyOnly, gone});

    source->mouseDown(at(0), kMiddle, kTile, false);
    source->mouseUp(1);
    source->mouseDown(at(0), kMiddle, kTile, false);
    source->mouseUp(2);
    EXPECT_EQ(workspace.opened, (std::vector<QUrl>{*single.originURL}));

    source->mouseDown(at(1), kMiddle, kTile, false);
    source->mouseUp(2);
    ASSERT_EQ(workspace.revealed.size(), 1u);
    EXPECT_EQ(workspace.revealed[0], (std::vector<QUrl>{*there.originURL, *copyOnly.stagedURL}));
    EXPECT_EQ(workspace.opened.size(), 1u) << "a stack is never opened";
}

TEST_F(DragSourceTest, ARightClickSelectsAnUnselectedTileThenAsksForItsMenu) {
    store->add({fileItem("a"), fileItem("b"), fileItem("c")});
    store->setSelection({at(0).id, at(1).id});
    source->rightMouseDown(at(1), {});
    EXPECT_EQ(selectedNames(), (std::set<QString>{"a", "b"})) << "already selected: kept";
    source->rightMouseDown(at(2), {});
    EXPECT_EQ(selectedNames(), (std::set<QString>{"c"}));
    EXPECT_EQ(menu.shownFor, (std::vector<QString>{"b", "c"}));
}

}  // namespace
}  // namespace mosswick
