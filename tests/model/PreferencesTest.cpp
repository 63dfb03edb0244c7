#include "model/Preferences.h"

#include <gtest/gtest.h>

#include <functional>

#include "DefaultsValueAssertions.h"
#include "model/JsonDefaultsStore.h"

namespace mosswick {
namespace {

using testing::sameValue;

class RecordingStore final : public DefaultsStore {
public:
    std::optional<DefaultsValue> value(const QString& key) const override {
        reads.append(key);
        return memory.value(key);
    }
    void setValue(const QString& key, const DefaultsValue& value) override {
        writes.append(key);
        memory.setValue(key, value);
    }
    void remove(const QString& key) override { memory.remove(key); }

    MemoryDefaultsStore memory;
    mutable QStringList reads;
    QStringList writes;
};

// A setting's current value in the form the store keeps it.
// clang-format off
DefaultsValue current(const Preferences& p, Preference preference) {
    switch (preference) {
        case Preference::position: return rawValue(p.position());
        case Preference::size: return rawValue(p.size());
        case Preference::appearance: return rawValue(p.appearance());
        case Preference::showTrigger: return rawValue(p.showTrigger());
        case Preference::alternateDragData: return rawValue(p.alternateDragData());
        case Preference::showMenuBarIcon: return p.showMenuBarIcon();
        case Preference::checkForUpdatesAutomatically: return p.checkForUpdatesAutomatically();
        case Preference::automaticallyShow: return p.automaticallyShow();
        case Preference::removeItemsWhenDraggedOut: return p.removeItemsWhenDraggedOut();
        case Preference::combineMultipleFilesToStack: return p.combineMultipleFilesToStack();
        case Preference::showQuickLookPreviews: return p.showQuickLookPreviews();
        case Preference::showFaviconsForWeblocFiles: return p.showFaviconsForWeblocFiles();
        case Preference::resolveAliasFiles: return p.resolveAliasFiles();
        case Preference::reduceMotion: return p.reduceMotion();
        case Preference::restoreItemsOnLaunch: return p.restoreItemsOnLaunch();
        case Preference::hideWhenEmpty: return p.hideWhenEmpty();
        case Preference::maximumItemCount: return p.maximumItemCount();
        case Preference::ignoredApplications: return p.ignoredApplications();
    }
    return {};
}
// clang-format on

QString s(const char* text) { return QString::fromUtf8(text); }
std::string trace(Preference p, const DefaultsValue& v) {
    return preferenceKey(p).toStdString() + " " + testing::describe(v);
}

TEST(PreferencesTest, AFreshUserHasEveryKeyReadOnceAndNothingWritten) {
    RecordingStore store;
    const Preferences preferences(store);
    QStringList keys;
    for (int i = 0; i <= static_cast<int>(Preference::maximumItemCount); ++i)
        keys.append(preferenceKey(static_cast<Preference>(i)));
    keys.sort();
    store.reads.sort();
    EXPECT_EQ(store.reads, keys);
    EXPECT_TRUE(store.writes.isEmpty());
}

TEST(PreferencesTest, StoredValuesReadAsTheirSettingOrFallBackToTheDefault) {
    using P = Preference;
    const std::tuple<Preference, DefaultsValue, DefaultsValue> rows[] = {
        {P::position, s("leftTop"), s("leftTop")},
        {P::position, s("LeftTop"), s("rightBottom")},  // letter case matters
        {P::position, s(" leftTop"), s("rightBottom")},
        {P::position, QStringList{"leftTop"}, s("rightBottom")},
        {P::size, s("Standard"), s("adaptiveSmallest")},
        {P::appearance, true, s("system")},
        {P::alternateDragData, QByteArray("fileContents"), s("none")},
        {P::hideWhenEmpty, false, false},
        {P::reduceMotion, qint64(1), true},
        {P::showMenuBarIcon, qint64(0), false},
        {P::reduceMotion, 1.0, true},
        {P::reduceMotion, qint64(2), false},
        {P::hideWhenEmpty, 0.5, true},
        {P::reduceMotion, s("true"), false},
        {P::maximumItemCount, s("50"), qint64(100)},
        {P::maximumItemCount, qint64(50), qint64(50)},
        {P::maximumItemCount, 50.0, qint64(50)},
        {P::maximumItemCount, 50.5, qint64(100)},
        {P::maximumItemCount, 1e300, qint64(100)},
        {P::maximumItemCount, true, qint64(100)},
        {P::maximumItemCount, qint64(-3), qint64(-3)},  // not clamped
        {P::maximumItemCount, qint64(100000), qint64(100000)},
        {P::ignoredApplications, QStringList{"firefox", ""}, QStringList{"firefox", ""}},
        {P::ignoredApplications, s("firefox"), QStringList()},
    };
    for (const auto& [preference, stored, read] : rows) {
        SCOPED_TRACE(trace(preference, stored));
        RecordingStore store;
        store.memory.setValue(preferenceKey(preference), stored);

        const Preferences preferences(store);

        EXPECT_TRUE(sameValue(current(preferences, preference), read));
        EXPECT_TRUE(store.writes.isEmpty()) << "never rewritten on read";
    }
}

TEST(PreferencesTest, AnAssignmentOfEachKindNotifiesAndWritesItsKeyAtOnce) {
    using P = Preference;
    using Assign = std::function<void(Preferences&)>;
    // clang-format off
    const std::tuple<Preference, Assign, DefaultsValue> rows[] = {
        {P::position, [](auto& p) { p.setPosition(ShelfPosition::leftTop); }, s("leftTop")},
        {P::hideWhenEmpty, [](auto& p) { p.setHideWhenEmpty(false); }, false},
        {P::maximumItemCount, [](auto& p) { p.setMaximumItemCount(1000); }, qint64(1000)},  // not clamped
        {P::ignoredApplications, [](auto& p) { p.setIgnoredApplications({"firefox"}); }, QStringList{"firefox"}},
        // Equal to what is there: still announced and written.
        {P::position, [](auto& p) { p.setPosition(ShelfPosition::rightBottom); }, s("rightBottom")},
    };
    // clang-format on
    for (const auto& [preference, assign, written] : rows) {
        SCOPED_TRACE(trace(preference, written));
        RecordingStore store;
        Preferences preferences(store);
        std::vector<Preference> announced;
        QObject::connect(&preferences, &Preferences::changed, [&](Preference p) { announced.push_back(p); });

        assign(preferences);

        EXPECT_EQ(announced, std::vector<Preference>{preference});
        EXPECT_EQ(store.writes, QStringList{preferenceKey(preference)});
        EXPECT_TRUE(sameValue(store.memory.value(preferenceKey(preference)), written));
        EXPECT_TRUE(sameValue(current(preferences, preference), written));
    }
}

TEST(PreferencesTest, ObserversSeeTheNewValueBeforeTheStoreAndMayHaveTheLastWord) {
    RecordingStore store;
    Preferences preferences(store);
    std::vector<std::optional<DefaultsValue>> storedWhenHeard;
    QObject::connect(&preferences, &Preferences::changed, [&](Preference) {
        storedWhenHeard.push_back(store.memory.value("maximumItemCount"));
        if (preferences.maximumItemCount() > 500) preferences.setMaximumItemCount(500);
    });

    preferences.setMaximumItemCount(1000);

    ASSERT_EQ(storedWhenHeard.size(), 2u);
    EXPECT_FALSE(storedWhenHeard[0]) << "not yet stored when the first observer runs";
    EXPECT_EQ(preferences.maximumItemCount(), 500);
    EXPECT_TRUE(sameValue(store.memory.value("maximumItemCount"), qint64(500)));
}

TEST(PreferencesTest, SharedIsTheInstalledInstanceElseOneOverTheSettingsFile) {
    MemoryDefaultsStore memory;
    Preferences installed(memory);
    Preferences::setShared(&installed);
    EXPECT_EQ(&Preferences::shared(), &installed);
    Preferences::setShared(nullptr);

    Preferences& fallback = Preferences::shared();
    EXPECT_NE(&fallback, &installed);
    EXPECT_EQ(&Preferences::shared(), &fallback);
    fallback.setHideWhenEmpty(false);
    const auto file = JsonDefaultsStore::defaultLocation();
    EXPECT_EQ(file,
              std::filesystem::path(qgetenv("XDG_CONFIG_HOME").toStdString()) / "Mosswick/settings.json");
    EXPECT_TRUE(sameValue(JsonDefaultsStore(file).value("hideWhenEmpty"), false));
}

}  // namespace
}  // namespace mosswick
