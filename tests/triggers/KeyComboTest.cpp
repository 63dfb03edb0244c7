#include <gtest/gtest.h>

#include <map>

#include "model/DefaultsStore.h"
#include "triggers/EvdevKeyCodes.h"
#include "triggers/KeyCodeNames.h"
#include "triggers/KeyCombo.h"
#include "triggers/KeyboardLayout.h"

using mosswick::DefaultsValue;
using mosswick::KeyboardLayout;
using mosswick::KeyCombo;
using mosswick::MemoryDefaultsStore;
namespace EvdevKeyCodes = mosswick::EvdevKeyCodes;
namespace KeyCodeNames = mosswick::KeyCodeNames;

namespace {

// A layout with only the keys a test names, by evdev code.
class TableLayout final : public KeyboardLayout {
public:
    explicit TableLayout(std::map<quint32, QString> characters) : characters_(std::move(characters)) {}
    std::optional<QString> character(quint32 evdevCode) const override {
        const auto found = characters_.find(evdevCode);
        if (found == characters_.end()) return std::nullopt;
        return found->second;
    }
    std::optional<QString> symbolName(quint32) const override { return std::nullopt; }

private:
    std::map<quint32, QString> characters_;
};

struct StoredValue {
    const char* name;
    std::optional<DefaultsValue> value;
    std::optional<KeyCombo> loaded;
};

class KeyComboLoading : public ::testing::TestWithParam<StoredValue> {};

TEST_P(KeyComboLoading, ReadsTheStoredShortcut) {
    MemoryDefaultsStore store;
    if (GetParam().value) store.setValue(QStringLiteral("toggleHotKey"), *GetParam().value);
    EXPECT_EQ(KeyCombo::load(store), GetParam().loaded);
}

QByteArray bytes(const char* text) { return QByteArray(text); }

const StoredValue kStoredValues[] = {
    {"neverSetMeansF5", std::nullopt, KeyCombo{96, 0}},
    {"emptyMeansRemoved", bytes(""), std::nullopt},
    {"stored", bytes(R"({"keyCode":0,"modifierFlags":1966080})"), KeyCombo{0, 0x1E0000}},
    {"keyOrderFree", bytes(R"({"modifierFlags":262144,"keyCode":49})"), KeyCombo{49, KeyCombo::kControl}},
    {"largestKeyCode", bytes(R"({"keyCode":65535,"modifierFlags":0})"), KeyCombo{65535, 0}},
    {"keyCodeTooLarge", bytes(R"({"keyCode":65536,"modifierFlags":0})"), std::nullopt},
    {"negativeKeyCode", bytes(R"({"keyCode":-1,"modifierFlags":0})"), std::nullopt},
    {"fractionalKeyCode", bytes(R"({"keyCode":96.5,"modifierFlags":0})"), std::nullopt},
    {"keyCodeAsText", bytes(R"({"keyCode":"96","modifierFlags":0})"), std::nullopt},
    {"missingFlags", bytes(R"({"keyCode":96})"), std::nullopt},
    {"notAnObject", bytes("[96,0]"), std::nullopt},
    {"notJson", bytes("F5"), std::nullopt},
    // Unreadable is no shortcut, not the default.
    {"wrongStoredType", DefaultsValue(QStringLiteral("F5")), std::nullopt},
};

INSTANTIATE_TEST_SUITE_P(Table, KeyComboLoading, ::testing::ValuesIn(kStoredValues),
                         [](const ::testing::TestParamInfo<StoredValue>& row) { return row.param.name; });

TEST(KeyCombo, SavedShortcutLoadsBackAndNoneIsStoredEmpty) {
    MemoryDefaultsStore store;
    const KeyCombo combo{126, KeyCombo::kCommand | KeyCombo::kShift};
    KeyCombo::save(store, combo);
    EXPECT_EQ(KeyCombo::load(store), combo);
    KeyCombo::save(store, std::nullopt);
    EXPECT_EQ(store.value(QStringLiteral("toggleHotKey")), DefaultsValue(QByteArray()));
    EXPECT_EQ(KeyCombo::load(store), std::nullopt);
}

struct Naming {
    const char* name;
    KeyCombo combo;
    const char* display;
};

class KeyComboNaming : public ::testing::TestWithParam<Naming> {};

TEST_P(KeyComboNaming, ShowsModifiersThenTheKeyName) {
    // evdev 30 is A, 16 is Q, 39 is the key right of L; 96 (keypad Enter) gives a control character.
    const TableLayout layout({{30, QStringLiteral("a")},
                              {16, QStringLiteral("q")},
                              {39, QStringLiteral("ö")},
                              {96, QStringLiteral("\r")},
                              {59, QStringLiteral("x")}});
    KeyboardLayout::setShared(&layout);
    EXPECT_EQ(GetParam().combo.displayString().toStdString(), GetParam().display);
    KeyboardLayout::setShared(nullptr);
}

const Naming kNamings[] = {
    {"defaultShortcut", KeyCombo{96, 0}, "F5"},
    {"allModifiersInOrder", KeyCombo{0, 0x1E0000}, "Ctrl+Alt+Shift+Super+A"},
    {"controlOptionSpace", KeyCombo{49, KeyCombo::kControl | KeyCombo::kOption}, "Ctrl+Alt+Space"},
    {"superShiftUp", KeyCombo{126, KeyCombo::kCommand | KeyCombo::kShift}, "Shift+Super+↑"},
    {"layoutDecidesTheLetter", KeyCombo{12, KeyCombo::kControl}, "Ctrl+Q"},
    {"nonAsciiUpperCased", KeyCombo{41, 0}, "Ö"},
    // The fixed names win over whatever the layout says (evdev 59 is F1).
    {"specialFirst", KeyCombo{122, 0}, "F1"},
    {"controlCharacterIsNoName", KeyCombo{76, 0}, "Key 76"},
    {"noCharacter", KeyCombo{10, 0}, "Key 10"},
    {"keyOutsideTheTable", KeyCombo{512 + 30, 0}, "A"},
    {"unknownKeyOutsideTheTable", KeyCombo{512 + 240, KeyCombo::kOption}, "Alt+Key 752"},
};

INSTANTIATE_TEST_SUITE_P(Table, KeyComboNaming, ::testing::ValuesIn(kNamings),
                         [](const ::testing::TestParamInfo<Naming>& row) { return row.param.name; });

TEST(EvdevKeyCodes, MapsBothWaysOneToOne) {
    EXPECT_EQ(EvdevKeyCodes::toEvdev(96), 63u);           // F5
    EXPECT_EQ(EvdevKeyCodes::toEvdev(0), 30u);            // A
    EXPECT_EQ(EvdevKeyCodes::toEvdev(114), 110u);         // Help is Insert
    EXPECT_EQ(EvdevKeyCodes::toEvdev(52), std::nullopt);  // no key has this code
    for (quint16 code = 0; code < EvdevKeyCodes::kEvdevBase; ++code) {
        const auto evdev = EvdevKeyCodes::toEvdev(code);
        if (!evdev) continue;
        EXPECT_EQ(EvdevKeyCodes::fromEvdev(*evdev), code) << code;
    }
    // Every fixed name belongs to a key that can be grabbed.
    for (quint16 code = 0; code < 128; ++code) {
        if (!KeyCodeNames::special(code)) continue;
        EXPECT_TRUE(EvdevKeyCodes::toEvdev(code)) << code;
    }
}

TEST(EvdevKeyCodes, KeysOutsideTheTableAreOffsetByTheBase) {
    EXPECT_EQ(EvdevKeyCodes::fromEvdev(164), 512 + 164);  // play/pause
    EXPECT_EQ(EvdevKeyCodes::toEvdev(512 + 164), 164u);
}

}  // namespace
