#include "app/DesktopBackends.h"

#include <QDBusConnection>
#include <QCoreApplication>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMimeData>

#include "platform/freedesktop/BackgroundPortalLoginItem.h"
#include "platform/freedesktop/DesktopAnimationSetting.h"
#include "platform/freedesktop/DesktopEntries.h"
#include "platform/freedesktop/FileManagerWorkspace.h"
#include "platform/freedesktop/GnomeCustomShortcut.h"
#include "platform/freedesktop/KdeGlobalShortcut.h"
#include "platform/freedesktop/LogindSleepWatch.h"
#include "platform/freedesktop/PortalColorScheme.h"
#include "platform/freedesktop/PortalGlobalShortcuts.h"
#include "platform/qt/QMimeDataPasteboard.h"
#include "platform/qt/QtDisplayEnvironment.h"
#include "platform/x11/KWinPanelHints.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11DesktopProbe.h"
#include "platform/x11/X11DirectSaveReceiver.h"
#include "platform/x11/X11DragTypeOverride.h"
#include "platform/x11/X11HotKeyService.h"
#include "platform/x11/WlrootsPanelHints.h"
#include "platform/x11/X11PanelHints.h"
#include "platform/x11/X11TrayColors.h"
#include "platform/x11/X11WorkArea.h"
#include "platform/x11/XkbKeyboardLayout.h"
#include "settings/LoginItem.h"
#include "shelf/PanelWindowHints.h"
#include "triggers/DummyDesktopProbe.h"
#include "triggers/DummyHotKeyService.h"
#include "triggers/FallbackHotKeyService.h"

