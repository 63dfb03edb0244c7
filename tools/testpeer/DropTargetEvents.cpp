#include "DropTargetEvents.h"

#include <QCoreApplication>
#include <xcb/xcb.h>

namespace mosswick::testpeer {

DropTargetEvents::DropTargetEvents()
    : connection_(XcbCalls::qtConnection()),
      enter_(XcbCalls::atom(connection_, "XdndEnter")),
      drop_(XcbCalls::atom(connection_, "XdndDrop")),
      typeList_(XcbCalls::atom(connection_, "XdndTypeList")) {
    QCoreApplication::instance()->installNativeEventFilter(this);
}

DropTargetEvents::~DropTargetEvents() { QCoreApplication::instance()->removeNativeEventFilter(this); }

bool DropTargetEvents::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    if (eventType != "xcb_generic_event_t") return false;
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    if ((event->response_type & 0x7f) != XCB_CLIENT_MESSAGE) return false;
    const auto* client = static_cast<const xcb_client_message_event_t*>(message);
    const uint32_t* data = client->data.data32;
    if (client->type == enter_) {
        offer_ = Offer{data[0], {}, 0};
        if (data[1] & 1) {
            if (const auto list = XcbCalls::property(connection_, data[0], typeList_))
                offer_.targets = XcbCalls::cardinals(*list);
        } else {
            for (int i = 2; i < 5; ++i)
                if (data[i]) offer_.targets += data[i];
        }
    } else if (client->type == drop_) {
        offer_.dropTime = data[2];
    }
    return false;  // Qt runs the drop as usual
}

}  // namespace mosswick::testpeer
