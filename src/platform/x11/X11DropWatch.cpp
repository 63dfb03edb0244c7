#include "platform/x11/X11DropWatch.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <cstdlib>
#include <cstring>

#include <xcb/xcb.h>

namespace mosswick {

X11DropWatch::X11DropWatch() {
    auto* x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    if (!x11 || !x11->connection()) return;
    xcb_connection_t* connection = x11->connection();
    const char* name = "XdndDrop";
    xcb_intern_atom_reply_t* reply = xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 0, static_cast<uint16_t>(std::strlen(name)), name), nullptr);
    if (!reply) return;
    dropAtom_ = reply->atom;
    std::free(reply);
    QCoreApplication::instance()->installNativeEventFilter(this);
}

X11DropWatch::~X11DropWatch() {
    if (dropAtom_ && QCoreApplication::instance())
        QCoreApplication::instance()->removeNativeEventFilter(this);
}

std::optional<X11DropWatch::Drop> X11DropWatch::takeLastDrop() {
    std::optional<Drop> drop = last_;
    last_.reset();
    return drop;
}

bool X11DropWatch::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    if (eventType != "xcb_generic_event_t") return false;
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    if ((event->response_type & 0x7F) != XCB_CLIENT_MESSAGE) return false;
    const auto* client = static_cast<const xcb_client_message_event_t*>(message);
    if (client->type != dropAtom_ || client->format != 32) return false;
    last_ = Drop{client->data.data32[0], client->data.data32[2]};
    return false;  // Qt goes on to deliver the drop
}

}  // namespace mosswick
