#include "platform/x11/X11DesktopProbe.h"

#include "platform/x11/X11ActiveApplication.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11DragSelection.h"

#include <X11/Xlib.h>
#include <X11/extensions/XInput2.h>

namespace mosswick {

std::unique_ptr<X11DesktopProbe> X11DesktopProbe::create(X11Connection& connection) {
    Display* display = connection.display();
    int opcode = 0;
    int eventBase = 0;
    int errorBase = 0;
    // 2.1 or later: under 2.0 raw events stop while another client grabs the pointer, and every
    // drag source grabs it for the whole drag.
    int major = 2;
    int minor = 2;
    if (!XQueryExtension(display, "XInputExtension", &opcode, &eventBase, &errorBase) ||
        XIQueryVersion(display, &major, &minor) != Success)
        return nullptr;
    auto selection = X11DragSelection::create(connection);
    if (!selection) return nullptr;
    return std::unique_ptr<X11DesktopProbe>(new X11DesktopProbe(connection, std::move(selection), opcode));
}

X11DesktopProbe::X11DesktopProbe(X11Connection& connection, std::unique_ptr<X11DragSelection> selection,
                                 int xinputOpcode)
    : connection_(connection), selection_(std::move(selection)), xinputOpcode_(xinputOpcode) {
    selection_->onChange = [this] { send(Event::dragPasteboardChanged); };
    filterId_ = connection.addEventFilter([this](XEvent& event) { return handleEvent(event); });
    batchObserverId_ = connection.addBatchObserver([this] {
        if (!moved_) return;
        moved_ = false;
        send(Event::leftMouseDragged);
    });
}

X11DesktopProbe::~X11DesktopProbe() {
    connection_.removeObserver(filterId_);
    connection_.removeObserver(batchObserverId_);
    if (handler_) selectRawEvents(false, false);
}

void X11DesktopProbe::watch(EventHandler handler) {
    handler_ = std::move(handler);
    const bool watching = static_cast<bool>(handler_);
    selection_->setQueryingTypes(watching);
    leftButtonDown_ = false;
    moved_ = false;
    if (watching) {
        unsigned char map[32] = {};
        const int buttons = XGetPointerMapping(connection_.display(), map, sizeof map);
        leftButton_ = 1;
        for (int physical = 0; physical < buttons; ++physical)
            if (map[physical] == 1) leftButton_ = physical + 1;
    }
    selectRawEvents(watching, false);
}

void X11DesktopProbe::selectRawEvents(bool buttons, bool motion) {
    unsigned char mask[XIMaskLen(XI_LASTEVENT)] = {};
    if (buttons) {
        XISetMask(mask, XI_RawButtonPress);
        XISetMask(mask, XI_RawButtonRelease);
    }
    if (motion) XISetMask(mask, XI_RawMotion);
    XIEventMask eventMask{XIAllMasterDevices, sizeof mask, mask};
    XISelectEvents(connection_.display(), connection_.rootWindow(), &eventMask, 1);
    connection_.flush();
}

bool X11DesktopProbe::handleEvent(XEvent& event) {
    if (event.type != GenericEvent || event.xcookie.extension != xinputOpcode_ || !event.xcookie.data)
        return false;
    if (!handler_) return true;
    const auto* raw = static_cast<const XIRawEvent*>(event.xcookie.data);
    switch (raw->evtype) {
        case XI_RawButtonPress:
            if (raw->detail != leftButton_) break;
            leftButtonDown_ = true;
            selectRawEvents(true, true);
            send(Event::leftMouseDown);
            break;
        case XI_RawButtonRelease:
            if (raw->detail != leftButton_) break;
            leftButtonDown_ = false;
            moved_ = false;
            selectRawEvents(true, false);
            send(Event::leftMouseUp);
            break;
        case XI_RawMotion:
            if (leftButtonDown_) moved_ = true;
            break;
        default:
            break;
    }
    return true;
}

void X11DesktopProbe::send(Event event) {
    if (handler_) handler_(event);
}

qint64 X11DesktopProbe::dragChangeCount() { return selection_->changeCount(); }

QStringList X11DesktopProbe::dragTypes() { return selection_->types(); }

unsigned X11DesktopProbe::queryPointer() {
    Window root = None;
    Window child = None;
    int rootX = 0;
    int rootY = 0;
    int windowX = 0;
    int windowY = 0;
    unsigned mask = 0;
    if (!XQueryPointer(connection_.display(), connection_.rootWindow(), &root, &child, &rootX, &rootY,
                       &windowX, &windowY, &mask))
        return 0;
    return mask;
}

bool X11DesktopProbe::isLeftButtonDown() { return queryPointer() & Button1Mask; }

bool X11DesktopProbe::isShiftDown() { return queryPointer() & ShiftMask; }

FrontmostApplication X11DesktopProbe::frontmostApplication() {
    return X11ActiveApplication::frontmost(connection_);
}

}  // namespace mosswick
