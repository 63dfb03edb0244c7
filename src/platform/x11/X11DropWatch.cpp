#include "platform/x11/X11DropWatch.h"

#include <QCoreApplication>
#include <QGuiApplication>

#include "platform/x11/X11Atoms.h"

#include <xcb/xcb.h>

namespace mosswick {

X11DropWatch::X11DropWatch(X11Atoms& atoms) {
    auto* x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    if (!x11 || !x11->connection()) return;
    dropAtom_ = atoms["XdndDrop"];
    if (!dropAtom_) return;
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
