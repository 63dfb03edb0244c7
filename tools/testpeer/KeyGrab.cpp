#include "KeyGrab.h"

#include <cstdio>

#include <X11/Xlib.h>

namespace mosswick::testpeer {

namespace {

bool refused = false;

int noteRefusal(Display*, XErrorEvent* error) {
    if (error->error_code == BadAccess) refused = true;
    return 0;
}

}  // namespace

int holdKeyGrab(const QByteArray& keysymName) {
    Display* display = XOpenDisplay(nullptr);
    if (!display) {
        std::fprintf(stderr, "mosswick-testpeer: cannot connect to the display\n");
        return 1;
    }
    const KeySym keysym = XStringToKeysym(keysymName.constData());
    const KeyCode keycode = keysym == NoSymbol ? 0 : XKeysymToKeycode(display, keysym);
    if (!keycode) {
        std::fprintf(stderr, "mosswick-testpeer: no key \"%s\" on this keyboard\n", keysymName.constData());
        return 1;
    }
    XSetErrorHandler(noteRefusal);
    XGrabKey(display, keycode, 0, DefaultRootWindow(display), False, GrabModeAsync, GrabModeAsync);
    XSync(display, False);
    if (refused) {
        std::fprintf(stderr, "mosswick-testpeer: %s is grabbed by another program\n", keysymName.constData());
        return 1;
    }
    std::printf("ready\n");
    std::fflush(stdout);
    for (;;) {
        XEvent event;
        XNextEvent(display, &event);  // the key's presses come here and go nowhere
    }
}

}  // namespace mosswick::testpeer
