#pragma once

#include <QObject>
#include <QStringList>

#include "model/DefaultsStore.h"
#include "model/PreferenceEnums.h"

namespace mosswick {

// Names the settings in change notifications; the stored key is the name as written.
enum class Preference {
    position,
    size,
    showMenuBarIcon,
    appearance,
    restoreItemsOnLaunch,
    checkForUpdatesAutomatically,
    automaticallyShow,
    showTrigger,
    hideWhenEmpty,
    ignoredApplications,
    removeItemsWhenDraggedOut,
    combineMultipleFilesToStack,
    showQuickLookPreviews,
    showFaviconsForWeblocFiles,
    resolveAliasFiles,
    reduceMotion,
    alternateDragData,
    maximumItemCount,
};

QString preferenceKey(Preference preference);

// Every user setting. Read from the defaults store once, at construction (a missing, unknown or
// wrong-typed value reads as the default and is not rewritten; nothing is written then, so a key
// exists only once the user changed that setting); every assignment notifies observers and then
// writes the value back at once, even when it is equal.
//
// Booleans also accept a stored number 0 or 1. maximumItemCount accepts an integer or a whole
// double (50.0 is 50; 50.5, "50" and true are not counts) and is never clamped here.
class Preferences : public QObject {
    Q_OBJECT

public:
    explicit Preferences(DefaultsStore& store, QObject* parent = nullptr);

    // The process-wide instance: the one installed, else one created on first use over the
    // settings file at its default location, living until the process exits.
    static Preferences& shared();
    // Not owned; nullptr uninstalls. Main thread only.
    static void setShared(Preferences* preferences);

    ShelfPosition position() const { return position_; }
    ShelfSize size() const { return size_; }
    bool showMenuBarIcon() const { return showMenuBarIcon_; }
    AppearanceMode appearance() const { return appearance_; }
    bool restoreItemsOnLaunch() const { return restoreItemsOnLaunch_; }
    bool checkForUpdatesAutomatically() const { return checkForUpdatesAutomatically_; }
    bool automaticallyShow() const { return automaticallyShow_; }
    ShowTrigger showTrigger() const { return showTrigger_; }
    bool hideWhenEmpty() const { return hideWhenEmpty_; }
    const QStringList& ignoredApplications() const { return ignoredApplications_; }
    bool removeItemsWhenDraggedOut() const { return removeItemsWhenDraggedOut_; }
    bool combineMultipleFilesToStack() const { return combineMultipleFilesToStack_; }
    bool showQuickLookPreviews() const { return showQuickLookPreviews_; }
    bool showFaviconsForWeblocFiles() const { return showFaviconsForWeblocFiles_; }
    bool resolveAliasFiles() const { return resolveAliasFiles_; }
    bool reduceMotion() const { return reduceMotion_; }
    AlternateDragData alternateDragData() const { return alternateDragData_; }
    qint64 maximumItemCount() const { return maximumItemCount_; }

    void setPosition(ShelfPosition value);
    void setSize(ShelfSize value);
    void setShowMenuBarIcon(bool value);
    void setAppearance(AppearanceMode value);
    void setRestoreItemsOnLaunch(bool value);
    void setCheckForUpdatesAutomatically(bool value);
    void setAutomaticallyShow(bool value);
    void setShowTrigger(ShowTrigger value);
    void setHideWhenEmpty(bool value);
    void setIgnoredApplications(const QStringList& value);
    void setRemoveItemsWhenDraggedOut(bool value);
    void setCombineMultipleFilesToStack(bool value);
    void setShowQuickLookPreviews(bool value);
    void setShowFaviconsForWeblocFiles(bool value);
    void setResolveAliasFiles(bool value);
    void setReduceMotion(bool value);
    void setAlternateDragData(AlternateDragData value);
    void setMaximumItemCount(qint64 value);

    DefaultsStore& store() { return store_; }

signals:
    void changed(mosswick::Preference preference);

private:
    friend struct PreferenceSettings;  // the table of settings, with their keys and defaults

    template <typename T>
    void assign(T Preferences::*field, const T& value);

    DefaultsStore& store_;
    // Each is set from the store or its default by the constructor.
    ShelfPosition position_{};
    ShelfSize size_{};
    bool showMenuBarIcon_{};
    AppearanceMode appearance_{};
    bool restoreItemsOnLaunch_{};
    bool checkForUpdatesAutomatically_{};
    bool automaticallyShow_{};
    ShowTrigger showTrigger_{};
    bool hideWhenEmpty_{};
    QStringList ignoredApplications_;
    bool removeItemsWhenDraggedOut_{};
    bool combineMultipleFilesToStack_{};
    bool showQuickLookPreviews_{};
    bool showFaviconsForWeblocFiles_{};
    bool resolveAliasFiles_{};
    bool reduceMotion_{};
    AlternateDragData alternateDragData_{};
    qint64 maximumItemCount_{};
};

}  // namespace mosswick
