// The three menus as data, and what their rows do to the shelf.
#include <gtest/gtest.h>

#include <QUrl>

#include "ShelfFixture.h"
#include "interaction/MenuActions.h"
#include "interaction/ShelfMenus.h"
#include "interaction/FileClipboard.h"
#include "interaction/Workspace.h"
#include "shelf/FakeDisplayEnvironment.h"
#include "shelf/FakeShelfPanel.h"
#include "shelf/ShelfWindowController.h"

namespace mosswick {
namespace {

using testing::FakeDesktopMotionSetting;
using testing::FakeDisplayEnvironment;
using testing::FakeShelfPanel;

class RecordingWorkspace final : public Workspace, public FileClipboard {
public:
    void open(const QUrl& location) override { opened.push_back(location.toLocalFile()); }
    void reveal(const std::vector<QUrl>& locations) override {
        revealed.emplace_back();
        for (const QUrl& url : locations) revealed.back().push_back(url.toLocalFile());
    }
    void putFiles(const std::vector<QUrl>& locations) override {
        copied.clear();
        for (const QUrl& url : locations) copied.push_back(url.toLocalFile());
    }
    std::vector<QString> opened;
    std::vector<std::vector<QString>> revealed;
    std::vector<QString> copied;
};

const MenuEntry* find(const MenuContent& menu, const QString& title) {
    for (const MenuEntry& entry : menu)
        if (entry.title == title) return &entry;
    return nullptr;
}

std::vector<QString> titles(const MenuContent& menu) {
    std::vector<QString> all;
    for (const MenuEntry& entry : menu)
        all.push_back(entry.kind == MenuEntry::Kind::separator ? "-" : entry.title);
    return all;
}

std::vector<QString> checkedTitles(const MenuContent& menu) {
    std::vector<QString> checked;
    for (const MenuEntry& entry : menu)
        if (entry.checked) checked.push_back(entry.title);
    return checked;
}

class ShelfMenusTest : public testing::ShelfFixture {
protected:
    void SetUp() override {
        ShelfFixture::SetUp();
        displays.displayList = {Display{{0, 0, 1440, 900}, {0, 0, 1440, 900}}};
        controller = std::make_unique<ShelfWindowController>(ShelfWindowController::Services{
            preferences, *store, clock, displays, motionSetting, [](const ScreenRect& frame) {
                auto made = std::make_unique<FakeShelfPanel>();
                made->standAt(frame);
                return made;
            }});
        actions = std::make_unique<MenuActions>(MenuActions::Services{
            preferences, *store, *controller, workspace, workspace, [] {}, [] {}, [] {}, {}, [] {}});
    }
    void TearDown() override {
        actions.reset();
        controller.reset();
        ShelfFixture::TearDown();
    }

    ShelfMenus::Sources sources(bool hasUpdater = false) const { return {preferences, *store, hasUpdater}; }

    // An item whose original is a real file, so it has something to open and copy.
    ShelfItem fileItem(const QString& name, std::optional<QUuid> batch = std::nullopt) {
        const std::filesystem::path path = folder / name.toStdString();
        testing::writeFile(path, "bytes");
        ShelfItem made = item(name, QStringLiteral("text/plain"), batch);
        made.originURL = QUrl::fromLocalFile(QString::fromStdString(path.string()));
        return made;
    }
    QString file(const QString& name) const {
        return QString::fromStdString((folder / name.toStdString()).string());
    }

