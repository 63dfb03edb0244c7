#include "platform/x11/X11DragSelection.h"

#include "ingest/PasteboardTypes.h"
#include "platform/x11/X11Connection.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/extensions/Xfixes.h>

namespace mosswick {

std::unique_ptr<X11DragSelection> X11DragSelection::create(X11Connection& connection) {
    Display* display = connection.display();
    int eventBase = 0;
    int errorBase = 0;
    int major = 2;
    int minor = 0;
    if (!XFixesQueryExtension(display, &eventBase, &errorBase) ||
        !XFixesQueryVersion(display, &major, &minor) || major < 2)
        return nullptr;
    return std::unique_ptr<X11DragSelection>(new X11DragSelection(connection, eventBase));
}

namespace {

// Interned together before any is looked up, for one wait on the server instead of five.
X11Connection& withAtomsInterned(X11Connection& connection) {
    connection.atoms().intern({"XdndSelection", "TARGETS", "text/uri-list", "INCR", "MOSSWICK_DRAG_TYPES"});
    return connection;
}

}  // namespace

X11DragSelection::X11DragSelection(X11Connection& connection, int xfixesEventBase)
    : connection_(withAtomsInterned(connection)),
      xfixesEventBase_(xfixesEventBase),
      selection_(connection.atom("XdndSelection")),
      targetsAtom_(connection.atom("TARGETS")),
      uriListAtom_(connection.atom(PasteboardTypes::fileList.toLatin1().constData())),
      incrAtom_(connection.atom("INCR")),
      property_(connection.atom("MOSSWICK_DRAG_TYPES")) {
    Display* display = connection.display();
    // Never mapped: it only receives the answers to conversions.
    window_ = XCreateSimpleWindow(display, connection.rootWindow(), -10, -10, 1, 1, 0, 0, 0);
    XSelectInput(display, window_, PropertyChangeMask);
    XFixesSelectSelectionInput(display, connection.rootWindow(), selection_,
                               XFixesSetSelectionOwnerNotifyMask);
    filterId_ = connection.addEventFilter([this](XEvent& event) { return handleEvent(event); });
    connection.flush();
}

X11DragSelection::~X11DragSelection() {
    connection_.removeObserver(filterId_);
    Display* display = connection_.display();
    XFixesSelectSelectionInput(display, connection_.rootWindow(), selection_, 0);
    XDestroyWindow(display, window_);
    connection_.flush();
}

bool X11DragSelection::handleEvent(XEvent& event) {
    if (event.type == xfixesEventBase_ + XFixesSelectionNotify) {
        const auto& notify = reinterpret_cast<XFixesSelectionNotifyEvent&>(event);
        if (notify.selection != selection_) return false;
        ownerChanged(notify.owner, notify.selection_timestamp);
        return true;
    }
    if (event.type == SelectionNotify && event.xselection.requestor == window_) {
        const XSelectionEvent& reply = event.xselection;
        // An answer for an older change, or for a target no longer asked for, is ignored. Qt's
        // sources refuse with no target named (GTK's name the one asked for), so a refusal at the
        // change's time counts as the answer to whatever is pending.
        const bool refusal = reply.property == None && reply.target == None;
        if (reply.selection == selection_ && reply.time == changeTime_ && pendingTarget_ != 0 &&
            (reply.target == pendingTarget_ || refusal))
            replied(pendingTarget_, reply.property);
        return true;
    }
    if (event.type == PropertyNotify && event.xproperty.window == window_) {
        if (draining_ && event.xproperty.atom == property_ && event.xproperty.state == PropertyNewValue)
            drainIncrementalReply();
        return true;
    }
    return false;
}

void X11DragSelection::ownerChanged(quintptr owner, unsigned long time) {
    // A cleared selection puts nothing on the pasteboard.
    if (owner == None) return;
    ++changeCount_;
    changeTime_ = time;
    types_.clear();
    pendingTarget_ = 0;
    if (querying_) convert(targetsAtom_);
    onChange();
}

void X11DragSelection::convert(quintptr target) {
    pendingTarget_ = target;
    // At the change's own time: sources refuse conversions at CurrentTime.
    XConvertSelection(connection_.display(), selection_, target, property_, window_, changeTime_);
    connection_.flush();
}

void X11DragSelection::replied(quintptr target, quintptr property) {
    pendingTarget_ = 0;
    if (target == targetsAtom_) {
        if (property == None)
            convert(uriListAtom_);
        else
            readTargets();
        return;
    }
    // The text/uri-list probe: that the source agreed is all that counts, so the list itself is
    // thrown away unread.
    if (property == None) return;
    Display* display = connection_.display();
    Atom type = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long remaining = 0;
    unsigned char* data = nullptr;
    XGetWindowProperty(display, window_, property_, 0, 0, False, AnyPropertyType, &type, &format, &count,
                       &remaining, &data);
    if (data) XFree(data);
    // A long list comes in pieces, each waiting for the last to be taken; take them all so the
    // source is not left hanging.
    draining_ = type == incrAtom_;
    XDeleteProperty(display, window_, property_);
    connection_.flush();
    types_ = QStringList{PasteboardTypes::fileList};
    onChange();
}

void X11DragSelection::readTargets() {
    Display* display = connection_.display();
    Atom type = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long remaining = 0;
    unsigned char* data = nullptr;
    const int status = XGetWindowProperty(display, window_, property_, 0, 4096, True, AnyPropertyType, &type,
                                          &format, &count, &remaining, &data);
    QStringList types;
    if (status == Success && data && format == 32 && count > 0) {
        // Xlib hands 32-bit items out as longs.
        const auto* atoms = reinterpret_cast<const Atom*>(data);
        QList<quint32> targets;
        for (unsigned long i = 0; i < count; ++i) targets.push_back(static_cast<quint32>(atoms[i]));
        for (const QByteArray& name : connection_.atoms().names(targets))
            if (!name.isEmpty()) types << QString::fromUtf8(name);
    }
    if (data) XFree(data);
    types_ = types;
    onChange();
}

void X11DragSelection::drainIncrementalReply() {
    Display* display = connection_.display();
    Atom type = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long remaining = 0;
    unsigned char* data = nullptr;
    XGetWindowProperty(display, window_, property_, 0, 0, False, AnyPropertyType, &type, &format, &count,
                       &remaining, &data);
    if (data) XFree(data);
    // The empty piece ends the transfer.
    if (remaining == 0) draining_ = false;
    XDeleteProperty(display, window_, property_);
    connection_.flush();
}

}  // namespace mosswick
