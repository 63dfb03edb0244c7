#include "FakeDragSource.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>

namespace mosswick::testing {

FakeDragSource::FakeDragSource(const QByteArray& displayName, Style style, QStringList offered)
    : display_(XOpenDisplay(displayName.constData())), style_(style), offered_(std::move(offered)) {
    if (!display_) return;
    window_ = XCreateSimpleWindow(display_, DefaultRootWindow(display_), 0, 0, 10, 10, 0, 0, 0);
    XSync(display_, False);
}

FakeDragSource::~FakeDragSource() {
    if (!display_) return;
    XDestroyWindow(display_, window_);
    XCloseDisplay(display_);
}

void FakeDragSource::takeSelection() {
    XSetSelectionOwner(display_, XInternAtom(display_, "XdndSelection", False), window_, CurrentTime);
    XFlush(display_);
}

void FakeDragSource::pump() {
    while (XPending(display_)) {
        XEvent event;
        XNextEvent(display_, &event);
        if (event.type != SelectionRequest) continue;
        const XSelectionRequestEvent& request = event.xselectionrequest;
        char* name = XGetAtomName(display_, request.target);
        const QString target = QString::fromUtf8(name);
        XFree(name);
        requests_.push_back({target, request.time});

        XSelectionEvent reply{};
        reply.type = SelectionNotify;
        reply.display = display_;
        reply.requestor = request.requestor;
        reply.selection = request.selection;
        reply.target = request.target;
        reply.time = request.time;
        reply.property = None;
        if (target == QLatin1String("TARGETS") && style_ == Style::answersTargets) {
            std::vector<Atom> atoms;
            for (const QString& type : offered_)
                atoms.push_back(XInternAtom(display_, type.toUtf8().constData(), False));
            XChangeProperty(display_, request.requestor, request.property, XA_ATOM, 32, PropModeReplace,
                            reinterpret_cast<const unsigned char*>(atoms.data()),
                            static_cast<int>(atoms.size()));
            reply.property = request.property;
        } else if (offered_.contains(target) && request.time != CurrentTime) {
            const QByteArray data = "file:///tmp/example.txt\r\n";
            XChangeProperty(display_, request.requestor, request.property, request.target, 8, PropModeReplace,
                            reinterpret_cast<const unsigned char*>(data.constData()),
                            static_cast<int>(data.size()));
            reply.property = request.property;
        }
        // Qt's sources name no target in a refusal, GTK's repeat the one asked for.
        if (reply.property == None && style_ == Style::refusesTargets) reply.target = None;
        XSendEvent(display_, request.requestor, False, NoEventMask, reinterpret_cast<XEvent*>(&reply));
        XFlush(display_);
    }
}

bool FakeDragSource::grabPointer() {
    const int status = XGrabPointer(display_, DefaultRootWindow(display_), False,
                                    ButtonPressMask | ButtonReleaseMask | PointerMotionMask, GrabModeAsync,
                                    GrabModeAsync, None, None, CurrentTime);
    XSync(display_, False);
    return status == GrabSuccess;
}

QStringList FakeDragSource::requestedTargets() const {
    QStringList targets;
    for (const Request& request : requests_) targets << request.target;
    return targets;
}

}  // namespace mosswick::testing
