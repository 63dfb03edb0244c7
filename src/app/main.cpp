// Mosswick's entry point: the desktop backends for this session, the long-lived components over
// them, and the application delegate that wires them together.
#include <QApplication>
#include <QClipboard>
#include <QCommandLineParser>
#include <cstdio>

#include "app/AppDelegate.h"
#include "app/DesktopBackends.h"
#include "ingest/ClipboardImport.h"
#include "interaction/ApplicationAppearance.h"
#include "model/AppFiles.h"
#include "model/JsonDefaultsStore.h"
#include "model/Preferences.h"
#include "model/ShelfStore.h"
#include "platform/qt/QClipboardPasteboard.h"
#include "platform/qt/QtScheduler.h"
#include "platform/qt/SingleInstance.h"
#include "platform/qt/UnixSignalQuit.h"
#include "shelf/ShelfDropIngestHandler.h"
#include "shelf/ShelfPanelFactory.h"
#include "shelf/ShelfWindowController.h"
#include "triggers/DragMonitor.h"
#include "triggers/HotKeyManager.h"

using namespace mosswick;

namespace {

const QString kSummonOption = QStringLiteral("summon");

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

    DesktopBackends desktop = DesktopBackends::forThisSession();
    const IngestServices ingest{scheduler, preferences, store};
    ShelfDropIngestHandler drops(desktop.dropPasteboards(), ingest);
    const ShelfPanelFactory panels({store, ReducedMotion(preferences, desktop.desktopMotion()),
                                    desktop.panelHints(), drops, desktop.workspace(), desktop.dragTypes()});
    ShelfWindowController controller(
        {preferences, store, scheduler, desktop.displays(), desktop.desktopMotion(), panels});
    ShelfWindowController::setShared(&controller);

    DragMonitor dragMonitor(desktop.probe(), desktop.displays(), scheduler, preferences);
    dragMonitor.setInstalledApplications(&desktop.installedApplications());
    DragMonitor::setShared(&dragMonitor);
    HotKeyManager hotKeys(desktop.hotKeys(), scheduler, defaults);
    HotKeyManager::setShared(&hotKeys);

    ApplicationAppearance appearance(desktop.colorScheme());
    const ClipboardImport::Services clipboardImport{
        [] { return std::make_unique<QClipboardPasteboard>(*QGuiApplication::clipboard()); },
        [] { QApplication::beep(); }, [&controller] { controller.summon(); }, ingest};
    AppDelegate delegate({preferences, store, controller, dragMonitor, hotKeys, defaults,
                          [&clipboardImport] { ClipboardImport::addContentsOfClipboard(clipboardImport); },
                          [&appearance](AppearanceMode mode) { appearance.apply(mode); },
                          desktop.sleepWatch()});
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
