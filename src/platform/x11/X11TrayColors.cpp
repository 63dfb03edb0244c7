#include "platform/x11/X11TrayColors.h"

#include "platform/x11/X11Connection.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/extensions/Xfixes.h>

namespace mosswick {

namespace {

std::optional<QColor> readTextColor(Display* display, Window manager, Atom colors) {
    Atom type = None;
    int format = 0;
    unsigned long count = 0, after = 0;
    unsigned char* data = nullptr;
    // A manager that quits meanwhile leaves a BadWindow, which the connection's error handler
    // absorbs; the property then reads as absent.
    const int status = XGetWindowProperty(display, manager, colors, 0, 12, False, XA_CARDINAL, &type, &format,
                                          &count, &after, &data);
    std::optional<QColor> color;
    // Four colours (normal, error, warning, success) of three 16-bit channels; Xlib hands 32-bit
    // items over as longs.
    if (status == Success && data && format == 32 && count >= 3) {
        const auto* channels = reinterpret_cast<const unsigned long*>(data);
        color = QColor::fromRgba64(quint16(channels[0]), quint16(channels[1]), quint16(channels[2]));
    }
    if (data) XFree(data);
    return color;
}

}  // namespace

X11TrayColors::X11TrayColors(X11Connection& connection, Changed changed)
    : connection_(connection), changed_(std::move(changed)) {
    Display* display = connection.display();
    const QByteArray name = "_NET_SYSTEM_TRAY_S" + QByteArray::number(DefaultScreen(display));
    selection_ = connection.atom(name.constData());
    colorsAtom_ = connection.atom("_NET_SYSTEM_TRAY_COLORS");
    int errorBase = 0;
    if (XFixesQueryExtension(display, &xfixesEventBase_, &errorBase))
        XFixesSelectSelectionInput(display, connection.rootWindow(), selection_,
                                   XFixesSetSelectionOwnerNotifyMask |
                                       XFixesSelectionWindowDestroyNotifyMask |
                                       XFixesSelectionClientCloseNotifyMask);
    else
        xfixesEventBase_ = -1;
    filterId_ = connection.addEventFilter([this](XEvent& event) { return handleEvent(event); });
    readManager();
}

X11TrayColors::~X11TrayColors() {
    connection_.removeObserver(filterId_);
    if (xfixesEventBase_ >= 0)
        XFixesSelectSelectionInput(connection_.display(), connection_.rootWindow(), selection_, 0);
    if (manager_ != None) XSelectInput(connection_.display(), manager_, NoEventMask);
    connection_.flush();
}

void X11TrayColors::readManager() {
    Display* display = connection_.display();
    if (manager_ != None) XSelectInput(display, manager_, NoEventMask);
    manager_ = XGetSelectionOwner(display, selection_);
    // Our own interest in the manager's properties, so a theme change there reaches us.
    if (manager_ != None) XSelectInput(display, manager_, PropertyChangeMask);
    textColor_ = manager_ == None ? std::nullopt : readTextColor(display, manager_, colorsAtom_);
    connection_.flush();
}

bool X11TrayColors::handleEvent(XEvent& event) {
    if (xfixesEventBase_ >= 0 && event.type == xfixesEventBase_ + XFixesSelectionNotify) {
        const auto& notify = reinterpret_cast<XFixesSelectionNotifyEvent&>(event);
        if (notify.selection != selection_) return false;
        readManager();
        if (changed_) changed_(textColor_);
        return true;
    }
    if (event.type == PropertyNotify && event.xproperty.window == manager_ && manager_ != None &&
        event.xproperty.atom == colorsAtom_) {
        textColor_ = readTextColor(connection_.display(), manager_, colorsAtom_);
        if (changed_) changed_(textColor_);
        return true;
    }
    return false;
}

}  // namespace mosswick
