#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QKeyEvent>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>

#include "model/DefaultsStore.h"
#include "model/Preferences.h"
#include "settings/ApplicationCatalog.h"
#include "settings/SettingsWindow.h"
#include "settings/ShortcutRecorderView.h"
#include "triggers/DummyHotKeyService.h"
#include "triggers/HotKeyManager.h"
#include "support/ManualScheduler.h"

using namespace mosswick;

namespace {

class FixedCatalog final : public ApplicationCatalog {
public:
    std::vector<InstalledApplication> applications() override {
        return {{QStringLiteral("org.gnome.Nautilus"), QStringLiteral("Files"), {}}};
    }
};

class FailingLoginItem final : public LoginItem {
public:
    bool isEnabled() const override { return enabled; }
    QString setEnabled(bool on) override {
        if (failWith.isEmpty()) enabled = on;
        return failWith;
    }
    bool enabled = false;
    QString failWith;
};

class SettingsWindowTest : public ::testing::Test {
protected:
    SettingsWindow& window(std::function<void()> checkForUpdates = {}) {
        window_ = std::make_unique<SettingsWindow>(
            SettingsWindow::Services{preferences, defaults, hotKeys, login, catalog, [this] { ++rebuilds; },
                                     std::move(checkForUpdates), QStringLiteral("updates.example.org")});
        return *window_;
    }
    template <typename T>
    T* find(const QString& name) {
        T* found = window_->findChild<T*>(name);
        EXPECT_TRUE(found) << qPrintable(name);
        return found;
    }
    QCheckBox* checkBox(const QString& text) {
        for (QCheckBox* box : window_->findChildren<QCheckBox*>())
            if (box->text().remove(QLatin1Char('&')) == text) return box;
        ADD_FAILURE() << "no check box " << qPrintable(text);
        return nullptr;
    }

