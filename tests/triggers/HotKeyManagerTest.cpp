#include <gtest/gtest.h>

#include <QStringList>
#include <memory>
#include <vector>

#include "model/DefaultsStore.h"
#include "triggers/FallbackHotKeyService.h"
#include "triggers/HotKeyManager.h"
#include "triggers/SystemLog.h"
#include "support/ManualScheduler.h"

using mosswick::HotKeyManager;
using mosswick::HotKeyService;
using mosswick::KeyCombo;
using mosswick::MemoryDefaultsStore;
using mosswick::testing::ManualScheduler;

namespace {

// A hot-key facility under the test's control: it records what is registered and refuses what it
// is told to.
class RecordingHotKeyService final : public HotKeyService {
public:
    void installHandler(EventHandler events, FailureHandler lateFailures) override {
        ++handlerInstalls;
        events_ = std::move(events);
        lateFailures_ = std::move(lateFailures);
    }
    Registration registerHotKey(const KeyCombo& combo) override {
        if (refuseWith) return {std::nullopt, *refuseWith};
        registered.push_back({++lastHandle, combo});
        return {lastHandle, 0};
    }
    void unregisterHotKey(Handle handle) override {
        std::erase_if(registered, [handle](const auto& entry) { return entry.first == handle; });
    }

    void send(Event event) {
        if (events_) events_(event);
    }
    void refuseLater(Handle handle, qint32 status) {
        if (lateFailures_) lateFailures_(handle, status);
    }

    std::optional<qint32> refuseWith;
    std::vector<std::pair<Handle, KeyCombo>> registered;
    Handle lastHandle = 0;
    int handlerInstalls = 0;

private:
    EventHandler events_;
    FailureHandler lateFailures_;
};

const KeyCombo kCtrlAltSpace{49, KeyCombo::kControl | KeyCombo::kOption};

class HotKeyManagerTest : public ::testing::Test {
protected:
    HotKeyManagerTest() {
        manager.onToggle = [this] { record("toggle"); };
        manager.onLongPress = [this] { record("long"); };
        manager.onDoublePress = [this] { record("double"); };
        mosswick::SystemLog::setSink([this](const QString& line) { log << line; });
    }
    ~HotKeyManagerTest() override { mosswick::SystemLog::setSink({}); }

    void record(const char* what) {
        events << QStringLiteral("%1@%2").arg(QLatin1String(what)).arg(clock.now(), 0, 'f', 2);
    }

    // Space-separated steps: "press", "release", "register", or "+seconds" to let time pass.
    void run(const QString& script) {
        for (const QString& step : script.split(u' ', Qt::SkipEmptyParts)) {
            if (step.startsWith(u'+'))
                clock.advance(step.mid(1).toDouble());
            else if (step == u"press")
                service.send(HotKeyService::Event::pressed);
            else if (step == u"release")
                service.send(HotKeyService::Event::released);
            else if (step == u"register")
                manager.registerCombo(KeyCombo{96, 0});
            else
                ADD_FAILURE() << "unknown step " << step.toStdString();
        }
    }

