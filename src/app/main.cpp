// Mosswick's entry point: builds the platform backends for this session, the long-lived
// components over them, and hands them to the application delegate.
#include <QApplication>
#include <QClipboard>
#include <QCommandLineParser>
#include <QDBusConnection>
#include <QScreen>
#include <QTimer>
#include <cstdio>

#include "app/AppDelegate.h"
#include "ingest/ClipboardImport.h"
#include "interaction/ReducedMotion.h"
#include "interaction/ShelfPalette.h"
#include "model/AppFiles.h"
#include "model/JsonDefaultsStore.h"
#include "model/Preferences.h"
#include "model/ShelfStore.h"
#include "platform/freedesktop/DesktopAnimationSetting.h"
#include "platform/freedesktop/PortalGlobalShortcuts.h"
#include "platform/qt/QClipboardPasteboard.h"
#include "platform/qt/QMimeDataPasteboard.h"
#include "platform/qt/QtDisplayEnvironment.h"
#include "platform/qt/QtScheduler.h"
#include "platform/qt/SingleInstance.h"
#include "platform/qt/UnixSignalQuit.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11DesktopProbe.h"
#include "platform/x11/X11DirectSaveReceiver.h"
#include "platform/x11/X11HotKeyService.h"
#include "platform/x11/XkbKeyboardLayout.h"
#include "shelf/DragMonitor.h"
#include "shelf/DummyDesktopProbe.h"
#include "shelf/DummyHotKeyService.h"
#include "shelf/HotKeyManager.h"
#include "shelf/QtShelfPanelSurface.h"
#include "shelf/ShelfContentView.h"
#include "shelf/ShelfDropIngestHandler.h"
#include "shelf/ShelfPanel.h"
#include "shelf/ShelfWindowController.h"

using namespace mosswick;

namespace {

const QString kSummonOption = QStringLiteral("summon");

// The session's desktop services: X11 where Qt runs on xcb (XWayland included), the portal for
// the shortcut on Wayland when the desktop offers it, and do-nothing stand-ins elsewhere.
struct DesktopBackends {
    std::unique_ptr<X11Connection> x11;
    std::unique_ptr<DesktopProbe> probe;
    std::unique_ptr<KeyboardLayout> layout;
    std::unique_ptr<HotKeyService> hotKeys;

