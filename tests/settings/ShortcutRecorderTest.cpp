#include <gtest/gtest.h>

#include <set>

#include "model/DefaultsStore.h"
#include "settings/ShortcutRecorder.h"
#include "triggers/HotKeyManager.h"
#include "triggers/SystemLog.h"
#include "support/ManualScheduler.h"

using mosswick::HotKeyManager;
using mosswick::HotKeyService;
using mosswick::KeyCombo;
using mosswick::MemoryDefaultsStore;
using mosswick::ShortcutRecorder;
using Outcome = mosswick::ShortcutRecorder::Outcome;

namespace {

// Grabs any key but those another program is said to hold.
class GrabbingService final : public HotKeyService {
public:
    void installHandler(EventHandler, FailureHandler lateFailures) override {
        lateFailures_ = std::move(lateFailures);
    }
    Registration registerHotKey(const KeyCombo& combo) override {
        if (heldElsewhere.contains(combo.keyCode)) return {std::nullopt, 10};
        grabbed = combo;
        return {++lastHandle, 0};
    }
    // As a portal does: the handle given out is refused a moment later.
    void refuseLater() {
        grabbed.reset();
        if (lateFailures_) lateFailures_(lastHandle, 2);
    }
    void unregisterHotKey(Handle) override { grabbed.reset(); }

    std::set<quint16> heldElsewhere;
    std::optional<KeyCombo> grabbed;
    Handle lastHandle = 0;

private:
    FailureHandler lateFailures_;
};

constexpr quint16 kA = 0;
constexpr quint16 kSpace = 49;
constexpr quint16 kF5 = 96;
constexpr quint16 kF9 = 101;
constexpr quint16 kF20 = 90;
constexpr quint64 kCtrlAlt = KeyCombo::kControl | KeyCombo::kOption;
const KeyCombo kOld{kF5, 0};

struct KeyCase {
    const char* what;
    quint16 keyCode;
    quint64 modifiers;
    Outcome outcome;
    std::optional<KeyCombo> shortcutAfter;  // registered, grabbed and stored
    bool stillRecording;

    friend void PrintTo(const KeyCase& c, std::ostream* os) { *os << c.what; }
};

class ShortcutRecorderTest : public ::testing::TestWithParam<KeyCase> {
protected:
    ShortcutRecorderTest() {
        mosswick::SystemLog::setSink([](const QString&) {});
    }
    ~ShortcutRecorderTest() override { mosswick::SystemLog::setSink({}); }

