#pragma once

#include <QObject>
#include <functional>

#include "model/PreferenceEnums.h"

namespace mosswick {

class DefaultsStore;
class DragMonitor;
class HotKeyManager;
class Preferences;
class ShelfStore;
class ShelfWindowController;
class SleepWatch;

// Wires the long-lived components together at launch and takes them down in order at quit. It
// owns no shelf logic: whether the shelf is up is the window controller's decision, which the
// delegate only asks for.
class AppDelegate : public QObject {
    Q_OBJECT

public:
    struct Services {
        Preferences& preferences;
        ShelfStore& store;
        ShelfWindowController& controller;
        DragMonitor& dragMonitor;
        HotKeyManager& hotKeys;
        DefaultsStore& defaults;
        // Adds the clipboard's contents to the shelf (or beeps); the shortcut's double press.
        std::function<void()> addClipboardContents;
        // Applies light, dark or the desktop's own palette to the whole application.
        std::function<void(AppearanceMode)> applyAppearance;
        // Says when the machine wakes, to run systemDidWake().
        SleepWatch& sleepWatch;
        // Shows or removes the tray icon.
        std::function<void(bool)> showMenuBarIcon = {};
    };

    explicit AppDelegate(Services services, QObject* parent = nullptr);

    // The start-up sequence: appearance, observation, drag monitor, shortcut, and the shelf reset
    // to hidden (a restored shelf stays away until asked for).
    void applicationDidFinishLaunching();
    // A second launch of the running application: bring the shelf up.
    bool applicationShouldHandleReopen();
    // After the machine wakes: drop the items whose files are gone everywhere.
    void systemDidWake();
    // Stop watching drags, release the key, save the shelf now.
    void applicationWillTerminate();

private:
    Services services_;
    bool terminated_ = false;
};

}  // namespace mosswick
