#pragma once

#include <QAbstractNativeEventFilter>
#include <QList>

#include "XcbCalls.h"

namespace mosswick::testpeer {

// What an incoming drag offers as X sends it, before Qt renames it: the source window, the
// targets in the source's order (from XdndEnter, or XdndTypeList when there are more than three)
// and the drop's timestamp, which a target must use to read the data.
class DropTargetEvents : public QAbstractNativeEventFilter {
public:
    struct Offer {
        XcbCalls::Window source = 0;
        QList<XcbCalls::Atom> targets;
        uint32_t dropTime = 0;
    };

    DropTargetEvents();
    ~DropTargetEvents() override;

    const Offer& offer() const { return offer_; }

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

private:
    xcb_connection_t* connection_;
    XcbCalls::Atom enter_;
    XcbCalls::Atom drop_;
    XcbCalls::Atom typeList_;
    Offer offer_;
};

}  // namespace mosswick::testpeer