    MemoryDefaultsStore defaults;
    Preferences preferences{defaults};
    DummyHotKeyService keys;
    mosswick::testing::ManualScheduler clock;
    HotKeyManager hotKeys{keys, clock, defaults};
    FailingLoginItem login;
    FixedCatalog catalog;
    int rebuilds = 0;
    std::unique_ptr<SettingsWindow> window_;
};

TEST_F(SettingsWindowTest, EveryBoxWritesItsPreferenceAtOnceAndFollowsChangesMadeElsewhere) {
    window().show();
    struct Case {
        const char* text;
        std::function<bool()> read;
    };
    const Case cases[] = {
        {"Show menu bar icon", [&] { return preferences.showMenuBarIcon(); }},
        {"Put the shelf back the way it was on launch", [&] { return preferences.restoreItemsOnLaunch(); }},
        {"Show the shelf automatically", [&] { return preferences.automaticallyShow(); }},
        {"Hide the shelf when the last file leaves it", [&] { return preferences.hideWhenEmpty(); }},
        {"Remove files from the shelf once they're dragged out",
         [&] { return preferences.removeItemsWhenDraggedOut(); }},
        {"Drag several selected files out together",
         [&] { return preferences.combineMultipleFilesToStack(); }},
        {"Show Quick Look previews instead of file icons",
         [&] { return preferences.showQuickLookPreviews(); }},
        {"Follow aliases to the file they point at", [&] { return preferences.resolveAliasFiles(); }},
        {"Reduce motion", [&] { return preferences.reduceMotion(); }},
    };
    for (const Case& c : cases) {
        QCheckBox* box = checkBox(QString::fromUtf8(c.text));
        ASSERT_TRUE(box);
        const bool before = c.read();
        EXPECT_EQ(box->isChecked(), before) << c.text;
        box->click();
        EXPECT_EQ(c.read(), !before) << c.text;
    }
    // Changed by the shelf's menu while the window is open: the window follows.
    preferences.setReduceMotion(false);
    EXPECT_FALSE(checkBox(QStringLiteral("Reduce motion"))->isChecked());

    QCheckBox* classic = checkBox(QStringLiteral("Use the classic material instead of glass"));
    classic->click();
    EXPECT_EQ(defaults.value(SettingsWindow::kLegacyMaterialKey), DefaultsValue(true));
    EXPECT_EQ(rebuilds, 1);
}

TEST_F(SettingsWindowTest, PickersPositionAndLimit) {
    window().show();
    auto* positions = find<QListWidget>(QStringLiteral("position"));
    positions->setCurrentRow(3);
    EXPECT_EQ(preferences.position(), ShelfPosition::rightTop);
    preferences.setPosition(ShelfPosition::leftBottom);
    EXPECT_EQ(positions->currentRow(), 2);

    auto* limit = find<QSpinBox>(QStringLiteral("maximumItemCount"));
    EXPECT_EQ(limit->text(), QStringLiteral("100 files"));
    limit->stepBy(-40);
    EXPECT_EQ(preferences.maximumItemCount(), 5);
    limit->stepBy(200);
    EXPECT_EQ(preferences.maximumItemCount(), 500);

    // The sentence's last words follow the picker, whoever changed it.
    preferences.setAlternateDragData(AlternateDragData::fileName);
    bool textEnding = false;
    for (QLabel* label : window_->findChildren<QLabel*>())
        textEnding |= label->text() == QStringLiteral("text when dragging out");
    EXPECT_TRUE(textEnding);
}

TEST_F(SettingsWindowTest, OneWindowBackOnThePaneShownLastAndUpdateControlsOnlyWithAnUpdater) {
    SettingsWindow& settings = window();
    settings.show(SettingsPane::advanced);
    settings.close();
    settings.show();
    EXPECT_EQ(settings.pane(), SettingsPane::advanced);
    settings.show(SettingsPane::about);
    EXPECT_EQ(settings.pane(), SettingsPane::about);
    const auto hasUpdateBox = [this] {
        for (QCheckBox* box : window_->findChildren<QCheckBox*>())
            if (box->text().remove(QLatin1Char('&')) == QStringLiteral("Check for updates automatically"))
                return true;
        return false;
    };
    EXPECT_FALSE(hasUpdateBox());
    int checks = 0;
    window([&checks] { ++checks; });
    EXPECT_TRUE(hasUpdateBox());
    for (QPushButton* button : window_->findChildren<QPushButton*>())
        if (button->text().remove(QLatin1Char('&')) == QStringLiteral("Check Now")) button->click();
    EXPECT_EQ(checks, 1);
}

TEST_F(SettingsWindowTest, TheLoginSwitchShowsWhyItFailedAndTheRealStateEachTimeItShows) {
    SettingsWindow& settings = window();
    QCheckBox* box = checkBox(QStringLiteral("Launch Mosswick at login"));
    auto* error = find<QLabel>(QStringLiteral("loginItemError"));
    login.failWith = QStringLiteral("Read-only file system (/home/ann/.config/autostart)");
    box->click();
    EXPECT_FALSE(box->isChecked());
    EXPECT_EQ(error->text(), QStringLiteral("Couldn't change the login item: Read-only file system "
                                            "(/home/ann/.config/autostart)"));
    login.failWith.clear();
    box->click();
    EXPECT_TRUE(box->isChecked());
    EXPECT_TRUE(error->text().isEmpty());

    settings.hide();
    login.enabled = false;  // the entry removed by hand
    settings.show();
    EXPECT_FALSE(box->isChecked());
}

// Keys as X delivers them: the X keycode (evdev + 8) in the native scan code.
TEST_F(SettingsWindowTest, TheRecorderButtonTurnsKeyEventsIntoStoredCombos) {
    ShortcutRecorderView view(hotKeys);
    hotKeys.registerCombo(KeyCombo{KeyCombo::kF5, 0});
    const auto press = [&view](int key, Qt::KeyboardModifiers modifiers, quint32 xKeycode) {
        QKeyEvent event(QEvent::KeyPress, key, modifiers, xKeycode, 0, 0);
        QApplication::sendEvent(view.button(), &event);
    };
    struct Case {
        const char* what;
        int key;
        Qt::KeyboardModifiers modifiers;
        quint32 xKeycode;
        std::optional<KeyCombo> after;
        QString title;
    };
    const Case cases[] = {
        {"Ctrl alone waits for a key", Qt::Key_Control, Qt::ControlModifier, 37, KeyCombo{KeyCombo::kF5, 0},
         QStringLiteral("Press keys…")},
        {"Ctrl+Alt+K",
         Qt::Key_K,
         Qt::ControlModifier | Qt::AltModifier,
         45,
         KeyCombo{40, KeyCombo::kControl | KeyCombo::kOption},
         {}},
        {"Super+Shift+F12",
         Qt::Key_F12,
         Qt::MetaModifier | Qt::ShiftModifier,
         96,
         KeyCombo{111, KeyCombo::kCommand | KeyCombo::kShift},
         {}},
        {"Escape keeps what was there", Qt::Key_Escape, Qt::NoModifier, 9, KeyCombo{KeyCombo::kF5, 0},
         QStringLiteral("F5")},
        {"Backspace removes it", Qt::Key_Backspace, Qt::NoModifier, 22, std::nullopt,
         QStringLiteral("Click to record")},
    };
    for (const Case& c : cases) {
        hotKeys.registerCombo(KeyCombo{KeyCombo::kF5, 0});
        view.refresh();
        view.button()->click();
        press(c.key, c.modifiers, c.xKeycode);
        EXPECT_EQ(hotKeys.combo(), c.after) << c.what;
        EXPECT_EQ(view.button()->text(), c.title.isEmpty() ? c.after->displayString() : c.title) << c.what;
        view.stopRecording();
    }
    // Not recording: keys are the button's as usual, and nothing is recorded.
    hotKeys.registerCombo(KeyCombo{KeyCombo::kF5, 0});
    press(Qt::Key_K, Qt::ControlModifier | Qt::AltModifier, 45);
    EXPECT_EQ(hotKeys.combo(), KeyCombo({KeyCombo::kF5, 0}));
}

}  // namespace
