#include "platform/x11/X11WorkArea.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

#include "platform/x11/X11Connection.h"

#include <X11/Xlib-xcb.h>
#include <X11/Xlib.h>
#include <xcb/xcb.h>

namespace mosswick {

namespace {

struct FreeReply {
    void operator()(void* reply) const { std::free(reply); }
};
using PropertyReply = std::unique_ptr<xcb_get_property_reply_t, FreeReply>;

enum Side { left, right, top, bottom };

std::vector<quint32> cardinals(const PropertyReply& reply) {
    if (!reply || reply->format != 32) return {};
    const auto* values = static_cast<const quint32*>(xcb_get_property_value(reply.get()));
    return {values, values + xcb_get_property_value_length(reply.get()) / 4};
}

// Whether the closed ranges [a0, a1] and [b0, b1] share a pixel.
bool overlaps(qint64 a0, qint64 a1, qint64 b0, qint64 b1) { return a0 <= b1 && b0 <= a1; }

}  // namespace

QRect X11WorkArea::usableArea(const QRect& monitor, QSize root, const std::vector<Strut>& struts) {
    // Half-open: the first column and row of the monitor, and those just past it.
    const qint64 left0 = monitor.left(), right0 = left0 + monitor.width();
    const qint64 top0 = monitor.top(), bottom0 = top0 + monitor.height();
    qint64 x0 = left0, x1 = right0, y0 = top0, y1 = bottom0;
    for (const Strut& strut : struts) {
        // A side counts where its band spans some of the monitor's rows (or columns) and the band's
        // inner edge falls inside the monitor.
        const auto applies = [&](Side side, qint64 edge, qint64 from, qint64 to) {
            return strut[side] != 0 && edge > from && edge < to &&
                   overlaps(strut[4 + 2 * side], strut[5 + 2 * side], side < top ? top0 : left0,
                            (side < top ? bottom0 : right0) - 1);
        };
        if (const qint64 edge = strut[left]; applies(left, edge, left0, right0)) x0 = std::max(x0, edge);
        if (const qint64 edge = root.width() - qint64(strut[right]); applies(right, edge, left0, right0))
            x1 = std::min(x1, edge);
        if (const qint64 edge = strut[top]; applies(top, edge, top0, bottom0)) y0 = std::max(y0, edge);
        if (const qint64 edge = root.height() - qint64(strut[bottom]); applies(bottom, edge, top0, bottom0))
            y1 = std::min(y1, edge);
    }
    if (x1 <= x0 || y1 <= y0) return monitor;
    return QRect(int(x0), int(y0), int(x1 - x0), int(y1 - y0));
}

X11WorkArea::X11WorkArea(X11Connection& connection) : connection_(connection) {
    X11Atoms& atoms = connection.atoms();
    atoms.intern({"_NET_CLIENT_LIST", "_NET_WM_STRUT_PARTIAL", "_NET_WM_STRUT", "_NET_WM_WINDOW_TYPE",
                  "_NET_WM_WINDOW_TYPE_DOCK"});
    clientList_ = atoms["_NET_CLIENT_LIST"];
    strutPartial_ = atoms["_NET_WM_STRUT_PARTIAL"];
    strut_ = atoms["_NET_WM_STRUT"];
    windowType_ = atoms["_NET_WM_WINDOW_TYPE"];
    dock_ = atoms["_NET_WM_WINDOW_TYPE_DOCK"];
    // Property changes tell of the client list; structure changes of the root's size.
    XSelectInput(connection.display(), connection.rootWindow(), PropertyChangeMask | StructureNotifyMask);
    filterId_ = connection.addEventFilter([this](XEvent& event) { return handleEvent(event); });
    readPanels();
}

X11WorkArea::~X11WorkArea() {
    connection_.removeObserver(filterId_);
    watch({});
    XSelectInput(connection_.display(), connection_.rootWindow(), NoEventMask);
    connection_.flush();
}

std::optional<QRect> X11WorkArea::usableArea(const QRect& monitor) const {
    return usableArea(monitor, root_, struts_);
}

// All the requests go out before the first answer is awaited: one wait for the whole list.
void X11WorkArea::readPanels() {
    xcb_connection_t* c = XGetXCBConnection(connection_.display());
    const auto root = static_cast<xcb_window_t>(connection_.rootWindow());
    const auto geometryCookie = xcb_get_geometry(c, root);
    const PropertyReply list(xcb_get_property_reply(
        c, xcb_get_property(c, 0, root, clientList_, XCB_ATOM_WINDOW, 0, 4096), nullptr));
    std::unique_ptr<xcb_get_geometry_reply_t, FreeReply> geometry(
        xcb_get_geometry_reply(c, geometryCookie, nullptr));
    const QSize rootSize = geometry ? QSize(geometry->width, geometry->height) : root_;

    struct Asked {
        quint32 window;
        xcb_get_property_cookie_t type, partial, whole;
    };
    std::vector<Asked> asked;
    for (const quint32 window : cardinals(list))
        asked.push_back({window, xcb_get_property(c, 0, window, windowType_, XCB_ATOM_ATOM, 0, 16),
                         xcb_get_property(c, 0, window, strutPartial_, XCB_ATOM_CARDINAL, 0, 12),
                         xcb_get_property(c, 0, window, strut_, XCB_ATOM_CARDINAL, 0, 4)});
    std::vector<quint32> panels;
    std::vector<Strut> struts;
    for (const Asked& window : asked) {
        const std::vector<quint32> types =
            cardinals(PropertyReply(xcb_get_property_reply(c, window.type, nullptr)));
        const std::vector<quint32> partial =
            cardinals(PropertyReply(xcb_get_property_reply(c, window.partial, nullptr)));
        const std::vector<quint32> whole =
            cardinals(PropertyReply(xcb_get_property_reply(c, window.whole, nullptr)));
        const bool isDock = std::find(types.begin(), types.end(), dock_) != types.end();
        if (!isDock && partial.empty() && whole.empty()) continue;
        // Watched even without a strut yet: a dock may reserve its space after it is mapped.
        panels.push_back(window.window);
        Strut strut{};
        if (partial.size() >= 12) {
            std::copy_n(partial.begin(), 12, strut.begin());
        } else if (whole.size() >= 4) {
            // The older property reserves each band along the whole edge.
            std::copy_n(whole.begin(), 4, strut.begin());
            strut[5] = strut[7] = quint32(std::max(rootSize.height(), 1) - 1);
            strut[9] = strut[11] = quint32(std::max(rootSize.width(), 1) - 1);
        } else {
            continue;
        }
        struts.push_back(strut);
    }
    watch(panels);
    const bool changed = rootSize != root_ || struts != struts_;
    root_ = rootSize;
    struts_ = std::move(struts);
    if (changed && onChanged) onChanged();
}

void X11WorkArea::watch(const std::vector<quint32>& panels) {
    xcb_connection_t* c = XGetXCBConnection(connection_.display());
    const uint32_t none = XCB_EVENT_MASK_NO_EVENT;
    const uint32_t properties = XCB_EVENT_MASK_PROPERTY_CHANGE;
    for (const quint32 window : panels_)
        if (std::find(panels.begin(), panels.end(), window) == panels.end())
            xcb_change_window_attributes(c, window, XCB_CW_EVENT_MASK, &none);
    for (const quint32 window : panels)
        if (std::find(panels_.begin(), panels_.end(), window) == panels_.end())
            xcb_change_window_attributes(c, window, XCB_CW_EVENT_MASK, &properties);
    panels_ = panels;
    connection_.flush();
}

bool X11WorkArea::handleEvent(XEvent& event) {
    const auto root = static_cast<Window>(connection_.rootWindow());
    if (event.type == PropertyNotify) {
        const XPropertyEvent& change = event.xproperty;
        const bool listChanged = change.window == root && change.atom == clientList_;
        const bool strutChanged =
            change.window != root &&
            (change.atom == strutPartial_ || change.atom == strut_ || change.atom == windowType_) &&
            std::find(panels_.begin(), panels_.end(), change.window) != panels_.end();
        if (listChanged || strutChanged) readPanels();
    } else if (event.type == ConfigureNotify && event.xconfigure.window == root) {
        readPanels();
    }
    return false;  // others may watch the same windows
}

}  // namespace mosswick
