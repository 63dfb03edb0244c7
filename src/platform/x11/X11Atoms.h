#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QtGlobal>
#include <initializer_list>

struct xcb_connection_t;
struct _XDisplay;

namespace mosswick {

// The X server's atoms by name, each interned once and then remembered. An atom's number is the
// server's, the same on every connection to it, so the main thread's table also serves requests
// made on Qt's own connection. Not locked: a thread with a connection of its own keeps its own.
class X11Atoms {
public:
    explicit X11Atoms(xcb_connection_t* connection);
    // Over the XCB connection under an Xlib display.
    explicit X11Atoms(_XDisplay* display);
    X11Atoms(const X11Atoms&) = delete;
    X11Atoms& operator=(const X11Atoms&) = delete;

    // None (0) when the server cannot be asked.
    quint32 atom(const QByteArray& name);
    quint32 operator[](const char* name) { return atom(QByteArray(name)); }
    // Interns the names not known yet with one wait for the server, rather than one each.
    void intern(std::initializer_list<const char*> names);

    // The atoms' names (an empty one for an atom the server does not know), those not known yet
    // asked for together.
    QList<QByteArray> names(const QList<quint32>& atoms);

private:
    xcb_connection_t* connection_;
    QHash<QByteArray, quint32> byName_;
    QHash<quint32, QByteArray> byAtom_;
};

}  // namespace mosswick
