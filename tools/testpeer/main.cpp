// The test peer: the other applications of the desktop, scripted from the command line.
#include <QApplication>
#include <QClipboard>
#include <cstdio>
#include <memory>

#include "DesktopWatcher.h"
#include "DragSourceWindow.h"
#include "DropTargetWindow.h"
#include "KeyGrab.h"
#include "PayloadMimeData.h"
#include "PeerOptions.h"
#include "ReportFile.h"
#include "ScreenReport.h"
#include "SelectionDump.h"
#include "StrutPanel.h"

using namespace mosswick::testpeer;

namespace {

int fail(const QString& message, int code = 1) {
    std::fprintf(stderr, "mosswick-testpeer: %s\n", qPrintable(message));
    return code;
}

QString title(const PeerOptions& options, const char* mode) {
    return options.label.isEmpty() ? QStringLiteral("mosswick-testpeer %1").arg(QLatin1String(mode))
                                   : options.label;
}

// Must be set before the first window: Qt writes WM_CLASS from the resource name (instance) and
// the application name (class) when it creates one.
void takeIdentity(const QString& appId) {
    if (appId.isEmpty()) return;
    qputenv("RESOURCE_NAME", appId.toLocal8Bit());
    QCoreApplication::setApplicationName(appId);
    QGuiApplication::setDesktopFileName(appId);
}

int showAndRun(QWidget& window, const PeerOptions& options, const char* mode) {
    window.setWindowTitle(title(options, mode));
    if (options.mode != PeerOptions::Mode::Strut) window.setGeometry(options.geometry);
    window.show();
    return QApplication::exec();
}

int runDrag(const PeerOptions& options) {
    auto payload = Payload::forDrag(options);
    if (const auto* problem = std::get_if<QString>(&payload)) return fail(*problem, 2);
    DragSourceWindow window(options, std::get<Payload>(std::move(payload)));
    return showAndRun(window, options, "drag");
}

int runReceive(const PeerOptions& options) {
    auto reader = SelectionReader::open();
    if (!reader) return fail(QStringLiteral("cannot open a second connection to the display"));
    DropTargetWindow window(options, std::move(reader));
    return showAndRun(window, options, "receive");
}

int runClipboard(const PeerOptions& options) {
    auto payload = Payload::forClipboard(options);
    if (const auto* problem = std::get_if<QString>(&payload)) return fail(*problem, 2);
    QClipboard* clipboard = QGuiApplication::clipboard();
    clipboard->setMimeData(new PayloadMimeData(std::get<Payload>(std::move(payload))));
    if (!clipboard->ownsClipboard()) return fail(QStringLiteral("could not take the clipboard"));
    std::printf("ready\n");
    std::fflush(stdout);
    return QApplication::exec();
}

int runClipboardDump(const PeerOptions& options) {
    auto reader = SelectionReader::open();
    if (!reader) return fail(QStringLiteral("cannot connect to the display"));
    const XcbCalls::Atom clipboard = reader->atom("CLIPBOARD");
    const int timeoutMs = static_cast<int>(options.readTimeoutSeconds * 1000);
    QJsonObject report{{QStringLiteral("owner"), false}};
    if (XcbCalls::selectionOwner(reader->connection(), clipboard) != 0) {
        const auto targets = reader->targets(clipboard, 0, timeoutMs);
        if (!targets) return fail(QStringLiteral("the clipboard's owner did not list its targets"));
        // Targets that are questions about the selection, not its contents.
        const QList<QByteArray> skip{"TARGETS", "MULTIPLE", "TIMESTAMP", "SAVE_TARGETS", "DELETE"};
        report = dumpSelection(*reader, clipboard, *targets, 0, timeoutMs, skip);
        report[QStringLiteral("owner")] = true;
    }
    return ReportFile::write(options.report, report) ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    // Raw bytes: QCoreApplication::arguments() decodes them as UTF-8 and loses what is not.
    QList<QByteArray> arguments;
    for (int i = 1; i < argc; ++i) arguments += QByteArray(argv[i]);
    if (arguments.contains("--help") || arguments.contains("-h")) {
        std::printf("%s", qPrintable(peerUsage()));
        return 0;
    }
    const auto parsed = parsePeerOptions(arguments);
    if (const auto* error = std::get_if<UsageError>(&parsed))
        return fail(error->message + QStringLiteral("\n\n") + peerUsage(), 2);
    const PeerOptions& options = std::get<PeerOptions>(parsed);
    if (options.mode == PeerOptions::Mode::ClipboardDump) return runClipboardDump(options);
    // Plain X clients: no Qt window, nothing of Qt's in their way.
    if (options.mode == PeerOptions::Mode::Watch) return watchDesktop();
    if (options.mode == PeerOptions::Mode::GrabKey) return holdKeyGrab(options.key);

    takeIdentity(options.appId);
    // Qt sees none of our options (it would take --geometry as its own).
    static int qtArgc = 1;
    static char* qtArgv[] = {argv[0], nullptr};
    QApplication app(qtArgc, qtArgv);
    if (QGuiApplication::platformName() != QLatin1String("xcb"))
        return fail(
            QStringLiteral("needs an X11 display (Qt runs on %1)").arg(QGuiApplication::platformName()));

    switch (options.mode) {
        case PeerOptions::Mode::Drag:
            return runDrag(options);
        case PeerOptions::Mode::Receive:
            return runReceive(options);
        case PeerOptions::Mode::Clipboard:
            return runClipboard(options);
        case PeerOptions::Mode::Strut: {
            StrutPanel panel(options);
            return showAndRun(panel, options, "panel");
        }
        case PeerOptions::Mode::Screens:
            return ReportFile::write(options.report, screenReport()) ? 0 : 1;
        case PeerOptions::Mode::ClipboardDump:
        case PeerOptions::Mode::Watch:
        case PeerOptions::Mode::GrabKey:
            break;
    }
    return 0;
}
