#include "model/Preferences.h"

namespace mosswick {
QString preferenceKey(Preference) { return {}; }
Preferences::Preferences(DefaultsStore& store, QObject* parent) : QObject(parent), store_(store) {}
namespace {
Preferences* installed = nullptr;
}
Preferences& Preferences::shared() { return *installed; }
void Preferences::setShared(Preferences* p) { installed = p; }
void Preferences::setPosition(ShelfPosition) {}
void Preferences::setSize(ShelfSize) {}
void Preferences::setShowMenuBarIcon(bool) {}
void Preferences::setAppearance(AppearanceMode) {}
void Preferences::setRestoreItemsOnLaunch(bool) {}
void Preferences::setCheckForUpdatesAutomatically(bool) {}
void Preferences::setAutomaticallyShow(bool) {}
void Preferences::setShowTrigger(ShowTrigger) {}
void Preferences::setHideWhenEmpty(bool) {}
void Preferences::setIgnoredApplications(const QStringList&) {}
void Preferences::setRemoveItemsWhenDraggedOut(bool) {}
void Preferences::setCombineMultipleFilesToStack(bool) {}
void Preferences::setShowQuickLookPreviews(bool) {}
void Preferences::setShowFaviconsForWeblocFiles(bool) {}
void Preferences::setResolveAliasFiles(bool) {}
void Preferences::setReduceMotion(bool) {}
void Preferences::setAlternateDragData(AlternateDragData) {}
void Preferences::setMaximumItemCount(qint64) {}
}  // namespace mosswick
