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

// Whether the shortcut is held. What its presses do is shown by the desktop test triggers_shortcut.
class RegisteredHotKeys final : public HotKeyService {
public:
    void installHandler(EventHandler, FailureHandler) override {}
    Registration registerHotKey(const KeyCombo&) override {
        registered = true;
        return {1, 0};
    }
    void unregisterHotKey(Handle) override { registered = false; }
    bool registered = false;
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
    ShelfWindowController controller{{preferences, store, clock, environment, desktopMotion,
                                      [](const ScreenRect&) { return std::make_unique<FakeShelfPanel>(); }}};
    DummyDesktopProbe probe;
    DragMonitor monitor{probe, environment, clock, preferences};
    RegisteredHotKeys keys;
    HotKeyManager hotKeys{keys, clock, defaults};
    SleepyMachine machine;
    AppDelegate delegate{
        {preferences, store, controller, monitor, hotKeys, defaults, [] {}, [](AppearanceMode) {}, machine}};
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
