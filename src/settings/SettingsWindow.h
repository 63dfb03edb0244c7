#pragma once

#include <QWidget>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "settings/LoginItem.h"
#include "settings/SettingsPane.h"

class QListWidget;
class QStackedWidget;

namespace mosswick {

class ApplicationCatalog;
class DesktopShortcutOffer;
class DefaultsStore;
class HotKeyManager;
class IgnoredApplicationsView;
class Preferences;
class ShortcutRecorderView;

// The settings: a sidebar of five panes and the pane's form beside it. Every control writes its
// preference as it changes (there is no Apply), and follows the preference when something else
// changes it (the shelf's menu, say). One window for the whole run: closing only hides it, and
// it comes back on the pane shown last.
class SettingsWindow final : public QWidget {
    Q_OBJECT

public:
    struct Services {
        Preferences& preferences;
        DefaultsStore& defaults;
        HotKeyManager& hotKeys;
        LoginItem& loginItem;
        ApplicationCatalog& applications;
        // The shelf's panel made anew, for a change of material.
        std::function<void()> rebuildPanel;
        // Empty when nothing updates this installation: the update controls are left out.
        std::function<void()> checkForUpdates = {};
        QString updateHost = {};
        // Said under the recorder where the desktop, not Mosswick, has the last word on the
        // shortcut (the GlobalShortcuts portal on Wayland shows its own dialog).
        QString shortcutNote = {};
        // Where no program can hold a key (Wayland), the offer to put the shortcut into the
        // desktop's own keyboard settings; none elsewhere.
        DesktopShortcutOffer* desktopShortcut = nullptr;
    };

    static inline const QString kLegacyMaterialKey = QStringLiteral("useLegacyMaterial");

    explicit SettingsWindow(Services services, QWidget* parent = nullptr);
    ~SettingsWindow() override;

    // Brings the window up, on `pane` or on the pane shown last; centred on the screen under the
    // pointer when it was not already showing.
    void show(std::optional<SettingsPane> pane = std::nullopt);
    SettingsPane pane() const { return pane_; }
    void setPane(SettingsPane pane);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    QWidget* generalPane();
    QWidget* behaviorPane();
    QWidget* windowPane();
    QWidget* advancedPane();
    QWidget* aboutPane();
    // Sets every control from the preferences, quietly.
    void sync();
    void centreOnActiveScreen();

    Services services_;
    LoginItemState login_;
    SettingsPane pane_ = SettingsPane::general;
    QListWidget* sidebar_;
    QStackedWidget* pages_;
    ShortcutRecorderView* recorder_ = nullptr;
    IgnoredApplicationsView* ignored_ = nullptr;
    std::vector<std::function<void()>> syncs_;
};

}  // namespace mosswick
