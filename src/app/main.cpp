// Mosswick's entry point: the desktop backends for this session, the long-lived components over
// them, and the application delegate that wires them together.
#include <QApplication>
#include <QClipboard>
#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QIcon>
#include <QLoggingCategory>
#include <QMessageBox>
#include <QSessionManager>
#include <cstdio>

#include "app/AppDelegate.h"
#include "app/BuildSettings.h"
#include "app/CommandClient.h"
#include "app/DesktopBackends.h"
#include "app/MenuBarIcon.h"
#include "app/QtPlatformChoice.h"
#include "app/StatusBarController.h"
#include "app/SelfUpdate.h"
#include "app/ShelfCommands.h"
#include "app/Updater.h"
#include "ingest/ClipboardImport.h"
#include "interaction/ApplicationAppearance.h"
#include "interaction/ThumbnailProvider.h"
#include "interaction/MenuActions.h"
#include "interaction/ShelfMenuPresenter.h"
#include "interaction/ShelfMenus.h"
#include "model/AppFiles.h"
#include "model/JsonDefaultsStore.h"
#include "model/Preferences.h"
#include "model/ShelfStore.h"
#include "platform/qt/LowPriorityPool.h"
#include "platform/qt/QClipboardPasteboard.h"
#include "platform/qt/QtFileClipboard.h"
#include "platform/qt/QtScheduler.h"
#include "platform/qt/SingleInstance.h"
#include "platform/qt/ThemeWorkspaceIcons.h"
#include "platform/qt/UnixSignalQuit.h"
#include "settings/DesktopShortcut.h"
#include "settings/SettingsWindow.h"
#include "shelf/ShelfDropIngestHandler.h"
#include "shelf/ShelfPanelFactory.h"
#include "shelf/ShelfWindowController.h"
#include "triggers/DesktopSession.h"
#include "triggers/DragMonitor.h"
#include "triggers/HotKeyManager.h"

using namespace mosswick;

namespace {

const QString kSummonOption = QStringLiteral("summon");
Q_LOGGING_CATEGORY(lcSettings, "mosswick.settings")
Q_LOGGING_CATEGORY(lcSession, "mosswick.session", QtInfoMsg)

}  // namespace

