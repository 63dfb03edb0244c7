#pragma once

#include <QRect>
#include <QSize>
#include <array>
#include <vector>

#include "shelf/MonitorWorkAreas.h"

union _XEvent;

namespace mosswick {

class X11Connection;

// The panels' reservations read from the window manager's client list: each client's
// _NET_WM_STRUT_PARTIAL (or _NET_WM_STRUT), intersected with the monitor asked about. Watches
// the root window (the client list, the root's size) and the panels themselves (their struts)
// for property changes, so nothing is asked of the server until something changes there.
// Main thread only.
class X11WorkArea final : public MonitorWorkAreas {
public:
    // EWMH order: left, right, top, bottom widths from the root's edges, then the first and last
    // row or column each one spans (left, right: rows; top, bottom: columns).
    using Strut = std::array<quint32, 12>;

    explicit X11WorkArea(X11Connection& connection);
    ~X11WorkArea() override;
    X11WorkArea(const X11WorkArea&) = delete;
    X11WorkArea& operator=(const X11WorkArea&) = delete;

    std::optional<QRect> usableArea(const QRect& monitor) const override;

    // What the struts leave of the monitor, the root window being `root` in size. A strut that
    // covers the whole width (or height) of a monitor is another monitor's, as the struts of
    // every monitor count from the edges of the whole root window.
    static QRect usableArea(const QRect& monitor, QSize root, const std::vector<Strut>& struts);

private:
    void readPanels();
    bool handleEvent(_XEvent& event);
    void watch(const std::vector<quint32>& panels);

    X11Connection& connection_;
    int filterId_ = 0;
    quint32 clientList_;
    quint32 strutPartial_;
    quint32 strut_;
    quint32 windowType_;
    quint32 dock_;
    QSize root_;
    std::vector<quint32> panels_;
    std::vector<Strut> struts_;
};

}  // namespace mosswick
