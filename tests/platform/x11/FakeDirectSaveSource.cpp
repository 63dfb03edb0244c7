#include "FakeDirectSaveSource.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>

namespace mosswick::testing {

namespace {
constexpr qsizetype kPieceSize = 64 * 1024;
}

FakeDirectSaveSource::FakeDirectSaveSource(const QByteArray& displayName, Answer answer,
                                           const QByteArray& proposedName)
    : display_(XOpenDisplay(displayName.constData())), answer_(answer) {
    if (!display_) return;
    window_ = XCreateSimpleWindow(display_, DefaultRootWindow(display_), 0, 0, 10, 10, 0, 0, 0);
    XSelectInput(display_, window_, PropertyChangeMask);
    XChangeProperty(display_, window_, atom("XdndDirectSave0"), atom("text/plain"), 8, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(proposedName.constData()),
                    static_cast<int>(proposedName.size()));
    XSync(display_, False);
}

FakeDirectSaveSource::~FakeDirectSaveSource() {
    if (!display_) return;
    if (window_) XDestroyWindow(display_, window_);
    XCloseDisplay(display_);
}

unsigned long FakeDirectSaveSource::atom(const char* name) const {
    return XInternAtom(display_, name, False);
}

quint32 FakeDirectSaveSource::startDrag() {
    XSetSelectionOwner(display_, atom("XdndSelection"), window_, CurrentTime);
    // A property change tells the server's time, later than the ownership.
    XChangeProperty(display_, window_, atom("MOSSWICK_TEST_CLOCK"), XA_STRING, 8, PropModeAppend, nullptr, 0);
    XEvent event;
    do {
        XWindowEvent(display_, window_, PropertyChangeMask, &event);
    } while (event.xproperty.atom != atom("MOSSWICK_TEST_CLOCK"));
    return static_cast<quint32>(event.xproperty.time);
}

void FakeDirectSaveSource::vanish() {
    XDestroyWindow(display_, window_);
    window_ = 0;
    XSync(display_, False);
}

void FakeDirectSaveSource::pump() {
    while (XPending(display_)) {
        XEvent event;
        XNextEvent(display_, &event);
        if (event.type == PropertyNotify && event.xproperty.window == pieceWindow_ &&
            event.xproperty.atom == pieceProperty_ && event.xproperty.state == PropertyDelete) {
            sendNextPiece();
            continue;
        }
        if (event.type != SelectionRequest) continue;
        const XSelectionRequestEvent& request = event.xselectionrequest;
        if (request.target == atom("XdndDirectSave0")) {
            answerDirectSave(&request);
        } else if (request.target == atom("application/octet-stream")) {
            answerData(&request);
        }
    }
    XFlush(display_);
}

void FakeDirectSaveSource::answerDirectSave(const void* raw) {
    const auto& request = *static_cast<const XSelectionRequestEvent*>(raw);
    requestTime_ = request.time;
    if (answer_ == Answer::neverAnswers) return;

    const char* letter = answer_ == Answer::fails ? "F" : answer_ == Answer::saves ? "S" : "E";
    XChangeProperty(display_, request.requestor, request.property, XA_STRING, 8, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(letter), 1);
    XSelectionEvent reply{};
    reply.type = SelectionNotify;
    reply.requestor = request.requestor;
    reply.selection = request.selection;
    reply.target = request.target;
    reply.property = request.property;
    reply.time = request.time;
    XSendEvent(display_, request.requestor, False, NoEventMask, reinterpret_cast<XEvent*>(&reply));
}

void FakeDirectSaveSource::answerData(const void* raw) {
    const auto& request = *static_cast<const XSelectionRequestEvent*>(raw);
    XSelectionEvent reply{};
    reply.type = SelectionNotify;
    reply.requestor = request.requestor;
    reply.selection = request.selection;
    reply.target = request.target;
    reply.time = request.time;
    reply.property = None;
    if (!data_.isEmpty() && answer_ != Answer::neverAnswers) {
        reply.property = request.property;
        if (data_.size() <= kPieceSize) {
            XChangeProperty(display_, request.requestor, request.property, request.target, 8, PropModeReplace,
                            reinterpret_cast<const unsigned char*>(data_.constData()),
                            static_cast<int>(data_.size()));
        } else {
            // Too large for one go: INCR, then one piece each time the receiver took the last.
            XSelectInput(display_, request.requestor, PropertyChangeMask);
            const long size = static_cast<long>(data_.size());
            XChangeProperty(display_, request.requestor, request.property, atom("INCR"), 32, PropModeReplace,
                            reinterpret_cast<const unsigned char*>(&size), 1);
            pieceWindow_ = request.requestor;
            pieceProperty_ = request.property;
            sent_ = 0;
        }
    }
    XSendEvent(display_, request.requestor, False, NoEventMask, reinterpret_cast<XEvent*>(&reply));
}

void FakeDirectSaveSource::sendNextPiece() {
    if (sent_ < 0) return;
    const QByteArray piece = data_.mid(sent_, kPieceSize);
    XChangeProperty(display_, pieceWindow_, pieceProperty_, atom("application/octet-stream"), 8,
                    PropModeReplace, reinterpret_cast<const unsigned char*>(piece.constData()),
                    static_cast<int>(piece.size()));
    // The empty piece ends it.
    sent_ = piece.isEmpty() ? -1 : sent_ + piece.size();
}

}  // namespace mosswick::testing