    GrabbingService service;
    mosswick::testing::ManualScheduler clock;
    MemoryDefaultsStore store;
    HotKeyManager hotKeys{service, clock, store};
};

TEST_P(ShortcutRecorderTest, TheNextKeyDecidesTheShortcut) {
    const KeyCase& c = GetParam();
    hotKeys.registerCombo(kOld);
    ShortcutRecorder recorder(hotKeys);
    int changes = 0;
    recorder.onChange = [&] { ++changes; };
    recorder.toggleRecording();
    EXPECT_EQ(recorder.buttonTitle(), QStringLiteral("Press keys…"));

    EXPECT_EQ(recorder.keyPressed(c.keyCode, c.modifiers), c.outcome) << c.what;
    EXPECT_EQ(hotKeys.combo(), c.shortcutAfter) << c.what;
    EXPECT_EQ(service.grabbed, c.shortcutAfter) << c.what;
    EXPECT_EQ(KeyCombo::load(store), c.shortcutAfter) << c.what;
    EXPECT_EQ(recorder.isRecording(), c.stillRecording) << c.what;
    EXPECT_EQ(changes, c.stillRecording ? 1 : 2) << c.what;
    if (!c.stillRecording) {
        EXPECT_EQ(recorder.buttonTitle(),
                  c.shortcutAfter ? c.shortcutAfter->displayString() : QStringLiteral("Click to record"));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Keys, ShortcutRecorderTest,
    ::testing::Values(
        KeyCase{"Ctrl+Alt+Space", kSpace, kCtrlAlt, Outcome::recorded, KeyCombo{kSpace, kCtrlAlt}, false},
        KeyCase{"Super+A", kA, KeyCombo::kCommand, Outcome::recorded, KeyCombo{kA, KeyCombo::kCommand},
                false},
        KeyCase{"F9 alone", kF9, 0, Outcome::recorded, KeyCombo{kF9, 0}, false},
        KeyCase{"F20 alone", kF20, 0, Outcome::recorded, KeyCombo{kF20, 0}, false},
        KeyCase{"stray bits are dropped", kA, KeyCombo::kShift | 0x800000, Outcome::recorded,
                KeyCombo{kA, KeyCombo::kShift}, false},
        KeyCase{"a bare letter would eat typing", kA, 0, Outcome::ignored, kOld, true},
        KeyCase{"a bare space too", kSpace, 0, Outcome::ignored, kOld, true},
        KeyCase{"only unknown bits count as none", kA, 0x800000, Outcome::ignored, kOld, true},
        KeyCase{"Escape cancels", ShortcutRecorder::kEscape, 0, Outcome::cancelled, kOld, false},
        KeyCase{"Ctrl+Escape is a shortcut", ShortcutRecorder::kEscape, KeyCombo::kControl, Outcome::recorded,
                KeyCombo{ShortcutRecorder::kEscape, KeyCombo::kControl}, false},
        KeyCase{"Backspace removes it", ShortcutRecorder::kBackspace, 0, Outcome::removed, std::nullopt,
                false}));

TEST_F(ShortcutRecorderTest, AKeyHeldElsewhereLeavesTheOldShortcutWorkingAndSaysSo) {
    struct Case {
        std::optional<KeyCombo> before;
        const char* says;
    };
    for (const Case& c :
         {Case{kOld, "Ctrl+Alt+Space is already taken by another program. The shortcut is still F5."},
          Case{std::nullopt,
               "Ctrl+Alt+Space is already taken by another program. There is "
               "still no shortcut."}}) {
        hotKeys.registerCombo(c.before);
        service.heldElsewhere = {kSpace};
        ShortcutRecorder recorder(hotKeys);
        recorder.toggleRecording();

        EXPECT_EQ(recorder.keyPressed(kSpace, kCtrlAlt), Outcome::refused);
        EXPECT_EQ(recorder.message(), QString::fromUtf8(c.says));
        EXPECT_EQ(hotKeys.combo(), c.before);
        EXPECT_EQ(hotKeys.isRegistered(), c.before.has_value());
        EXPECT_EQ(service.grabbed, c.before);
        EXPECT_EQ(KeyCombo::load(store), c.before);
        EXPECT_FALSE(recorder.isRecording());

        // The next success clears the message.
        service.heldElsewhere.clear();
        recorder.toggleRecording();
        EXPECT_EQ(recorder.keyPressed(kSpace, kCtrlAlt), Outcome::recorded);
        EXPECT_TRUE(recorder.message().isEmpty());
    }
}

TEST_F(ShortcutRecorderTest, ALateRefusalOfTheRecordedKeyPutsTheOldOneBack) {
    hotKeys.registerCombo(kOld);
    ShortcutRecorder recorder(hotKeys);
    int changes = 0;
    recorder.onChange = [&] { ++changes; };
    recorder.toggleRecording();
    ASSERT_EQ(recorder.keyPressed(kSpace, kCtrlAlt), Outcome::recorded);
    changes = 0;
    service.refuseLater();
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(hotKeys.combo(), kOld);
    EXPECT_TRUE(hotKeys.isRegistered());
    EXPECT_EQ(service.grabbed, kOld);
    EXPECT_EQ(KeyCombo::load(store), kOld);
    EXPECT_EQ(
        recorder.message(),
        QStringLiteral("Ctrl+Alt+Space is already taken by another program. The shortcut is still F5."));

    // Refusing the old shortcut later is not the recorder's business: nothing is undone.
    changes = 0;
    service.refuseLater();
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(KeyCombo::load(store), kOld);
}

TEST_F(ShortcutRecorderTest, KeysOutsideRecordingAndTheRemoveButton) {
    hotKeys.registerCombo(kOld);
    ShortcutRecorder recorder(hotKeys);
    EXPECT_EQ(recorder.keyPressed(kSpace, kCtrlAlt), Outcome::ignored);
    EXPECT_EQ(hotKeys.combo(), kOld);

    recorder.toggleRecording();
    recorder.toggleRecording();  // a second click stops
    EXPECT_FALSE(recorder.isRecording());
    EXPECT_EQ(recorder.keyPressed(kSpace, kCtrlAlt), Outcome::ignored);

    recorder.toggleRecording();
    recorder.remove();
    EXPECT_FALSE(recorder.isRecording());
    EXPECT_FALSE(service.grabbed);
    EXPECT_EQ(KeyCombo::load(store), std::nullopt);
    EXPECT_EQ(recorder.buttonTitle(), QStringLiteral("Click to record"));
}

}  // namespace
