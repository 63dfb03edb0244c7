#pragma once

#include <QByteArray>
#include <cstdint>
#include <optional>

struct xcb_connection_t;

namespace mosswick::testpeer {

// The few X requests the peer makes, on whichever connection is given: Qt's own (to act on the
// windows Qt made) or a private one (to read selections while Qt's thread waits in a drop).
namespace XcbCalls {

using Window = uint32_t;
using Atom = uint32_t;

struct Property {
    Atom type = 0;
    int format = 0;  // 8, 16 or 32 bits per item
    QByteArray bytes;
};

// Qt's connection; null when Qt does not run on X11.
xcb_connection_t* qtConnection();
Window rootWindow(xcb_connection_t* connection);

Atom atom(xcb_connection_t* connection, const QByteArray& name);
QByteArray atomName(xcb_connection_t* connection, Atom atom);

std::optional<Property> property(xcb_connection_t* connection, Window window, Atom name, bool remove = false);
void setProperty(xcb_connection_t* connection, Window window, Atom name, Atom type, int format,
                 const QByteArray& bytes);
// A list of 32-bit values (atoms, cardinals, windows) as X stores them.
void setCardinals(xcb_connection_t* connection, Window window, Atom name, Atom type,
                  const QList<uint32_t>& values);
QList<uint32_t> cardinals(const Property& property);

Window selectionOwner(xcb_connection_t* connection, Atom selection);

// This machine's name, as file:// URIs in X Direct Save carry it.
QByteArray hostName();

}  // namespace XcbCalls
}  // namespace mosswick::testpeer
