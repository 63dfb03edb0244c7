#include "StrutPanel.h"

#include <QGuiApplication>
#include <QPainter>
#include <QScreen>
#include <xcb/xcb.h>

#include "XcbCalls.h"

namespace mosswick::testpeer {

StrutPanel::StrutPanel(const PeerOptions& options) : options_(options) {
    setWindowFlags(Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus);
    const QList<QScreen*> screens = QGuiApplication::screens();
    const QScreen* screen = screens.value(options.screen, QGuiApplication::primaryScreen());
    const QRect area = screen->geometry();
    const int size = options.size;
    QRect strip;
    if (options.edge == u"top")
        strip = QRect(area.left(), area.top(), area.width(), size);
    else if (options.edge == u"left")
        strip = QRect(area.left(), area.top(), size, area.height());
    else if (options.edge == u"right")
        strip = QRect(area.right() + 1 - size, area.top(), size, area.height());
    else
        strip = QRect(area.left(), area.bottom() + 1 - size, area.width(), size);
    setGeometry(strip);
    markAsDock(area, screen->virtualGeometry());
}

void StrutPanel::markAsDock(const QRect& screen, const QRect& root) {
    xcb_connection_t* connection = XcbCalls::qtConnection();
    if (!connection) return;
    const auto window = static_cast<XcbCalls::Window>(winId());
    XcbCalls::setCardinals(connection, window, XcbCalls::atom(connection, "_NET_WM_WINDOW_TYPE"),
                           XCB_ATOM_ATOM, {XcbCalls::atom(connection, "_NET_WM_WINDOW_TYPE_DOCK")});
    // Struts count from the edges of the whole X screen (all monitors), spans in root pixels.
    const auto size = static_cast<uint32_t>(options_.size);
    const auto top = static_cast<uint32_t>(screen.top());
    const auto left = static_cast<uint32_t>(screen.left());
    const auto bottom = static_cast<uint32_t>(root.bottom() - screen.bottom());
    const auto right = static_cast<uint32_t>(root.right() - screen.right());
    const auto x0 = static_cast<uint32_t>(screen.left()), x1 = static_cast<uint32_t>(screen.right());
    const auto y0 = static_cast<uint32_t>(screen.top()), y1 = static_cast<uint32_t>(screen.bottom());
    // left, right, top, bottom, then the start and end of each: left_y, right_y, top_x, bottom_x.
    QList<uint32_t> strut(12, 0);
    auto reserve = [&strut](int side, uint32_t width, uint32_t from, uint32_t to) {
        strut[side] = width;
        strut[4 + 2 * side] = from;
        strut[5 + 2 * side] = to;
    };
    if (options_.edge == u"left")
        reserve(0, left + size, y0, y1);
    else if (options_.edge == u"right")
        reserve(1, right + size, y0, y1);
    else if (options_.edge == u"top")
        reserve(2, top + size, x0, x1);
    else
        reserve(3, bottom + size, x0, x1);
    XcbCalls::setCardinals(connection, window, XcbCalls::atom(connection, "_NET_WM_STRUT_PARTIAL"),
                           XCB_ATOM_CARDINAL, strut);
    XcbCalls::setCardinals(connection, window, XcbCalls::atom(connection, "_NET_WM_STRUT"), XCB_ATOM_CARDINAL,
                           strut.mid(0, 4));
    xcb_flush(connection);
}

void StrutPanel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), QColor(60, 64, 72));
    painter.setPen(Qt::white);
    painter.drawText(rect(), Qt::AlignCenter,
                     options_.label.isEmpty() ? QStringLiteral("panel") : options_.label);
}

}  // namespace mosswick::testpeer
