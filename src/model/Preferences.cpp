#include "model/Preferences.h"

#include <cmath>
#include <tuple>
#include <type_traits>

#include "model/JsonDefaultsStore.h"
#include "model/Logging.h"

namespace mosswick {

namespace {

// How each kind of setting is read from the store and written back. A read yields nothing for a
// stored value that is not of the setting's kind; the setting then keeps its default.
template <typename T>
struct SettingCodec;

template <typename E>
requires std::is_enum_v<E>
struct SettingCodec<E> {
    static std::optional<E> read(const DefaultsValue& stored) {
        const auto* raw = std::get_if<QString>(&stored);
        return raw ? fromRawValue<E>(*raw) : std::nullopt;
    }
    static DefaultsValue write(E value) { return rawValue(value); }
};

template <>
struct SettingCodec<bool> {
    // A number 0 or 1 is a boolean too; a string such as "true" is not.
    static std::optional<bool> read(const DefaultsValue& stored) {
        if (const auto* flag = std::get_if<bool>(&stored)) return *flag;
        if (const auto* number = std::get_if<qint64>(&stored); number && (*number == 0 || *number == 1))
            return *number == 1;
        if (const auto* number = std::get_if<double>(&stored); number && (*number == 0 || *number == 1))
            return *number == 1;
        return std::nullopt;
    }
    static DefaultsValue write(bool value) { return value; }
};

template <>
struct SettingCodec<qint64> {
    // A whole double is an integer: JSON and the tools that edit it do not keep 50.0 apart from 50.
    static std::optional<qint64> read(const DefaultsValue& stored) {
        if (const auto* number = std::get_if<qint64>(&stored)) return *number;
        constexpr double limit = 9223372036854775808.0;  // 2^63
        if (const auto* number = std::get_if<double>(&stored);
            number && std::trunc(*number) == *number && *number >= -limit && *number < limit)
            return static_cast<qint64>(*number);
        return std::nullopt;
    }
    static DefaultsValue write(qint64 value) { return value; }
};

template <>
struct SettingCodec<QStringList> {
    static std::optional<QStringList> read(const DefaultsValue& stored) {
        if (const auto* list = std::get_if<QStringList>(&stored)) return *list;
        return std::nullopt;
    }
    static DefaultsValue write(const QStringList& value) { return value; }
};

template <typename T>
struct Setting {
    Preference preference;
    const char* key;
    T Preferences::*field;
    // Also what a missing, unknown or mistyped stored value reads as.
    T defaultValue;
};
template <typename T>
Setting(Preference, const char*, T Preferences::*, T) -> Setting<T>;

Preferences* installed = nullptr;

}  // namespace

// The stored key is the setting's name, so a row names each setting once.
#define MOSSWICK_SETTING(name, defaultValue) \
    Setting { Preference::name, #name, &Preferences::name##_, defaultValue }

struct PreferenceSettings {
    // Every setting, in the order they are read at start.
    static const auto& all() {
        // clang-format off
        static const auto table = std::make_tuple(
            MOSSWICK_SETTING(position, ShelfPosition::rightBottom),
            MOSSWICK_SETTING(size, ShelfSize::adaptiveSmallest),
            MOSSWICK_SETTING(appearance, AppearanceMode::system),
            MOSSWICK_SETTING(showTrigger, ShowTrigger::dragStarts),
            MOSSWICK_SETTING(alternateDragData, AlternateDragData::none),
            MOSSWICK_SETTING(showMenuBarIcon, true),
            MOSSWICK_SETTING(checkForUpdatesAutomatically, true),
            MOSSWICK_SETTING(automaticallyShow, true),
            MOSSWICK_SETTING(removeItemsWhenDraggedOut, true),
            MOSSWICK_SETTING(combineMultipleFilesToStack, true),
            MOSSWICK_SETTING(showQuickLookPreviews, true),
            MOSSWICK_SETTING(showFaviconsForWeblocFiles, false),
            MOSSWICK_SETTING(resolveAliasFiles, false),
            MOSSWICK_SETTING(reduceMotion, false),
            MOSSWICK_SETTING(restoreItemsOnLaunch, true),
            MOSSWICK_SETTING(hideWhenEmpty, true),
            MOSSWICK_SETTING(maximumItemCount, qint64(100)),
            MOSSWICK_SETTING(ignoredApplications, QStringList()));
        // clang-format on
        static_assert(std::tuple_size_v<std::remove_cvref_t<decltype(table)>> ==
                          static_cast<size_t>(Preference::maximumItemCount) + 1,
                      "every Preference has a row");
        return table;
    }

    template <typename F>
    static void forEach(F&& visit) {
        std::apply([&](const auto&... setting) { (visit(setting), ...); }, all());
    }

    static void load(Preferences& preferences) {
        forEach([&](const auto& setting) {
            using T = std::remove_cvref_t<decltype(setting.defaultValue)>;
            const QString key = QString::fromLatin1(setting.key);
            preferences.*setting.field = setting.defaultValue;
            const auto stored = preferences.store_.value(key);
            if (!stored) return;
            if (auto value = SettingCodec<T>::read(*stored))
                preferences.*setting.field = std::move(*value);
            else
                qCInfo(lcSettings) << "Ignoring the stored" << key
                                   << "- not a usable value; using the default";
        });
    }

    template <typename T>
    static const Setting<T>& of(T Preferences::*field) {
        const Setting<T>* found = nullptr;
        forEach([&](const auto& setting) {
            if constexpr (std::is_same_v<decltype(setting), const Setting<T>&>) {
                if (setting.field == field) found = &setting;
            }
        });
        return *found;
    }
};

#undef MOSSWICK_SETTING

template <typename T>
void Preferences::assign(T Preferences::*field, const T& value) {
    const auto& setting = PreferenceSettings::of(field);
    this->*field = value;
    emit changed(setting.preference);
    // What the field holds now, not `value`: an observer may have assigned it again meanwhile, and
    // the store must end up with the last word.
    store_.setValue(QString::fromLatin1(setting.key), SettingCodec<T>::write(this->*field));
}

QString preferenceKey(Preference preference) {
    QString key;
    PreferenceSettings::forEach([&](const auto& setting) {
        if (setting.preference == preference) key = QString::fromLatin1(setting.key);
    });
    return key;
}

Preferences::Preferences(DefaultsStore& store, QObject* parent) : QObject(parent), store_(store) {
    PreferenceSettings::load(*this);
}

Preferences& Preferences::shared() {
    if (installed) return *installed;
    static JsonDefaultsStore store(JsonDefaultsStore::defaultLocation());
    static Preferences preferences(store);
    return preferences;
}

void Preferences::setShared(Preferences* preferences) { installed = preferences; }

void Preferences::setPosition(ShelfPosition value) { assign(&Preferences::position_, value); }
void Preferences::setSize(ShelfSize value) { assign(&Preferences::size_, value); }
void Preferences::setShowMenuBarIcon(bool value) { assign(&Preferences::showMenuBarIcon_, value); }
void Preferences::setAppearance(AppearanceMode value) { assign(&Preferences::appearance_, value); }
void Preferences::setRestoreItemsOnLaunch(bool value) { assign(&Preferences::restoreItemsOnLaunch_, value); }
void Preferences::setCheckForUpdatesAutomatically(bool value) {
    assign(&Preferences::checkForUpdatesAutomatically_, value);
}
void Preferences::setAutomaticallyShow(bool value) { assign(&Preferences::automaticallyShow_, value); }
void Preferences::setShowTrigger(ShowTrigger value) { assign(&Preferences::showTrigger_, value); }
void Preferences::setHideWhenEmpty(bool value) { assign(&Preferences::hideWhenEmpty_, value); }
void Preferences::setIgnoredApplications(const QStringList& value) {
    assign(&Preferences::ignoredApplications_, value);
}
void Preferences::setRemoveItemsWhenDraggedOut(bool value) {
    assign(&Preferences::removeItemsWhenDraggedOut_, value);
}
void Preferences::setCombineMultipleFilesToStack(bool value) {
    assign(&Preferences::combineMultipleFilesToStack_, value);
}
void Preferences::setShowQuickLookPreviews(bool value) {
    assign(&Preferences::showQuickLookPreviews_, value);
}
void Preferences::setShowFaviconsForWeblocFiles(bool value) {
    assign(&Preferences::showFaviconsForWeblocFiles_, value);
}
void Preferences::setResolveAliasFiles(bool value) { assign(&Preferences::resolveAliasFiles_, value); }
void Preferences::setReduceMotion(bool value) { assign(&Preferences::reduceMotion_, value); }
void Preferences::setAlternateDragData(AlternateDragData value) {
    assign(&Preferences::alternateDragData_, value);
}
void Preferences::setMaximumItemCount(qint64 value) { assign(&Preferences::maximumItemCount_, value); }

}  // namespace mosswick
