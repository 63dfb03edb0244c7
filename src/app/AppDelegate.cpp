#include "app/AppDelegate.h"

#include <QTimer>

#include "model/Preferences.h"
#include "model/ShelfStore.h"
#include "triggers/DragMonitor.h"
#include "triggers/HotKeyManager.h"
#include "triggers/KeyCombo.h"
#include "triggers/SleepWatch.h"
#include "shelf/ShelfWindowController.h"

namespace mosswick {

AppDelegate::AppDelegate(Services services, QObject* parent)
    : QObject(parent), services_(std::move(services)) {}

void AppDelegate::applicationDidFinishLaunching() {
    Preferences& preferences = services_.preferences;
    ShelfWindowController& controller = services_.controller;

    services_.applyAppearance(preferences.appearance());
    if (services_.showMenuBarIcon) services_.showMenuBarIcon(preferences.showMenuBarIcon());
    // Applied on a later turn of the event loop, never inside the setter that changed it.
    connect(&preferences, &Preferences::changed, this, [this](Preference preference) {
        if (preference == Preference::appearance)
            QTimer::singleShot(0, this,
                               [this] { services_.applyAppearance(services_.preferences.appearance()); });
        if (preference == Preference::showMenuBarIcon && services_.showMenuBarIcon)
            QTimer::singleShot(
                0, this, [this] { services_.showMenuBarIcon(services_.preferences.showMenuBarIcon()); });
    });

    DragMonitor& monitor = services_.dragMonitor;
    monitor.onDragBegan = [&controller] { controller.dragBegan(); };
    monitor.onDragReachedEdge = [&controller] { controller.dragReachedEdge(); };
    monitor.onDragEnded = [&controller] { controller.dragEnded(); };
    monitor.onUnreadableDragBegan = [&controller] { controller.unreadableDragBegan(); };
    monitor.start();

    HotKeyManager& hotKeys = services_.hotKeys;
    // A keyboard user who calls the shelf up goes on with the keyboard there.
    hotKeys.onToggle = [&controller] {
        controller.toggle();
        controller.focusShelf();
    };
    hotKeys.onLongPress = [this, &controller] {
        services_.store.restoreLastRemoved();
        controller.summon();
        controller.focusShelf();
    };
    hotKeys.onDoublePress = [this] {
        if (services_.addClipboardContents) services_.addClipboardContents();
    };
    hotKeys.registerCombo(KeyCombo::load(services_.defaults));

    controller.resetToHidden();
    controller.standBy();

    services_.sleepWatch.watchWakes([this] { systemDidWake(); });
}

bool AppDelegate::applicationShouldHandleReopen() {
    services_.controller.summon();
    return true;
}

void AppDelegate::systemDidWake() {
    std::set<QUuid> lost;
    for (const ShelfItem& item : services_.store.items()) {
        if (item.isLost()) lost.insert(item.id);
    }
    if (!lost.empty()) services_.store.remove(lost, false);
}

void AppDelegate::applicationWillTerminate() {
    if (terminated_) return;
    terminated_ = true;
    services_.dragMonitor.stop();
    services_.hotKeys.unregister();
    services_.store.flush();
}

}  // namespace mosswick
