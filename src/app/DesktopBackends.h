#pragma once

#include <memory>

#include "shelf/ShelfDropIngestHandler.h"
#include "triggers/DesktopSession.h"
#include "triggers/DragMonitor.h"

namespace mosswick {

class DefaultsStore;
class DesktopColorScheme;
class DragTypeOverride;
class DesktopMotionSetting;
class DisplayEnvironment;
class DesktopProbe;
class HotKeyService;
class ApplicationCatalog;
class DesktopEntries;
class InstalledApplications;
class LoginItem;
class KeyboardLayout;
class PanelWindowHints;
class SleepWatch;
class Workspace;
class X11Connection;
class X11DirectSaveReceiver;

// The session's desktop services, chosen once at start-up: X11 where Qt runs on xcb (XWayland
// included), the portal for the shortcut on Wayland when the desktop offers it, and do-nothing
// stand-ins elsewhere. Owns them all; the logic sees only their interfaces.
class DesktopBackends {
public:
    static DesktopBackends forThisSession();

    DesktopBackends(DesktopBackends&&) noexcept;
    ~DesktopBackends();

    DesktopSession session() const { return session_; }
    // What the drag monitor can see of other programs' drags in this session.
    DragMonitor::Sight dragSight() const;

    DisplayEnvironment& displays() { return *displays_; }
    DesktopMotionSetting& desktopMotion() { return *desktopMotion_; }
    DesktopProbe& probe() { return *probe_; }
    HotKeyService& hotKeys() { return *hotKeys_; }
    // Whether the desktop's portal, not an X11 grab, holds the shortcut (and asks the user itself).
    bool portalOwnsShortcut() const { return portalOwnsShortcut_; }
    PanelWindowHints& panelHints() { return *panelHints_; }
    // How a drop's data is read: through Qt, with files promised over X Direct Save on X11.
    ShelfDropIngestHandler::PasteboardFactory dropPasteboards();

    // What the application follows of the desktop beyond the shelf's own window.
    SleepWatch& sleepWatch() { return *sleepWatch_; }
    InstalledApplications& installedApplications();
    // The installed applications the ignore list offers.
    ApplicationCatalog& applicationCatalog();
    // Start at login: the XDG autostart entry; inside a Flatpak sandbox the Background portal
    // (which keeps its last answer in `defaults`); none under the test-host switch
    // (MOSSWICK_TEST_HOST=1).
    static std::unique_ptr<LoginItem> makeLoginItem(DefaultsStore& defaults);
    DesktopColorScheme& colorScheme() { return *colorScheme_; }
    // Opening items and showing them in the file manager.
    Workspace& workspace() { return *workspace_; }
    // Answers what Qt would get wrong of the shelf's own drags.
    DragTypeOverride& dragTypes() { return *dragTypes_; }

private:
    DesktopBackends();
    void followDesktopState();

    DesktopSession session_ = DesktopSession::X11;
    std::unique_ptr<X11Connection> x11_;
    std::unique_ptr<DisplayEnvironment> displays_;
    std::unique_ptr<DesktopMotionSetting> desktopMotion_;
    std::unique_ptr<DesktopProbe> probe_;
    std::unique_ptr<KeyboardLayout> layout_;
    std::unique_ptr<HotKeyService> hotKeys_;
    bool portalOwnsShortcut_ = false;
    std::unique_ptr<PanelWindowHints> panelHints_;
    std::unique_ptr<X11DirectSaveReceiver> directSave_;
    std::unique_ptr<DragTypeOverride> dragTypes_;

    std::unique_ptr<SleepWatch> sleepWatch_;
    std::unique_ptr<DesktopEntries> installedApplications_;
    std::unique_ptr<DesktopColorScheme> colorScheme_;
    std::unique_ptr<Workspace> workspace_;
};

}  // namespace mosswick