int main(int argc, char** argv) {
    // `mosswick <command>` talks to the running shelf and needs no display of its own.
    if (const std::optional<int> status = runCommandLine(argc, argv)) return *status;

    // Asked for while Qt starts only: programs opened from the shelf choose their own platform.
    const QByteArray platform =
        QtPlatformChoice::preferred([](const char* name) { return qEnvironmentVariable(name); });
    if (!platform.isEmpty()) qputenv("QT_QPA_PLATFORM", platform);
    QApplication app(argc, argv);
    if (!platform.isEmpty()) qunsetenv("QT_QPA_PLATFORM");
    QApplication::setApplicationName(QStringLiteral("Mosswick"));
    QApplication::setApplicationVersion(QString::fromLatin1(BuildSettings::version()));
    QApplication::setDesktopFileName(QStringLiteral("mosswick"));
    QApplication::setQuitOnLastWindowClosed(false);
    // Without a desktop that names its icon theme (a bare window manager), the settings' icons
    // come from the theme every freedesktop system ships.
    if (QIcon::themeName().isEmpty() || QIcon::themeName() == QLatin1String("hicolor"))
        QIcon::setThemeName(QStringLiteral("Adwaita"));
    // The settings window's icon and the About pane's picture.
    QApplication::setWindowIcon(MenuBarIcon::icon({QApplication::palette().color(QPalette::WindowText), {}}));

    QCommandLineParser options;
    options.setApplicationDescription(QStringLiteral(
        "A place to put a file down mid-drag, so your hand is free to open wherever it's going."));
    options.addHelpOption();
    options.addVersionOption();
    options.addOption({kSummonOption, QStringLiteral("Bring the shelf up (also in a running Mosswick).")});
    options.process(app);

    UnixSignalQuit quitOnSignal;
    std::unique_ptr<ShelfCommands> commands;
    SingleInstance::Arguments launchArguments;
    for (int i = 1; i < argc; ++i) launchArguments.append(QByteArray(argv[i]));
    auto instance = SingleInstance::claim(
        launchArguments, [&](const SingleInstance::Arguments& arguments, SingleInstance::Respond respond) {
            if (!commands) return respond({});
            commands->run({arguments.begin(), arguments.end()}, [respond](CommandReply reply) {
                respond({reply.exitCode, std::move(reply.out), std::move(reply.err)});
            });
        });
    if (!instance) return 0;  // the running Mosswick took over

    JsonDefaultsStore defaults(JsonDefaultsStore::defaultLocation());
    Preferences preferences(defaults);
    Preferences::setShared(&preferences);
    QtScheduler scheduler;
    Scheduler::setShared(&scheduler);
    ShelfStore store(preferences, scheduler, AppFiles::saveFile());
    ShelfStore::setShared(&store);
    ThemeWorkspaceIcons workspaceIcons;
    ThumbnailProvider thumbnails(
        {preferences, scheduler, workspaceIcons,
         std::make_shared<const PreviewGenerator>(ThumbnailFolder(ThumbnailFolder::defaultRoot()),
                                                  Thumbnailers::load(Thumbnailers::defaultFolders()),
                                                  PreviewGenerator::Limits())});
    ThumbnailProvider::setShared(&thumbnails);
    store.setThumbnailCache(&thumbnails);
    QObject::connect(&store, &ShelfStore::itemsChanged, &thumbnails, [&store, &thumbnails] {
        std::set<QUuid> onShelf;
        for (const ShelfItem& item : store.items()) onShelf.insert(item.id);
        thumbnails.keepWorkFor(onShelf);
    });

    DesktopBackends desktop = DesktopBackends::forThisSession();
    const DragSight dragSight = DragSight::of(desktop.session());
    qCInfo(lcSession).noquote() << "Desktop session:" << describeDesktopSession(desktop.session())
                                << "- Qt platform" << QGuiApplication::platformName();
    if (QGuiApplication::platformName() != QLatin1String("xcb"))
        qCWarning(lcSession) << "Not an X11 client: drags in other programs cannot be seen, so only the "
                                "shortcut and the menu bring the shelf up";
    const IngestServices ingest{scheduler, preferences, store};
    ShelfDropIngestHandler drops(desktop.dropPasteboards(), ingest);
    ShelfMenuPresenter shelfMenus(preferences, store);
    const ShelfPanelFactory panels(
        {store, ReducedMotion(preferences, desktop.desktopMotion()), desktop.panelHints(), drops,
         desktop.workspace(), desktop.dragTypes(), shelfMenus, [&defaults] {
             const auto stored = defaults.value(SettingsWindow::kLegacyMaterialKey);
             const bool* classic = stored ? std::get_if<bool>(&*stored) : nullptr;
             return classic && *classic;
         }});
    ShelfWindowController controller(
        {preferences, store, scheduler, desktop.displays(), desktop.desktopMotion(), panels});
    ShelfWindowController::setShared(&controller);
    controller.setPointerAlwaysKnown(dragSight.followsPointer);

    DragMonitor dragMonitor(desktop.probe(), desktop.displays(), scheduler, preferences);
    dragMonitor.setInstalledApplications(&desktop.installedApplications());
    DragMonitor::setShared(&dragMonitor);
    dragMonitor.setSight(dragSight);
    // What the shelf sees of a drag is all there is to tell its end by where the session hides it.
    drops.onDropped = [&dragMonitor] { dragMonitor.droppedOnShelf(); };
    // Goes before the monitor: the panel, put away as the controller goes, still tells the store.
    const QObject monitorLink;
    QObject::connect(&store, &ShelfStore::targetedChanged, &monitorLink,
                     [&store, &dragMonitor] { dragMonitor.shelfTargetChanged(store.isTargeted()); });
    HotKeyManager hotKeys(desktop.hotKeys(), scheduler, defaults);
    HotKeyManager::setShared(&hotKeys);

    ApplicationAppearance appearance(desktop.colorScheme());
    const ClipboardImport::Services clipboardImport{
        [] { return std::make_unique<QClipboardPasteboard>(*QGuiApplication::clipboard()); },
        [] { QApplication::beep(); }, [&controller] { controller.summon(); }, ingest};
    const auto addClipboardContents = [&clipboardImport] {
        ClipboardImport::addContentsOfClipboard(clipboardImport);
    };

    // Only a self-installed copy has an updater, and only once launched: asked each time.
    const auto checkForUpdates = [] {
        if (Updater* updater = Updater::current())
            updater->checkForUpdates([](const UpdateResult& result) {
                QMessageBox::information(nullptr, QStringLiteral("Mosswick"), result.message);
            });
    };

    const std::unique_ptr<LoginItem> loginItem = DesktopBackends::makeLoginItem(defaults);
    DesktopShortcutOffer desktopShortcut(
        desktop.session(), desktop.desktopShortcuts(),
        [&desktop, &hotKeys] { return desktop.portalOwnsShortcut() && hotKeys.isRegistered(); },
        XdgAutostartEntry::installedExecutable());
    // One settings window for the run, made when first asked for.
    std::unique_ptr<SettingsWindow> settingsWindow;
    const auto showSettings = [&] {
        QElapsedTimer opening;
        opening.start();
        if (!settingsWindow)
            settingsWindow = std::make_unique<SettingsWindow>(SettingsWindow::Services{
                preferences, defaults, hotKeys, *loginItem, desktop.applicationCatalog(),
                [&controller] { controller.rebuildPanel(); },
                Updater::current() ? std::function<void()>(checkForUpdates) : std::function<void()>(),
                Updater::current() ? Updater::current()->serverName() : QString(),
                desktop.portalOwnsShortcut()
                    ? QStringLiteral(
                          "Your desktop keeps this shortcut: it asks you to confirm a new one in its "
                          "own window, and its keyboard settings can change it too.")
                    : QString(),
                &desktopShortcut});
        settingsWindow->show();
        qCDebug(lcSettings) << "settings window shown in" << opening.elapsed() << "ms";
    };

    QtFileClipboard fileClipboard;
    MenuActions menuActions({preferences, store, controller, desktop.workspace(), fileClipboard,
                             addClipboardContents, showSettings,
                             [] {
                                 QMessageBox::about(
                                     nullptr, QStringLiteral("About Mosswick"),
                                     QStringLiteral("<b>Mosswick</b> %1<p>A place to put a file down "
                                                    "mid-drag, so your hand is free to open wherever "
                                                    "it's going.</p>")
                                         .arg(QApplication::applicationVersion()));
                             },
                             checkForUpdates, [] { QApplication::quit(); }});
    shelfMenus.setActions(&menuActions);
    shelfMenus.setHasUpdater([] { return Updater::current() != nullptr; });
    StatusBarController statusBar(
        {[&] {
             return ShelfMenus::mainMenu({preferences, store, Updater::current() != nullptr});
         },
         [&menuActions](const MenuEntry& entry) { menuActions.perform(entry); }});
    desktop.followTrayTextColor(
        [&statusBar](std::optional<QColor> color) { statusBar.setTrayTextColor(color); });

    AppDelegate delegate(
        {preferences, store, controller, dragMonitor, hotKeys, defaults, addClipboardContents,
         [&appearance](AppearanceMode mode) { appearance.apply(mode); }, desktop.sleepWatch(),
         [&statusBar](bool visible) { statusBar.setVisible(visible); }});
    commands = std::make_unique<ShelfCommands>(ShelfCommands::Services{
        store, controller, ingest,
        [&clipboardImport] { return ClipboardImport::addContentsOfClipboard(clipboardImport); },
        [&delegate] { delegate.applicationShouldHandleReopen(); }, [] { QCoreApplication::quit(); }});
    QObject::connect(&app, &QCoreApplication::aboutToQuit, [&] { delegate.applicationWillTerminate(); });
#if QT_CONFIG(sessionmanager)
    // A session manager ending the session may not let us reach aboutToQuit: save the shelf now.
    QObject::connect(&app, &QGuiApplication::commitDataRequest,
                     [&store](QSessionManager&) { store.flush(); });
#endif

    delegate.applicationDidFinishLaunching();
    // Only a self-installed copy updates itself (Updater::current() stays empty otherwise).
    const std::unique_ptr<SelfUpdate> selfUpdate = SelfUpdate::forThisCopy(scheduler, preferences);
    if (options.isSet(kSummonOption)) controller.summon();
    // A shortcut the desktop refused is not offered; the refusal was logged just before.
    // Through XWayland an X grab hears only keys typed into X programs: say so rather than promise
    // a key that does nothing over the user's other windows.
    const bool grabHearsOnlyX = isWayland(desktop.session()) && !desktop.portalOwnsShortcut();
    if (hotKeys.isRegistered() && hotKeys.combo() && grabHearsOnlyX)
        std::fprintf(stderr,
                     "Mosswick is running: drag a file to bring the shelf up, or press %s while an X11 "
                     "program has the focus (Settings, Behavior can add it to your desktop's own "
                     "shortcuts).\n",
                     qPrintable(hotKeys.combo()->displayString()));
    else if (hotKeys.isRegistered() && hotKeys.combo())
        std::fprintf(stderr, "Mosswick is running: drag a file to bring the shelf up, or press %s.\n",
                     qPrintable(hotKeys.combo()->displayString()));
    else
        std::fprintf(stderr, "Mosswick is running: drag a file to bring the shelf up.\n");
    const int status = app.exec();
    settingsWindow.reset();
    delegate.applicationWillTerminate();
    return status;
}