    std::filesystem::path folder = testing::freshFolder("menu-files");
    FakeDisplayEnvironment displays;
    FakeDesktopMotionSetting motionSetting;
    RecordingWorkspace workspace;
    std::unique_ptr<ShelfWindowController> controller;
    std::unique_ptr<MenuActions> actions;
};

TEST_F(ShelfMenusTest, TheApplicationMenuListsItsRowsAndChecksOneOfEachChoice) {
    preferences.setPosition(ShelfPosition::leftBottom);
    preferences.setSize(ShelfSize::biggest);
    const MenuContent menu = ShelfMenus::mainMenu(sources());
    EXPECT_EQ(titles(menu),
              (std::vector<QString>{"Window Position", "Window Size", "-", "Bring Back Last Removed Files",
                                    "Add Clipboard Contents to Mosswick", "-", "About Mosswick", "Settings…",
                                    "-", "Quit Mosswick"}));
    EXPECT_FALSE(find(menu, "Bring Back Last Removed Files")->enabled);
    EXPECT_EQ(find(menu, "Quit Mosswick")->shortcut, "Ctrl+Q");

    const MenuContent& positions = find(menu, "Window Position")->submenu;
    EXPECT_EQ(titles(positions),
              (std::vector<QString>{"Left Edge of Screen", "Left Edge, Top", "Left Edge, Center",
                                    "Left Edge, Bottom", "-", "Right Edge of Screen", "Right Edge, Top",
                                    "Right Edge, Center", "Right Edge, Bottom"}));
    EXPECT_FALSE(positions[0].enabled);
    EXPECT_EQ(positions[1].indentation, 1);
    EXPECT_EQ(positions[3].argument, "leftBottom");
    EXPECT_EQ(checkedTitles(positions), std::vector<QString>{"Left Edge, Bottom"});
    EXPECT_EQ(checkedTitles(find(menu, "Window Size")->submenu), std::vector<QString>{"Biggest"});

    EXPECT_NE(find(ShelfMenus::mainMenu(sources(true)), "Check for Updates…"), nullptr);
}

TEST_F(ShelfMenusTest, TheShelfsMenuDisablesWhatHasNothingToActOnAndShowsNoShortcuts) {
    const MenuContent empty = ShelfMenus::panelMenuContent(sources());
    EXPECT_FALSE(find(empty, "Bring Back Last Removed Files")->enabled);
    EXPECT_FALSE(find(empty, "Clear the Shelf")->enabled);
    EXPECT_TRUE(find(empty, "Add Clipboard Contents to Mosswick")->enabled);
    EXPECT_TRUE(find(empty, "Quit Mosswick")->shortcut.isEmpty());
    EXPECT_EQ(checkedTitles(find(empty, "Window Position")->submenu),
              std::vector<QString>{"Right Edge, Bottom"});

    const ShelfItem note = item("note.txt");
    store->add({note});
    store->remove({note.id}, true);
    store->add({item("other.txt")});
    const MenuContent full = ShelfMenus::panelMenuContent(sources());
    EXPECT_TRUE(find(full, "Bring Back Last Removed Files")->enabled);
    EXPECT_TRUE(find(full, "Clear the Shelf")->enabled);
}

TEST_F(ShelfMenusTest, TheTileMenuFollowsTheStackTheSelectionAndWhatIsThere) {
    const auto stack = std::vector<ShelfItem>{fileItem("a.txt", QUuid::createUuid())};
    std::vector<ShelfItem> three = stack;
    three.push_back(fileItem("b.txt", stack[0].batchID));
    three.push_back(fileItem("c.txt", stack[0].batchID));
    const ShelfItem single = fileItem("d.txt");
    ShelfItem waiting = item("e.txt");
    waiting.isPromised = true;
    store->add(three);
    store->add({single, waiting});

    EXPECT_NE(find(ShelfMenus::itemMenu(sources(), three[1]), "Ungroup"), nullptr);
    EXPECT_EQ(find(ShelfMenus::itemMenu(sources(), single), "Ungroup"), nullptr);

    // The title counts the selection even for a click outside it.
    store->setSelection({three[0].id, single.id});
    EXPECT_NE(find(ShelfMenus::itemMenu(sources(), waiting), "Remove 2 Items"), nullptr);
    store->setSelection({});
    EXPECT_NE(find(ShelfMenus::itemMenu(sources(), waiting), "Remove"), nullptr);

    const MenuContent promised = ShelfMenus::itemMenu(sources(), waiting);
    for (const char* title : {"Open", "Show in Folder", "Copy"})
        EXPECT_FALSE(find(promised, title)->enabled) << title;
    EXPECT_TRUE(find(ShelfMenus::itemMenu(sources(), single), "Open")->enabled);
    EXPECT_EQ(find(promised, "Mosswick")->submenu.size(), ShelfMenus::mainMenu(sources()).size());
}

TEST_F(ShelfMenusTest, RemoveAndCopyActOnTheSelectionOpenAndRevealOnTheClickedStack) {
    const QUuid batch = QUuid::createUuid();
    const ShelfItem a = fileItem("a.txt", batch), b = fileItem("b.txt", batch);
    const ShelfItem c = fileItem("c.txt"), d = fileItem("d.txt");
    store->add({d});
    store->add({c});
    store->add({a, b});
    store->setSelection({a.id, c.id});

    actions->perform(MenuCommand::copyItem, uuidString(c.id));
    EXPECT_EQ(workspace.copied, (std::vector<QString>{file("a.txt"), file("c.txt")}));  // shelf order
    actions->perform(MenuCommand::openItem, uuidString(a.id));
    EXPECT_EQ(workspace.opened, (std::vector<QString>{file("a.txt"), file("b.txt")}));
    actions->perform(MenuCommand::revealItem, uuidString(b.id));
    EXPECT_EQ(workspace.revealed, (std::vector<std::vector<QString>>{{file("a.txt"), file("b.txt")}}));

    // Outside the selection only the clicked item goes; inside, the whole selection, undoably.
    actions->perform(MenuCommand::removeItem, uuidString(d.id));
    EXPECT_EQ(itemNames(), (std::vector<QString>{"a.txt", "b.txt", "c.txt"}));
    actions->perform(MenuCommand::removeItem, uuidString(c.id));
    EXPECT_EQ(itemNames(), std::vector<QString>{"b.txt"});
    actions->perform(MenuCommand::restoreInPlace);
    EXPECT_EQ(itemNames(), (std::vector<QString>{"a.txt", "c.txt", "b.txt"}));
}

TEST_F(ShelfMenusTest, StaleOrWrongArgumentsAndMissingFilesDoNothing) {
    const ShelfItem gone = fileItem("gone.txt");
    store->add({gone});
    std::filesystem::remove(folder / "gone.txt");
    workspace.copied = {QStringLiteral("what was there")};

    for (MenuCommand command : {MenuCommand::openItem, MenuCommand::revealItem, MenuCommand::copyItem})
        actions->perform(command, uuidString(gone.id));
    EXPECT_TRUE(workspace.opened.empty());
    EXPECT_TRUE(workspace.revealed.empty());
    EXPECT_EQ(workspace.copied, std::vector<QString>{"what was there"});

    for (MenuCommand command : {MenuCommand::removeItem, MenuCommand::ungroupItem, MenuCommand::openItem})
        for (const QString& argument :
             {QString(), QStringLiteral("not an id"), uuidString(QUuid::createUuid())})
            actions->perform(command, argument);
    EXPECT_EQ(itemNames(), std::vector<QString>{"gone.txt"});

    actions->perform(MenuCommand::setPosition, QStringLiteral("LeftTop"));
    actions->perform(MenuCommand::setSize, QStringLiteral("huge"));
    EXPECT_EQ(preferences.position(), ShelfPosition::rightBottom);
    EXPECT_EQ(preferences.size(), ShelfSize::adaptiveSmallest);
}

TEST_F(ShelfMenusTest, TheApplicationMenuPreviewsAndSummonsWhereTheShelfsMenuDoesNot) {
    actions->perform(MenuCommand::assignPosition, QStringLiteral("leftTop"));
    EXPECT_EQ(preferences.position(), ShelfPosition::leftTop);
    EXPECT_FALSE(controller->presentation().isPreviewing);

    actions->perform(MenuCommand::setPosition, QStringLiteral("rightTop"));
    EXPECT_EQ(preferences.position(), ShelfPosition::rightTop);
    EXPECT_TRUE(controller->presentation().isPreviewing);

    // Bringing back with nothing to bring still summons the shelf.
    actions->perform(MenuCommand::restoreLastRemoved);
    EXPECT_TRUE(controller->presentation().isSummoned);
    actions->perform(MenuCommand::hideShelf);
    EXPECT_TRUE(controller->presentation().isSuppressed);
    EXPECT_FALSE(controller->presentation().isSummoned);
}

}  // namespace
}  // namespace mosswick