namespace mosswick {

DesktopBackends::DesktopBackends() = default;
DesktopBackends::DesktopBackends(DesktopBackends&&) noexcept = default;
DesktopBackends::~DesktopBackends() {
    if (layout_ && &KeyboardLayout::shared() == layout_.get()) KeyboardLayout::setShared(nullptr);
}

DesktopBackends DesktopBackends::forThisSession() {
    DesktopBackends backends;
    backends.session_ = detectDesktopSession();
    const bool xcb = QGuiApplication::platformName() == QLatin1String("xcb");
    if (xcb) backends.x11_ = X11Connection::open();

    // Qt leaves the panels out of each screen only when there is one; X11 says where they are.
    std::unique_ptr<MonitorWorkAreas> workAreas = std::make_unique<NoMonitorWorkAreas>();
    if (backends.x11_) workAreas = std::make_unique<X11WorkArea>(*backends.x11_);
    backends.displays_ = std::make_unique<QtDisplayEnvironment>(std::move(workAreas));
    backends.desktopMotion_ = std::make_unique<DesktopAnimationSetting>(
        QDBusConnection::sessionBus(), DesktopAnimationSetting::defaultKdeGlobals());

    if (backends.x11_) {
        backends.probe_ = X11DesktopProbe::create(*backends.x11_);
        backends.layout_ = std::make_unique<XkbKeyboardLayout>(*backends.x11_);
        KeyboardLayout::setShared(backends.layout_.get());
    }
    if (!backends.probe_) backends.probe_ = std::make_unique<DummyDesktopProbe>();

    std::unique_ptr<HotKeyService> grab;
    if (backends.x11_)
        grab = std::make_unique<X11HotKeyService>(*backends.x11_);
    else
        grab = std::make_unique<DummyHotKeyService>();
    if (isWayland(backends.session_) && PortalGlobalShortcuts::isAvailable(QDBusConnection::sessionBus())) {
        // A portal that cannot bind (it binds nothing, or fails) leaves the grab, which hears at least
        // keys typed into X windows. The user's own no in the portal's dialog is kept.
        auto portal = std::make_unique<FallbackHotKeyService>(
            std::make_unique<PortalGlobalShortcuts>(QDBusConnection::sessionBus(), KeyboardLayout::shared()),
            std::move(grab), [](qint32 status) { return status != PortalGlobalShortcuts::kCancelledByUser; });
        backends.portal_ = portal.get();
        backends.hotKeys_ = std::move(portal);
    } else {
        backends.hotKeys_ = std::move(grab);
    }
    // Where no grab reaches other programs' keys, the desktop's own keyboard settings can run us.
    if (backends.session_ == DesktopSession::GnomeWayland)
        backends.desktopShortcuts_ = std::make_unique<GnomeCustomShortcut>(KeyboardLayout::shared());
    else if (backends.session_ == DesktopSession::KdeWayland)
        backends.desktopShortcuts_ =
            std::make_unique<KdeGlobalShortcut>(QDBusConnection::sessionBus(), KeyboardLayout::shared(),
                                                KdeGlobalShortcut::defaultApplicationsFolder());

    if (backends.x11_) {
        if (backends.session_ == DesktopSession::KdeWayland)
            backends.panelHints_ = std::make_unique<KWinPanelHints>(backends.x11_->atoms());
        else if (backends.session_ == DesktopSession::WlrootsWayland)
            backends.panelHints_ = std::make_unique<WlrootsPanelHints>(backends.x11_->atoms());
        else
            backends.panelHints_ = std::make_unique<X11PanelHints>(backends.x11_->atoms());
        backends.directSave_ = X11DirectSaveReceiver::create(*backends.x11_);
        backends.dragTypes_ =
            std::make_unique<X11DragTypeOverride>(backends.x11_->atoms(), isWayland(backends.session_));
    } else {
        backends.panelHints_ = std::make_unique<NoPanelWindowHints>();
        backends.dragTypes_ = std::make_unique<NoDragTypeOverride>();
    }

    backends.followDesktopState();
    return backends;
}

void DesktopBackends::followDesktopState() {
    // Without a system bus (containers, bare test hosts) the watch stays silent.
    sleepWatch_ = std::make_unique<LogindSleepWatch>(QDBusConnection::systemBus());
    installedApplications_ = std::make_unique<DesktopEntries>(DesktopEntries::defaultFolders());
    colorScheme_ = std::make_unique<PortalColorScheme>(QDBusConnection::sessionBus());
    workspace_ = std::make_unique<FileManagerWorkspace>(QDBusConnection::sessionBus());
}

std::unique_ptr<LoginItem> DesktopBackends::makeLoginItem(DefaultsStore& defaults) {
    if (qEnvironmentVariable("MOSSWICK_TEST_HOST") == QLatin1String("1"))
        return std::make_unique<NoLoginItem>();
    // A sandboxed program cannot write the host's autostart folder; the desktop writes it for us.
    if (BackgroundPortalLoginItem::isSandboxed())
        return std::make_unique<BackgroundPortalLoginItem>(
            QDBusConnection::sessionBus(), defaults,
            QStringList{QFileInfo(QCoreApplication::applicationFilePath()).fileName()});
    return std::make_unique<XdgAutostartEntry>(XdgAutostartEntry::defaultFolder(),
                                               XdgAutostartEntry::installedExecutable());
}

void DesktopBackends::followTrayTextColor(std::function<void(std::optional<QColor>)> changed) {
    if (!x11_) {
        changed(std::nullopt);
        return;
    }
    trayColors_ = std::make_unique<X11TrayColors>(*x11_, changed);
    changed(trayColors_->textColor());
}

bool DesktopBackends::portalOwnsShortcut() const { return portal_ && portal_->usesPreferred(); }

InstalledApplications& DesktopBackends::installedApplications() { return *installedApplications_; }
ApplicationCatalog& DesktopBackends::applicationCatalog() { return *installedApplications_; }

ShelfDropIngestHandler::PasteboardFactory DesktopBackends::dropPasteboards() {
    QMimeDataPasteboard::PromiseFactory promises;
    if (X11DirectSaveReceiver* receiver = directSave_.get())
        promises = [receiver](const QMimeData& data) { return receiver->promiseFor(data); };
    return
        [promises](const QMimeData& data) { return std::make_unique<QMimeDataPasteboard>(data, promises); };
}

}  // namespace mosswick
