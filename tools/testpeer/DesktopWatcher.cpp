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

    std::map<Window, QString> classes;  // of the top-level windows seen mapped
    for (;;) {
        XEvent event;
        XNextEvent(display, &event);
        const double time = monotonicSeconds();
        if (event.type == xfixesEvent + XFixesSelectionNotify) {
            const auto& notify = reinterpret_cast<XFixesSelectionNotifyEvent&>(event);
            if (notify.owner == None) continue;
            print({{"event", "selection"}, {"owner", qint64(notify.owner)}, {"time", time}});
        } else if (event.type == MapNotify && event.xmap.event == root) {
            const QString name = clientClass(display, event.xmap.window);
            classes[event.xmap.window] = name;
            print({{"event", "map"}, {"window", qint64(event.xmap.window)}, {"class", name}, {"time", time}});
        } else if (event.type == UnmapNotify && event.xunmap.event == root && !event.xunmap.send_event) {
            // (A client withdrawing its window also sends the root a synthetic unmap of it.)
            const auto known = classes.find(event.xunmap.window);
            const QString name =
                known == classes.end() ? clientClass(display, event.xunmap.window) : known->second;
            print({{"event", "unmap"},
                   {"window", qint64(event.xunmap.window)},
                   {"class", name},
                   {"time", time}});
        } else if (event.type == DestroyNotify && event.xdestroywindow.event == root) {
            classes.erase(event.xdestroywindow.window);
        }
    }
}

}  // namespace mosswick::testpeer
