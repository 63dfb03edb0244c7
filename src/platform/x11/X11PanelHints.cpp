#include "platform/x11/X11PanelHints.h"

#include <QByteArray>
#include <QGuiApplication>
#include <QList>
#include <cstdlib>
#include <memory>

#include "platform/x11/X11Atoms.h"

// X11 headers after Qt's: their macros clash with Qt's names.
#include <xcb/xcb.h>

namespace mosswick {

namespace {

constexpr quint32 kAllWorkspaces = 0xFFFFFFFF;

struct FreeReply {
    void operator()(void* reply) const { std::free(reply); }
};
template <typename T>
using Reply = std::unique_ptr<T, FreeReply>;

xcb_connection_t* connection() {
    if (QGuiApplication::platformName() != QLatin1String("xcb")) return nullptr;
    auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

// The index of the X screen whose root the window hangs from; 0 when it cannot be told.
int screenOf(xcb_connection_t* c, xcb_window_t window) {
    Reply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(c, xcb_query_tree(c, window), nullptr));
    if (!tree) return 0;
    int index = 0;
    for (auto it = xcb_setup_roots_iterator(xcb_get_setup(c)); it.rem; xcb_screen_next(&it), ++index) {
        if (it.data->root == tree->root) return index;
    }
    return 0;
}

}  // namespace

void X11PanelHints::keepOffTaskbarOnAllWorkspaces(quintptr window) {
    xcb_connection_t* c = connection();
    if (!c || !window) return;
    const auto id = static_cast<xcb_window_t>(window);
    const xcb_atom_t state = atoms_["_NET_WM_STATE"];

    // Merged with what is there: Qt adds its own states (above others) the same way at map time.
    QList<xcb_atom_t> states;
    Reply<xcb_get_property_reply_t> current(
        xcb_get_property_reply(c, xcb_get_property(c, 0, id, state, XCB_ATOM_ATOM, 0, 64), nullptr));
    if (current && current->format == 32 && current->type == XCB_ATOM_ATOM) {
        const auto* values = static_cast<const xcb_atom_t*>(xcb_get_property_value(current.get()));
        states = QList<xcb_atom_t>(values, values + xcb_get_property_value_length(current.get()) / 4);
    }
    for (const char* wanted : {"_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER"}) {
        const xcb_atom_t a = atoms_[wanted];
        if (a != XCB_ATOM_NONE && !states.contains(a)) states.push_back(a);
    }
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, id, state, XCB_ATOM_ATOM, 32,
                        static_cast<uint32_t>(states.size()), states.constData());
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, id, atoms_["_NET_WM_DESKTOP"], XCB_ATOM_CARDINAL, 32, 1,
                        &kAllWorkspaces);
    xcb_flush(c);
}

bool X11PanelHints::compositorRunning(quintptr window) const {
    xcb_connection_t* c = connection();
    if (!c) return true;
    const QByteArray selection =
        "_NET_WM_CM_S" + QByteArray::number(screenOf(c, static_cast<xcb_window_t>(window)));
    const xcb_atom_t a = atoms_.atom(selection);
    if (a == XCB_ATOM_NONE) return false;
    Reply<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(c, xcb_get_selection_owner(c, a), nullptr));
    return owner && owner->owner != XCB_WINDOW_NONE;
}

bool X11PanelHints::letStandOffScreen(quintptr window) {
    xcb_connection_t* c = connection();
    if (!c || !window) return false;
    // openbox leaves a dock wherever it is moved; any other type it pulls back until a tenth of
    // it shows (a utility window) or onto the screen (a splash).
    const auto id = static_cast<xcb_window_t>(window);
    const xcb_atom_t types[] = {atoms_["_NET_WM_WINDOW_TYPE_DOCK"]};
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, id, atoms_["_NET_WM_WINDOW_TYPE"], XCB_ATOM_ATOM, 32, 1,
                        types);
    // openbox reads a mapped window's type again only when its Motif hints change, and Qt's own
    // rewrite of both (at every change of flags) may have been read before the dock type was
    // written: the hints are written again, unchanged, so the dock type is what it reads last.
    const xcb_atom_t motif = atoms_["_MOTIF_WM_HINTS"];
    Reply<xcb_get_property_reply_t> hints(xcb_get_property_reply(
        c, xcb_get_property(c, 0, id, motif, XCB_GET_PROPERTY_TYPE_ANY, 0, 16), nullptr));
    if (hints && hints->type != XCB_ATOM_NONE) {
        xcb_change_property(
            c, XCB_PROP_MODE_REPLACE, id, motif, hints->type, hints->format,
            static_cast<uint32_t>(xcb_get_property_value_length(hints.get()) / (hints->format / 8)),
            xcb_get_property_value(hints.get()));
    }
    xcb_flush(c);
    return true;
}

void X11PanelHints::giveUpFocus(quintptr window) {
    xcb_connection_t* c = connection();
    if (!c || !window) return;
    Reply<xcb_get_input_focus_reply_t> focus(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr));
    if (!focus || focus->focus != static_cast<xcb_window_t>(window)) return;
    // The window manager sees the focus reach the root and gives it to the window it chooses.
    xcb_set_input_focus(c, XCB_INPUT_FOCUS_POINTER_ROOT, XCB_INPUT_FOCUS_POINTER_ROOT, XCB_CURRENT_TIME);
    xcb_flush(c);
}

}  // namespace mosswick
