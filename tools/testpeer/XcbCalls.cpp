#include "XcbCalls.h"

#include <QGuiApplication>
#include <QList>
#include <cstdlib>
#include <memory>
#include <unistd.h>
#include <xcb/xcb.h>

namespace mosswick::testpeer::XcbCalls {

namespace {
template <typename T>
using Reply = std::unique_ptr<T, decltype(&std::free)>;

template <typename T>
Reply<T> owned(T* reply) {
    return Reply<T>(reply, &std::free);
}
}  // namespace

xcb_connection_t* qtConnection() {
    auto* x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 ? x11->connection() : nullptr;
}

Window rootWindow(xcb_connection_t* connection) {
    return xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
}

Atom atom(xcb_connection_t* connection, const QByteArray& name) {
    auto reply = owned(xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 0, static_cast<uint16_t>(name.size()), name.constData()),
        nullptr));
    return reply ? reply->atom : Atom{XCB_ATOM_NONE};
}

QByteArray atomName(xcb_connection_t* connection, Atom atom) {
    auto reply = owned(xcb_get_atom_name_reply(connection, xcb_get_atom_name(connection, atom), nullptr));
    if (!reply) return {};
    return QByteArray(xcb_get_atom_name_name(reply.get()), xcb_get_atom_name_name_length(reply.get()));
}

std::optional<Property> property(xcb_connection_t* connection, Window window, Atom name, bool remove) {
    // The length is in 32-bit units: ask for everything at once.
    auto reply = owned(xcb_get_property_reply(connection,
                                              xcb_get_property(connection, remove ? 1 : 0, window, name,
                                                               XCB_GET_PROPERTY_TYPE_ANY, 0, UINT32_MAX / 4),
                                              nullptr));
    if (!reply || reply->type == XCB_ATOM_NONE) return std::nullopt;
    Property result;
    result.type = reply->type;
    result.format = reply->format;
    result.bytes = QByteArray(static_cast<const char*>(xcb_get_property_value(reply.get())),
                              xcb_get_property_value_length(reply.get()));
    return result;
}

void setProperty(xcb_connection_t* connection, Window window, Atom name, Atom type, int format,
                 const QByteArray& bytes) {
    const auto items = static_cast<uint32_t>(bytes.size() / (format / 8));
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, name, type, static_cast<uint8_t>(format),
                        items, bytes.constData());
}

void setCardinals(xcb_connection_t* connection, Window window, Atom name, Atom type,
                  const QList<uint32_t>& values) {
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, name, type, 32,
                        static_cast<uint32_t>(values.size()), values.constData());
}

QList<uint32_t> cardinals(const Property& property) {
    QList<uint32_t> values;
    if (property.format != 32) return values;
    const auto* items = reinterpret_cast<const uint32_t*>(property.bytes.constData());
    for (qsizetype i = 0; i < property.bytes.size() / 4; ++i) values += items[i];
    return values;
}

Window selectionOwner(xcb_connection_t* connection, Atom selection) {
    auto reply = owned(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, selection), nullptr));
    return reply ? reply->owner : Window{XCB_WINDOW_NONE};
}

QByteArray hostName() {
    char name[256] = {};
    if (gethostname(name, sizeof name - 1) != 0) return {};
    return QByteArray(name);
}

}  // namespace mosswick::testpeer::XcbCalls
