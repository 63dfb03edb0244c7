#include "DesktopWatcher.h"

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <cstdio>
#include <ctime>
#include <map>

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/Xfixes.h>

namespace mosswick::testpeer {

namespace {

double monotonicSeconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

void print(QJsonObject line) {
    std::printf("%s\n", QJsonDocument(line).toJson(QJsonDocument::Compact).constData());
    std::fflush(stdout);
}

// A window that vanished between its event and our question is no error here.
int ignoreErrors(Display*, XErrorEvent*) { return 0; }

// The WM_CLASS class of the client window at or under a top-level window (the window manager
// reparents clients into frames of its own).
QString clientClass(Display* display, Window window, int depth = 0) {
    XClassHint hint{};
    if (XGetClassHint(display, window, &hint)) {
        const QString name = QString::fromLocal8Bit(hint.res_class ? hint.res_class : "");
        if (hint.res_name) XFree(hint.res_name);
        if (hint.res_class) XFree(hint.res_class);
        return name;
    }
    Window root = None;
    Window parent = None;
    Window* children = nullptr;
    unsigned count = 0;
    QString found;
    if (depth < 3 && XQueryTree(display, window, &root, &parent, &children, &count)) {
        for (unsigned i = 0; i < count && found.isEmpty(); ++i)
            found = clientClass(display, children[i], depth + 1);
    }
    if (children) XFree(children);
    return found;
}

// Whether a top-level window stands at least partly on the root window: a window kept mapped
// outside it (as a hidden shelf is) is as good as gone for whoever looks at the screen.
bool onRoot(Display* display, Window root, int x, int y, int width, int height) {
    Window ignored = None;
    int rx = 0;
    int ry = 0;
    unsigned rw = 0;
    unsigned rh = 0;
    unsigned border = 0;
    unsigned depth = 0;
    if (!XGetGeometry(display, root, &ignored, &rx, &ry, &rw, &rh, &border, &depth)) return true;
    return x < static_cast<int>(rw) && y < static_cast<int>(rh) && x + width > 0 && y + height > 0;
}

bool onRoot(Display* display, Window root, Window window) {
    XWindowAttributes attributes{};
    if (!XGetWindowAttributes(display, window, &attributes)) return false;
    return onRoot(display, root, attributes.x, attributes.y, attributes.width, attributes.height);
}

}  // namespace

int watchDesktop() {
    Display* display = XOpenDisplay(nullptr);
    if (!display) {
        std::fprintf(stderr, "mosswick-testpeer: cannot connect to the display\n");
        return 1;
    }
    XSetErrorHandler(ignoreErrors);
    int xfixesEvent = 0;
    int xfixesError = 0;
    if (!XFixesQueryExtension(display, &xfixesEvent, &xfixesError)) {
        std::fprintf(stderr, "mosswick-testpeer: the display has no XFixes\n");
        return 1;
    }
    const Window root = DefaultRootWindow(display);
    const Atom drag = XInternAtom(display, "XdndSelection", False);
    XFixesSelectSelectionInput(display, root, drag, XFixesSetSelectionOwnerNotifyMask);
    XSelectInput(display, root, SubstructureNotifyMask);
    XSync(display, False);
    std::printf("ready\n");
    std::fflush(stdout);

    // The top-level windows seen mapped: their class, and whether they stand on the screen. A
    // window "comes" when it is mapped on the screen or moves onto it, and "goes" when it is
    // unmapped or moves off it.
    struct Seen {
        QString name;
        bool shown = false;
        int width = 0;
    };
    std::map<Window, Seen> seen;
    auto report = [&](const char* kind, Window window, const QString& name, double time) {
        print({{"event", kind}, {"window", qint64(window)}, {"class", name}, {"time", time}});
    };
    for (;;) {
        XEvent event;
        XNextEvent(display, &event);
        const double time = monotonicSeconds();
        if (event.type == xfixesEvent + XFixesSelectionNotify) {
            const auto& notify = reinterpret_cast<XFixesSelectionNotifyEvent&>(event);
            if (notify.owner == None) continue;
            print({{"event", "selection"}, {"owner", qint64(notify.owner)}, {"time", time}});
        } else if (event.type == MapNotify && event.xmap.event == root) {
            Seen& window = seen[event.xmap.window];
            window.name = clientClass(display, event.xmap.window);
            window.shown = onRoot(display, root, event.xmap.window);
            if (window.shown) report("map", event.xmap.window, window.name, time);
        } else if (event.type == ConfigureNotify && event.xconfigure.event == root) {
            const auto known = seen.find(event.xconfigure.window);
            if (known == seen.end()) continue;
            const XConfigureEvent& c = event.xconfigure;
            const bool shown = onRoot(display, root, c.x, c.y, c.width, c.height);
            // Every change of size: a window may grow from a sliver into its full frame.
            if (c.width != known->second.width) {
                known->second.width = c.width;
                print({{"event", "size"},
                       {"window", qint64(c.window)},
                       {"class", known->second.name},
                       {"width", c.width},
                       {"height", c.height},
                       {"time", time}});
            }
            if (shown == known->second.shown) continue;
            known->second.shown = shown;
            report(shown ? "map" : "unmap", c.window, known->second.name, time);
        } else if (event.type == UnmapNotify && event.xunmap.event == root && !event.xunmap.send_event) {
            // (A client withdrawing its window also sends the root a synthetic unmap of it.)
            const auto known = seen.find(event.xunmap.window);
            if (known == seen.end()) {
                report("unmap", event.xunmap.window, clientClass(display, event.xunmap.window), time);
                continue;
            }
            const bool wasShown = known->second.shown;
            known->second.shown = false;
            if (wasShown) report("unmap", event.xunmap.window, known->second.name, time);
        } else if (event.type == DestroyNotify && event.xdestroywindow.event == root) {
            seen.erase(event.xdestroywindow.window);
        }
    }
}

}  // namespace mosswick::testpeer