    ManualScheduler clock;
    MemoryDefaultsStore store;
    RecordingHotKeyService service;
    HotKeyManager manager{service, clock, store};
    QStringList events;
    QStringList log;
};

struct PressScript {
    const char* name;
    const char* script;
    const char* events;
};

class HotKeyPresses : public HotKeyManagerTest, public ::testing::WithParamInterface<PressScript> {};

TEST_P(HotKeyPresses, TurnPressesIntoOneCallback) {
    manager.registerCombo(KeyCombo{96, 0});
    run(QString::fromLatin1(GetParam().script));
    EXPECT_EQ(events.join(u' ').toStdString(), GetParam().events) << GetParam().script;
}

const PressScript kPressScripts[] = {
    // A tap toggles once the double-press window after its release has passed, never sooner.
    {"tap", "press +0.1 release +1", "toggle@0.40"},
    {"tapNotSooner", "press +0.1 release +0.29", ""},
    {"twoSlowTaps", "press +0.1 release +0.35 press +0.1 release +1", "toggle@0.40 toggle@0.85"},
    {"doublePress", "press +0.1 release +0.1 press +0.1 release +1", "double@0.20"},
    {"doublePressAtWindowEnd", "press release +0.29 press release +1", "double@0.29"},
    // The second press of a double press is never a long press, however long it is held.
    {"doubleThenHeld", "press release +0.1 press +1 release +1", "double@0.10"},
    {"hold", "press +1 release +1", "long@0.45"},
    {"releasedJustBeforeHold", "press +0.44 release +1", "toggle@0.74"},
    {"holdThenTap", "press +0.5 release +0.1 press +0.1 release +1", "long@0.45 toggle@1.00"},
    {"doubleThenTap", "press release +0.1 press release +0.35 press release +1", "double@0.10 toggle@0.75"},
    // Registering again forgets a press in progress and a tap waiting for its second press.
    {"registerWhileWaiting", "press release +0.1 register +1", ""},
    {"registerWhileHeld", "press +0.2 register +1", ""},
};

INSTANTIATE_TEST_SUITE_P(Table, HotKeyPresses, ::testing::ValuesIn(kPressScripts),
                         [](const ::testing::TestParamInfo<PressScript>& row) { return row.param.name; });

TEST_F(HotKeyManagerTest, RegisteringReplacesAndStoresTheShortcut) {
    manager.registerCombo(KeyCombo{96, 0});
    manager.registerCombo(kCtrlAltSpace);
    ASSERT_EQ(service.registered.size(), 1u);
    EXPECT_EQ(service.registered.front().second, kCtrlAltSpace);
    EXPECT_EQ(KeyCombo::load(store), kCtrlAltSpace);
    EXPECT_EQ(service.handlerInstalls, 1);
    EXPECT_TRUE(manager.isRegistered());

    manager.registerCombo(std::nullopt);
    EXPECT_TRUE(service.registered.empty());
    EXPECT_EQ(KeyCombo::load(store), std::nullopt);
    EXPECT_FALSE(manager.isRegistered());
    EXPECT_TRUE(log.isEmpty());
}

TEST_F(HotKeyManagerTest, RefusalIsLoggedAndTheShortcutStaysStored) {
    service.refuseWith = 10;
    manager.registerCombo(kCtrlAltSpace);
    EXPECT_FALSE(manager.isRegistered());
    EXPECT_EQ(manager.combo(), kCtrlAltSpace);
    EXPECT_EQ(KeyCombo::load(store), kCtrlAltSpace);
    EXPECT_EQ(log, QStringList{
                       QStringLiteral("Mosswick: could not register shortcut Ctrl+Alt+Space (OSStatus 10)")});
}

TEST_F(HotKeyManagerTest, LateRefusalOfTheCurrentRegistrationOnly) {
    manager.registerCombo(KeyCombo{96, 0});
    const auto first = service.lastHandle;
    manager.registerCombo(kCtrlAltSpace);
    service.refuseLater(first, 2);
    EXPECT_TRUE(manager.isRegistered());
    EXPECT_TRUE(log.isEmpty());

    run("press");
    service.refuseLater(service.lastHandle, 1);
    EXPECT_FALSE(manager.isRegistered());
    EXPECT_EQ(log, QStringList{
                       QStringLiteral("Mosswick: could not register shortcut Ctrl+Alt+Space (OSStatus 1)")});
    run("+1");
    EXPECT_TRUE(events.isEmpty());
}

TEST_F(HotKeyManagerTest, UnregisteringAtQuitKeepsTheStoredShortcut) {
    manager.registerCombo(kCtrlAltSpace);
    run("press release");
    manager.unregister();
    EXPECT_TRUE(service.registered.empty());
    EXPECT_EQ(KeyCombo::load(store), kCtrlAltSpace);
    EXPECT_EQ(clock.pendingTimers(), 0u);
}

}  // namespace

