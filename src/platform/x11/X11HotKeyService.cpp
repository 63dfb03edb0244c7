#include "platform/x11/X11HotKeyService.h"

#include <QLoggingCategory>
#include <cstdlib>

#include "platform/x11/X11Connection.h"
#include "triggers/EvdevKeyCodes.h"

#include <X11/XKBlib.h>
#include <X11/Xlib-xcb.h>
#include <X11/Xlib.h>
#include <X11/keysym.h>
#include <xcb/xcb.h>

Q_DECLARE_LOGGING_CATEGORY(lcX11)

namespace mosswick {

namespace {

// X keycodes are evdev codes shifted by 8.
constexpr unsigned kEvdevOffset = 8;

}  // namespace

X11HotKeyService::X11HotKeyService(X11Connection& connection) : connection_(connection) {
    Bool supported = False;
    XkbSetDetectableAutoRepeat(connection.display(), True, &supported);
    if (!supported) qCInfo(lcX11) << "no detectable auto-repeat: a held shortcut key repeats";
    filterId_ = connection.addEventFilter([this](XEvent& event) { return handleEvent(event); });
}

X11HotKeyService::~X11HotKeyService() {
    connection_.removeObserver(filterId_);
    for (const Grab& grab : grabs_) ungrab(grab);
    connection_.flush();
}

void X11HotKeyService::installHandler(EventHandler events, FailureHandler) {
    // X11 answers a grab at once, so there are no late failures to report.
    events_ = std::move(events);
}

unsigned X11HotKeyService::modifierMaskFor(unsigned long keysym, unsigned fallback) const {
    Display* display = connection_.display();
    const KeyCode keycode = XKeysymToKeycode(display, keysym);
    XModifierKeymap* map = XGetModifierMapping(display);
    unsigned mask = 0;
    for (int modifier = 0; map && keycode && modifier < 8 && !mask; ++modifier)
        for (int i = 0; i < map->max_keypermod; ++i)
            if (map->modifiermap[modifier * map->max_keypermod + i] == keycode) mask = 1u << modifier;
    if (map) XFreeModifiermap(map);
    return mask ? mask : fallback;
}

std::vector<unsigned> X11HotKeyService::lockVariants() const {
    if (!numLockMask_) return {0, LockMask};
    return {0, LockMask, numLockMask_, LockMask | numLockMask_};
}

HotKeyService::Registration X11HotKeyService::registerHotKey(const KeyCombo& combo) {
    Display* display = connection_.display();
    const std::optional<quint32> evdev = EvdevKeyCodes::toEvdev(combo.keyCode);
    int minKeycode = 0;
    int maxKeycode = 0;
    XDisplayKeycodes(display, &minKeycode, &maxKeycode);
    if (!evdev || *evdev + kEvdevOffset < unsigned(minKeycode) ||
        *evdev + kEvdevOffset > unsigned(maxKeycode))
        return {std::nullopt, kKeyUnavailable};

    // Read again at each registration, in case the keyboard map changed.
    numLockMask_ = modifierMaskFor(XK_Num_Lock, 0);
    unsigned modifiers = 0;
    if (combo.modifierFlags & KeyCombo::kShift) modifiers |= ShiftMask;
    if (combo.modifierFlags & KeyCombo::kControl) modifiers |= ControlMask;
    if (combo.modifierFlags & KeyCombo::kOption) modifiers |= modifierMaskFor(XK_Alt_L, Mod1Mask);
    if (combo.modifierFlags & KeyCombo::kCommand) modifiers |= modifierMaskFor(XK_Super_L, Mod4Mask);
    const Grab grab{++lastHandle_, *evdev + kEvdevOffset, modifiers, lockVariants()};

    // Checked requests through XCB tell which variant the server refused, without swapping the
    // process-wide Xlib error handler.
    xcb_connection_t* xcb = XGetXCBConnection(display);
    std::vector<std::pair<unsigned, xcb_void_cookie_t>> requests;
    for (const unsigned variant : grab.lockVariants)
        requests.emplace_back(variant, xcb_grab_key_checked(xcb, 0, connection_.rootWindow(),
                                                            static_cast<uint16_t>(modifiers | variant),
                                                            static_cast<xcb_keycode_t>(grab.keycode),
                                                            XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    qint32 status = 0;
    std::vector<unsigned> granted;
    for (const auto& [variant, cookie] : requests) {
        if (xcb_generic_error_t* error = xcb_request_check(xcb, cookie)) {
            if (!status) status = error->error_code;
            std::free(error);
        } else {
            granted.push_back(variant);
        }
    }
    if (status) {
        for (const unsigned variant : granted)
            xcb_ungrab_key(xcb, static_cast<xcb_keycode_t>(grab.keycode), connection_.rootWindow(),
                           static_cast<uint16_t>(modifiers | variant));
        xcb_flush(xcb);
        return {std::nullopt, status};
    }
    grabs_.push_back(grab);
    return {grab.handle, 0};
}

void X11HotKeyService::ungrab(const Grab& grab) {
    for (const unsigned variant : grab.lockVariants)
        XUngrabKey(connection_.display(), static_cast<int>(grab.keycode), grab.modifiers | variant,
                   connection_.rootWindow());
}

void X11HotKeyService::unregisterHotKey(Handle handle) {
    for (const Grab& grab : grabs_) {
        if (grab.handle != handle) continue;
        ungrab(grab);
        if (keyDown_ == grab.keycode) keyDown_.reset();
    }
    std::erase_if(grabs_, [handle](const Grab& grab) { return grab.handle == handle; });
    connection_.flush();
}

bool X11HotKeyService::handleEvent(XEvent& event) {
    if (event.type != KeyPress && event.type != KeyRelease) return false;
    const XKeyEvent& key = event.xkey;
    if (event.type == KeyRelease) {
        // While the grabbed key is down the state may read anything: match the key alone.
        if (keyDown_ != key.keycode) return true;
        keyDown_.reset();
        if (events_) events_(Event::released);
        return true;
    }
    const unsigned relevant = ShiftMask | ControlMask | Mod1Mask | Mod2Mask | Mod3Mask | Mod4Mask | Mod5Mask;
    const unsigned state = key.state & relevant & ~(LockMask | numLockMask_);
    for (const Grab& grab : grabs_) {
        if (grab.keycode != key.keycode || grab.modifiers != state) continue;
        // Detectable auto-repeat leaves only presses while a key is held; one is enough.
        if (keyDown_) return true;
        keyDown_ = key.keycode;
        if (events_) events_(Event::pressed);
        return true;
    }
    return true;
}

}  // namespace mosswick
