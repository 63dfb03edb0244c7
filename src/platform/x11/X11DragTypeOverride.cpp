#include "platform/x11/X11DragTypeOverride.h"

#include <QCoreApplication>
#include <QGuiApplication>

#include "platform/x11/X11Atoms.h"

#include <xcb/xcb.h>

namespace mosswick {

namespace {

xcb_connection_t* qtConnection() {
    auto* x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 ? x11->connection() : nullptr;
}

// Tells the reader its answer is in `property` (none: refused), as a selection owner does.
void notifyRequestor(xcb_connection_t* connection, const xcb_selection_request_event_t& request,
                     xcb_atom_t property) {
    xcb_selection_notify_event_t notify{};
    notify.response_type = XCB_SELECTION_NOTIFY;
    notify.time = request.time;
    notify.requestor = request.requestor;
    notify.selection = request.selection;
    notify.target = request.target;
    notify.property = property;
    xcb_send_event(connection, false, request.requestor, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&notify));
    xcb_flush(connection);
}

}  // namespace

X11DragTypeOverride::X11DragTypeOverride(X11Atoms& atoms, bool bridged) : atoms_(atoms), bridged_(bridged) {
    if (!qtConnection()) return;
    atoms.intern({"XdndSelection", "TARGETS", DragPayload::kMozUrl, DragPayload::kPlainText});
    targets_ = atoms["TARGETS"];
    selection_ = atoms["XdndSelection"];
    mozUrl_ = atoms[DragPayload::kMozUrl];
    plainText_ = atoms[DragPayload::kPlainText];
    if (selection_) QCoreApplication::instance()->installNativeEventFilter(this);
}

X11DragTypeOverride::~X11DragTypeOverride() {
    if (selection_ && QCoreApplication::instance())
        QCoreApplication::instance()->removeNativeEventFilter(this);
}

bool X11DragTypeOverride::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    if (eventType != "xcb_generic_event_t" || types_.empty()) return false;
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    if ((event->response_type & 0x7F) != XCB_SELECTION_REQUEST) return false;
    const auto* request = static_cast<const xcb_selection_request_event_t*>(message);
    if (request->selection != selection_) return false;
    if (bridged_ && request->target == targets_) {
        listTargets(request);
        return true;
    }
    QByteArray target;
    if (request->target == mozUrl_) target = DragPayload::kMozUrl;
    if (request->target == plainText_) target = DragPayload::kPlainText;
    // Named only where it may matter: a name costs a round trip the first time it is asked.
    if (target.isEmpty() && bridged_) target = atoms_.names({request->target}).value(0);
    if (target.isEmpty()) return false;
    const Answer answer = DragTypeOverride::answer(types_, target, bridged_);
    if (answer.kind == Answer::Kind::qtDefault) return false;

    xcb_connection_t* connection = qtConnection();
    // One property write must fit in one request; anything longer is left to Qt.
    const qint64 room = qint64(xcb_get_maximum_request_length(connection)) * 4 - 64;
    if (answer.kind == Answer::Kind::bytes && answer.bytes.size() > room) return false;
    // A reader from before the property was named in the request uses the target's name.
    const xcb_atom_t property = request->property != XCB_NONE ? request->property : request->target;
    if (answer.kind != Answer::Kind::bytes) {
        notifyRequestor(connection, *request, XCB_NONE);
        return true;
    }
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, request->requestor, property, request->target, 8,
                        static_cast<uint32_t>(answer.bytes.size()), answer.bytes.constData());
    notifyRequestor(connection, *request, property);
    return true;
}

void X11DragTypeOverride::listTargets(const void* message) {
    const auto* request = static_cast<const xcb_selection_request_event_t*>(message);
    std::vector<xcb_atom_t> atoms{targets_};
    for (const auto& type : types_)
        if (const quint32 atom = atoms_.atom(type.first.toLatin1())) atoms.push_back(atom);
    xcb_connection_t* connection = qtConnection();
    const xcb_atom_t property = request->property != XCB_NONE ? request->property : request->target;
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, request->requestor, property, XCB_ATOM_ATOM, 32,
                        static_cast<uint32_t>(atoms.size()), atoms.data());
    notifyRequestor(connection, *request, property);
}

}  // namespace mosswick
