#include "DragSourceEvents.h"

#include <QCoreApplication>
#include <xcb/xcb.h>

namespace mosswick::testpeer {

DragSourceEvents::DragSourceEvents(const QList<std::pair<QByteArray, QByteArray>>& servedAsIs)
    : connection_(XcbCalls::qtConnection()),
      selection_(XcbCalls::atom(connection_, "XdndSelection")),
      finishedMessage_(XcbCalls::atom(connection_, "XdndFinished")) {
    for (const auto& [target, bytes] : servedAsIs)
        servedAsIs_.append({XcbCalls::atom(connection_, target), bytes});
    QCoreApplication::instance()->installNativeEventFilter(this);
}

DragSourceEvents::~DragSourceEvents() { QCoreApplication::instance()->removeNativeEventFilter(this); }

bool DragSourceEvents::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    if (eventType != "xcb_generic_event_t") return false;
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    switch (event->response_type & 0x7f) {
        case XCB_SELECTION_REQUEST:
            return serve(message);
        case XCB_CLIENT_MESSAGE:
            finished(message);
            return false;
        default:
            return false;
    }
}

bool DragSourceEvents::serve(const void* message) {
    const auto* request = static_cast<const xcb_selection_request_event_t*>(message);
    if (request->selection != selection_) return false;
    for (const auto& [target, bytes] : servedAsIs_) {
        if (target != request->target) continue;
        // An old-style requestor names no property: the target's name stands in for it.
        const XcbCalls::Atom property = request->property ? request->property : request->target;
        XcbCalls::setProperty(connection_, request->requestor, property, target, 8, bytes);
        xcb_selection_notify_event_t notify{};
        notify.response_type = XCB_SELECTION_NOTIFY;
        notify.time = request->time;
        notify.requestor = request->requestor;
        notify.selection = request->selection;
        notify.target = request->target;
        notify.property = property;
        xcb_send_event(connection_, 0, request->requestor, XCB_EVENT_MASK_NO_EVENT,
                       reinterpret_cast<const char*>(&notify));
        xcb_flush(connection_);
        return true;
    }
    return false;
}

void DragSourceEvents::finished(const void* message) {
    const auto* client = static_cast<const xcb_client_message_event_t*>(message);
    if (client->type != finishedMessage_ || !onFinished) return;
    Finished result;
    result.target = client->data.data32[0];
    result.accepted = client->data.data32[1] & 1;
    const QByteArray action = XcbCalls::atomName(connection_, client->data.data32[2]);
    result.action = action.startsWith("XdndAction") ? QString::fromLatin1(action.mid(10)).toLower()
                                                    : QStringLiteral("none");
    onFinished(result);
}

}  // namespace mosswick::testpeer