    static DesktopBackends forThisSession() {
        DesktopBackends backends;
        if (QGuiApplication::platformName() == QLatin1String("xcb")) backends.x11 = X11Connection::open();
        if (backends.x11) {
            backends.probe = X11DesktopProbe::create(*backends.x11);
            backends.layout = std::make_unique<XkbKeyboardLayout>(*backends.x11);
            KeyboardLayout::setShared(backends.layout.get());
        }
        if (!backends.probe) backends.probe = std::make_unique<DummyDesktopProbe>();

        const bool wayland = qEnvironmentVariable("XDG_SESSION_TYPE") == QLatin1String("wayland") ||
                             qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
        if (wayland && PortalGlobalShortcuts::isAvailable(QDBusConnection::sessionBus())) {
            backends.hotKeys = std::make_unique<PortalGlobalShortcuts>(QDBusConnection::sessionBus(),
                                                                       KeyboardLayout::shared());
        } else if (backends.x11) {
            backends.hotKeys = std::make_unique<X11HotKeyService>(*backends.x11);
        } else {
            backends.hotKeys = std::make_unique<DummyHotKeyService>();
        }
        return backends;
    }
};

// The display under a point given in X root pixels, in the same pixels.
std::optional<QRectF> displayFrameAt(QPointF pointer) {
    for (QScreen* screen : QGuiApplication::screens()) {
        const qreal ratio = screen->devicePixelRatio();
        const QRect logical = screen->geometry();
        const QRectF pixels(QPointF(logical.topLeft()) * ratio, QSizeF(logical.size()) * ratio);
        if (pixels.contains(pointer)) return pixels;
    }
    return std::nullopt;
}

void applyAppearance(AppearanceMode mode) {
    static const QPalette desktop = QApplication::palette();
    QApplication::setPalette(ShelfPalette::forAppearance(mode, desktop));
}

}  // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Mosswick"));
    QApplication::setApplicationVersion(QStringLiteral(MOSSWICK_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("mosswick"));
    QApplication::setQuitOnLastWindowClosed(false);

    QCommandLineParser options;
    options.setApplicationDescription(QStringLiteral(
        "A place to put a file down mid-drag, so your hand is free to open wherever it's going."));
    options.addHelpOption();
    options.addVersionOption();
    options.addOption({kSummonOption, QStringLiteral("Bring the shelf up (also in a running Mosswick).")});
    options.process(app);

    UnixSignalQuit quitOnSignal;
    std::function<void(const QStringList&)> onLaunchedAgain;
    auto instance = SingleInstance::claim(QApplication::arguments(), [&](const QStringList& arguments) {
        if (onLaunchedAgain) onLaunchedAgain(arguments);
    });
    if (!instance) return 0;  // the running Mosswick took over

    JsonDefaultsStore defaults(JsonDefaultsStore::defaultLocation());
    Preferences preferences(defaults);
    Preferences::setShared(&preferences);
    QtScheduler scheduler;
    Scheduler::setShared(&scheduler);
    ShelfStore store(preferences, scheduler, AppFiles::saveFile());
    ShelfStore::setShared(&store);

    QtDisplayEnvironment displays;
    DesktopAnimationSetting desktopMotion(QDBusConnection::sessionBus(),
                                          DesktopAnimationSetting::defaultKdeGlobals());
    // Drops are read through Qt; files they promise are received over X Direct Save on X11.
    std::unique_ptr<X11DirectSaveReceiver> directSave;
    if (QGuiApplication::platformName() == QLatin1String("xcb")) directSave = X11DirectSaveReceiver::create();
    QMimeDataPasteboard::PromiseFactory promises;
    if (directSave) promises = [&directSave](const QMimeData& data) { return directSave->promiseFor(data); };
    const IngestServices ingest{scheduler, preferences, store};
    ShelfDropIngestHandler dropIngest(
        [promises](const QMimeData& data) { return std::make_unique<QMimeDataPasteboard>(data, promises); },
        ingest);
    ShelfWindowController controller({preferences, store, scheduler, displays, desktopMotion,
                                      [&](const ScreenRect&) -> std::unique_ptr<ShelfPanelSurface> {
                                          auto* panel = new ShelfPanel(
                                              store, ReducedMotion(preferences, desktopMotion));
                                          panel->contentView().setDropHandler(&dropIngest);
                                          return std::make_unique<QtShelfPanelSurface>(panel);
                                      }});
    ShelfWindowController::setShared(&controller);

    DesktopBackends backends = DesktopBackends::forThisSession();
    DragMonitor dragMonitor(*backends.probe, scheduler, preferences);
    dragMonitor.displayFrameAt = displayFrameAt;
    DragMonitor::setShared(&dragMonitor);
    HotKeyManager hotKeys(*backends.hotKeys, scheduler, defaults);
    HotKeyManager::setShared(&hotKeys);

    const ClipboardImport::Services clipboardImport{
        [] { return std::make_unique<QClipboardPasteboard>(*QGuiApplication::clipboard()); },
        [] { QApplication::beep(); }, [&controller] { controller.summon(); }, ingest};
    AppDelegate delegate({preferences, store, controller, dragMonitor, hotKeys, defaults,
                          [&clipboardImport] { ClipboardImport::addContentsOfClipboard(clipboardImport); },
                          applyAppearance});
    onLaunchedAgain = [&](const QStringList&) { delegate.applicationShouldHandleReopen(); };
    QObject::connect(&app, &QCoreApplication::aboutToQuit, [&] { delegate.applicationWillTerminate(); });

    delegate.applicationDidFinishLaunching();
    if (options.isSet(kSummonOption)) controller.summon();
    // A shortcut the desktop refused is not offered; the refusal was logged just before.
    if (hotKeys.isRegistered() && hotKeys.combo())
        std::fprintf(stderr, "Mosswick is running: drag a file to bring the shelf up, or press %s.\n",
                     qPrintable(hotKeys.combo()->displayString()));
    else
        std::fprintf(stderr, "Mosswick is running: drag a file to bring the shelf up.\n");
    const int status = app.exec();
    delegate.applicationWillTerminate();
    return status;
}
