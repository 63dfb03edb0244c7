#include <gtest/gtest.h>

#include "../shelf/FakeDisplayEnvironment.h"
#include "../shelf/FakeShelfPanel.h"
#include "app/AppDelegate.h"
#include "model/DefaultsStore.h"
#include "model/ItemStaging.h"
#include "model/LocalPath.h"
#include "model/Preferences.h"
#include "model/ShelfStore.h"
#include "triggers/DragMonitor.h"
#include "triggers/DummyDesktopProbe.h"
#include "triggers/HotKeyManager.h"
#include "triggers/SleepWatch.h"
#include "shelf/ShelfWindowController.h"
#include "support/ManualScheduler.h"
#include "support/TestFolders.h"

namespace mosswick {
namespace {

using testing::FakeDesktopMotionSetting;
using testing::FakeDisplayEnvironment;
using testing::FakeShelfPanel;
using testing::ManualScheduler;

// The shortcut as the user presses it.
class PressableHotKeys final : public HotKeyService {
public:
    void installHandler(EventHandler events, FailureHandler) override { events_ = std::move(events); }
    Registration registerHotKey(const KeyCombo&) override {
        registered = true;
        return {1, 0};
    }
    void unregisterHotKey(Handle) override { registered = false; }
    void send(Event event) { events_(event); }
    bool registered = false;

private:
    EventHandler events_;
};

// The machine as the test sends it to sleep and wakes it.
class SleepyMachine final : public SleepWatch {
public:
    void watchWakes(std::function<void()> woke) override { woke_ = std::move(woke); }
    void wake() {
        if (woke_) woke_();
    }

private:
    std::function<void()> woke_;
};

class AppDelegateTest : public ::testing::Test {
protected:
    AppDelegateTest() {
        testing::clearAppData();
        environment.displayList = {Display{{0, 0, 1440, 900}, {0, 0, 1440, 875}}};
        environment.pointer = {700, 450};
    }

    ShelfItem stagedItem(const char* name) {
        ShelfItem item;
        item.id = QUuid::createUuid();
        item.displayName = QString::fromLatin1(name);
        const auto file = ItemStaging::itemFolder(item.id) / name;
        testing::writeFile(file, name);
        item.stagedURL = LocalPath::toUrl(file);
        return item;
    }

    void launch() { delegate.applicationDidFinishLaunching(); }

    ManualScheduler clock;
    MemoryDefaultsStore defaults;
    Preferences preferences{defaults};
    ShelfStore store{preferences, clock, testing::freshFolder("app") / "shelf.json"};
    FakeDisplayEnvironment environment;
    FakeDesktopMotionSetting desktopMotion;
    FakeShelfPanel* panel = nullptr;
    ShelfWindowController controller{
        {preferences, store, clock, environment, desktopMotion, [this](const ScreenRect& frame) {
             auto made = std::make_unique<FakeShelfPanel>();
             made->standAt(frame);
             panel = made.get();
             return made;
         }}};
    DummyDesktopProbe probe;
    DragMonitor monitor{probe, environment, clock, preferences};
    PressableHotKeys keys;
    HotKeyManager hotKeys{keys, clock, defaults};
    int clipboardImports = 0;
    std::vector<AppearanceMode> appearances;
    SleepyMachine machine;
    AppDelegate delegate{{preferences, store, controller, monitor, hotKeys, defaults,
                          [this] { ++clipboardImports; },
                          [this](AppearanceMode mode) { appearances.push_back(mode); }, machine}};
};

TEST_F(AppDelegateTest, ARestoredShelfStaysAwayUntilTheApplicationIsOpenedAgain) {
    store.add({stagedItem("kept.txt")});
    launch();
    EXPECT_TRUE(controller.presentation().hasContent);
    EXPECT_TRUE(controller.presentation().isSuppressed);
    EXPECT_FALSE(controller.isShown());
    EXPECT_TRUE(keys.registered);

    EXPECT_TRUE(delegate.applicationShouldHandleReopen());
    EXPECT_TRUE(controller.isShown());
}

TEST_F(AppDelegateTest, TheShortcutTogglesBringsBackAndImports) {
    launch();
    const ShelfItem removed = stagedItem("removed.txt");
    store.add({removed});
    store.remove({removed.id}, true);

    keys.send(HotKeyService::Event::pressed);  // held: bring back and summon
    clock.advance(HotKeyManager::kLongPressDelay + 0.05);
    keys.send(HotKeyService::Event::released);
    clock.advance(1);
    ASSERT_EQ(store.items().size(), 1u);
    EXPECT_EQ(store.items()[0].id, removed.id);
    EXPECT_TRUE(controller.isShown());

    for (int tap = 0; tap < 2; ++tap) {  // double press: the clipboard
        keys.send(HotKeyService::Event::pressed);
        keys.send(HotKeyService::Event::released);
        clock.advance(0.05);
    }
    clock.advance(1);
    EXPECT_EQ(clipboardImports, 1);
}

TEST_F(AppDelegateTest, WakingDropsOnlyItemsWhoseFilesAreGoneEverywhere) {
    launch();
    ShelfItem copyOnly = stagedItem("copy.txt");
    copyOnly.originURL = LocalPath::toUrl("/nonexistent/original.txt");
    ShelfItem lost = stagedItem("lost.txt");
    ShelfItem promised;
    promised.id = QUuid::createUuid();
    promised.displayName = QStringLiteral("incoming.zip");
    promised.isPromised = true;
    store.add({copyOnly, lost, promised});
    std::filesystem::remove_all(ItemStaging::itemFolder(lost.id));

    machine.wake();
    ASSERT_EQ(store.items().size(), 2u);
    EXPECT_EQ(store.items()[0].id, copyOnly.id);
    EXPECT_EQ(store.items()[1].id, promised.id);
    EXPECT_TRUE(store.removalHistory().empty());
}

TEST_F(AppDelegateTest, QuittingSavesAPendingChangeAndReleasesTheKey) {
    launch();
    store.add({stagedItem("late.txt")});
    ASSERT_TRUE(store.hasPendingSave());
    delegate.applicationWillTerminate();
    EXPECT_FALSE(store.hasPendingSave());
    EXPECT_FALSE(keys.registered);
    EXPECT_EQ(store.saveFile().read().items.size(), 1u);
}

}  // namespace
}  // namespace mosswick
