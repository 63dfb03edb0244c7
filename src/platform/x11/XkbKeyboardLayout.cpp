#include "platform/x11/XkbKeyboardLayout.h"

#include <memory>

#include "platform/x11/X11Connection.h"

#include <X11/Xlib-xcb.h>
#include <X11/Xlib.h>
#include <xkbcommon/xkbcommon-x11.h>
#include <xkbcommon/xkbcommon.h>

namespace mosswick {

namespace {

template <typename T, void (*Release)(T*)>
struct Releaser {
    void operator()(T* object) const { Release(object); }
};
using Context = std::unique_ptr<xkb_context, Releaser<xkb_context, xkb_context_unref>>;
using Keymap = std::unique_ptr<xkb_keymap, Releaser<xkb_keymap, xkb_keymap_unref>>;
using State = std::unique_ptr<xkb_state, Releaser<xkb_state, xkb_state_unref>>;

constexpr quint32 kEvdevOffset = 8;

}  // namespace

XkbKeyboardLayout::XkbKeyboardLayout(X11Connection& connection) : connection_(connection) {
    usable_ =
        xkb_x11_setup_xkb_extension(XGetXCBConnection(connection.display()), XKB_X11_MIN_MAJOR_XKB_VERSION,
                                    XKB_X11_MIN_MINOR_XKB_VERSION, XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS,
                                    nullptr, nullptr, nullptr, nullptr) == 1;
}

quint32 XkbKeyboardLayout::keysym(quint32 evdevCode) const {
    if (!usable_) return XKB_KEY_NoSymbol;
    xcb_connection_t* xcb = XGetXCBConnection(connection_.display());
    const int32_t device = xkb_x11_get_core_keyboard_device_id(xcb);
    if (device < 0) return XKB_KEY_NoSymbol;
    const Context context(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
    if (!context) return XKB_KEY_NoSymbol;
    const Keymap keymap(
        xkb_x11_keymap_new_from_device(context.get(), xcb, device, XKB_KEYMAP_COMPILE_NO_FLAGS));
    if (!keymap) return XKB_KEY_NoSymbol;
    const State state(xkb_x11_state_new_from_device(keymap.get(), xcb, device));
    const xkb_keycode_t key = evdevCode + kEvdevOffset;
    const xkb_layout_index_t group = state ? xkb_state_key_get_layout(state.get(), key) : 0;
    const xkb_keysym_t* symbols = nullptr;
    const int count = xkb_keymap_key_get_syms_by_level(keymap.get(), key,
                                                       group == XKB_LAYOUT_INVALID ? 0 : group, 0, &symbols);
    return count > 0 ? symbols[0] : XKB_KEY_NoSymbol;
}

std::optional<QString> XkbKeyboardLayout::character(quint32 evdevCode) const {
    const quint32 symbol = keysym(evdevCode);
    const char32_t codePoint = symbol == XKB_KEY_NoSymbol ? 0 : xkb_keysym_to_utf32(symbol);
    if (!codePoint) return std::nullopt;
    return QString::fromUcs4(&codePoint, 1);
}

std::optional<QString> XkbKeyboardLayout::symbolName(quint32 evdevCode) const {
    const quint32 symbol = keysym(evdevCode);
    if (symbol == XKB_KEY_NoSymbol) return std::nullopt;
    char name[64] = {};
    if (xkb_keysym_get_name(symbol, name, sizeof name) <= 0) return std::nullopt;
    return QString::fromUtf8(name);
}

}  // namespace mosswick