namespace {

// The portal-then-grab pair: a desktop that binds nothing moves the shortcut to the grab for good,
// and the manager keeps working without noticing; any other refusal still reaches it.
class FallbackHotKeys : public ::testing::Test {
protected:
    static constexpr qint32 kBoundNothing = 3;
    static constexpr qint32 kFailedAtOnce = 2;

    FallbackHotKeys() {
        auto preferredService = std::make_unique<RecordingHotKeyService>();
        auto fallbackService = std::make_unique<RecordingHotKeyService>();
        preferred = preferredService.get();
        fallback = fallbackService.get();
        service = std::make_unique<mosswick::FallbackHotKeyService>(
            std::move(preferredService), std::move(fallbackService),
            [](qint32 status) { return status == kBoundNothing || status == kFailedAtOnce; });
        service->onFallBack = [this] { ++fallBacks; };
        manager = std::make_unique<HotKeyManager>(*service, clock, store);
        manager->onToggle = [this] { ++toggles; };
        manager->onLateRefusal = [this](const KeyCombo& combo) { refused.push_back(combo); };
    }

    ManualScheduler clock;
    MemoryDefaultsStore store;
    RecordingHotKeyService* preferred;
    RecordingHotKeyService* fallback;
    std::unique_ptr<mosswick::FallbackHotKeyService> service;
    std::unique_ptr<HotKeyManager> manager;
    int fallBacks = 0;
    int toggles = 0;
    std::vector<KeyCombo> refused;
};

TEST_F(FallbackHotKeys, ADesktopThatBindsNothingHandsTheKeyToTheFallbackForGood) {
    manager->registerCombo(kCtrlAltSpace);
    ASSERT_EQ(preferred->registered.size(), 1u);
    preferred->refuseLater(preferred->registered.front().first, kBoundNothing);

    EXPECT_FALSE(service->usesPreferred());
    EXPECT_EQ(fallBacks, 1);
    EXPECT_TRUE(refused.empty());
    EXPECT_TRUE(manager->isRegistered());
    ASSERT_EQ(fallback->registered.size(), 1u);
    EXPECT_EQ(fallback->registered.front().second, kCtrlAltSpace);

    fallback->send(HotKeyService::Event::pressed);
    fallback->send(HotKeyService::Event::released);
    clock.advance(1);
    EXPECT_EQ(toggles, 1);

    // The next shortcut goes straight to the fallback, and the old grab is let go.
    manager->registerCombo(KeyCombo{96, 0});
    ASSERT_EQ(fallback->registered.size(), 1u);
    EXPECT_EQ(fallback->registered.front().second, (KeyCombo{96, 0}));
    EXPECT_EQ(preferred->registered.size(), 1u);  // only the first, never asked again
    manager->registerCombo(std::nullopt);
    EXPECT_TRUE(fallback->registered.empty());
    EXPECT_EQ(fallBacks, 1);
}

TEST_F(FallbackHotKeys, APreferredServiceThatFailsAtOnceAlsoHandsOver) {
    preferred->refuseWith = kFailedAtOnce;
    manager->registerCombo(kCtrlAltSpace);
    EXPECT_TRUE(manager->isRegistered());
    EXPECT_EQ(fallBacks, 1);
    ASSERT_EQ(fallback->registered.size(), 1u);
    EXPECT_EQ(fallback->registered.front().second, kCtrlAltSpace);
}

TEST_F(FallbackHotKeys, OtherRefusalsReachTheManager) {
    manager->registerCombo(kCtrlAltSpace);
    preferred->refuseLater(preferred->registered.front().first, 1);  // cancelled by the user
    EXPECT_TRUE(service->usesPreferred());
    EXPECT_EQ(refused, std::vector<KeyCombo>{kCtrlAltSpace});
    EXPECT_FALSE(manager->isRegistered());
}

}  // namespace
