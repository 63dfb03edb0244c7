#include "platform/x11/X11ActiveApplication.h"

#include "platform/x11/X11Connection.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>

namespace mosswick::X11ActiveApplication {

namespace {

// A property's raw bytes, or nothing when the window lacks it (or is gone).
QByteArray property(X11Connection& connection, Window window, const char* name) {
    Atom type = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long remaining = 0;
    unsigned char* data = nullptr;
    const int status = XGetWindowProperty(connection.display(), window, connection.atom(name), 0, 1024, False,
                                          AnyPropertyType, &type, &format, &count, &remaining, &data);
    QByteArray bytes;
    if (status == Success && data && format == 8)
        bytes = QByteArray(reinterpret_cast<const char*>(data), count);
    if (data) XFree(data);
    return bytes;
}

Window activeWindow(X11Connection& connection) {
    Atom type = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long remaining = 0;
    unsigned char* data = nullptr;
    const int status = XGetWindowProperty(connection.display(), connection.rootWindow(),
                                          connection.atom("_NET_ACTIVE_WINDOW"), 0, 1, False, XA_WINDOW,
                                          &type, &format, &count, &remaining, &data);
    Window window = None;
    if (status == Success && data && format == 32 && count == 1) window = *reinterpret_cast<Window*>(data);
    if (data) XFree(data);
    return window;
}

QString withoutDesktopSuffix(QString id) {
    if (id.endsWith(QLatin1String(".desktop"))) id.chop(8);
    return id;
}

}  // namespace

FrontmostApplication frontmost(X11Connection& connection) {
    const Window window = activeWindow(connection);
    if (window == None) return {};
    FrontmostApplication application;
    for (const char* name : {"_GTK_APPLICATION_ID", "_KDE_NET_WM_DESKTOP_FILE"}) {
        const QByteArray value = property(connection, window, name);
        if (value.isEmpty()) continue;
        application.applicationId = withoutDesktopSuffix(QString::fromUtf8(value));
        break;
    }
    // WM_CLASS is the instance name and then the class, each ending in a NUL.
    const QList<QByteArray> parts = property(connection, window, "WM_CLASS").split('\0');
    if (parts.size() >= 2) application.windowClass = QString::fromLocal8Bit(parts[1]);
    return application;
}

}  // namespace mosswick::X11ActiveApplication
