#include "SelectionReader.h"

#include <QDeadlineTimer>
#include <cstdlib>
#include <poll.h>
#include <xcb/xcb.h>

namespace mosswick::testpeer {

std::unique_ptr<SelectionReader> SelectionReader::open() {
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection)) {
        xcb_disconnect(connection);
        return nullptr;
    }
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    const XcbCalls::Window window = xcb_generate_id(connection);
    const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, screen->root, 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    return std::unique_ptr<SelectionReader>(new SelectionReader(connection, window));
}

SelectionReader::SelectionReader(xcb_connection_t* connection, XcbCalls::Window window)
    : connection_(connection), window_(window), property_(XcbCalls::atom(connection, "MOSSWICK_PEER_DATA")) {}

SelectionReader::~SelectionReader() {
    xcb_destroy_window(connection_, window_);
    xcb_disconnect(connection_);
}

bool SelectionReader::waitFor(int type, int state, int timeoutMs, uint32_t* property) {
    QDeadlineTimer deadline(timeoutMs);
    xcb_flush(connection_);
    for (;;) {
        while (xcb_generic_event_t* event = xcb_poll_for_event(connection_)) {
            const int kind = event->response_type & 0x7f;
            bool found = false;
            if (kind == type && type == XCB_SELECTION_NOTIFY) {
                const auto* notify = reinterpret_cast<xcb_selection_notify_event_t*>(event);
                found = notify->requestor == window_;
                if (property) *property = notify->property;
            } else if (kind == type && type == XCB_PROPERTY_NOTIFY) {
                const auto* notify = reinterpret_cast<xcb_property_notify_event_t*>(event);
                found = notify->window == window_ && notify->atom == property_ && notify->state == state;
            }
            std::free(event);
            if (found) return true;
        }
        if (xcb_connection_has_error(connection_)) return false;
        const qint64 left = deadline.remainingTime();
        if (left == 0) return false;
        pollfd readable{xcb_get_file_descriptor(connection_), POLLIN, 0};
        poll(&readable, 1, static_cast<int>(left));
    }
}

std::optional<SelectionReader::Reply> SelectionReader::read(XcbCalls::Atom selection, XcbCalls::Atom target,
                                                            uint32_t time, int timeoutMs) {
    xcb_delete_property(connection_, window_, property_);
    xcb_convert_selection(connection_, window_, selection, target, property_, time);
    uint32_t answered = XCB_ATOM_NONE;
    if (!waitFor(XCB_SELECTION_NOTIFY, 0, timeoutMs, &answered) || answered == XCB_ATOM_NONE)
        return std::nullopt;
    const auto stored = XcbCalls::property(connection_, window_, property_, true);
    if (!stored) return Reply{};
    Reply reply{stored->bytes, atomName(stored->type)};
    if (reply.type == "INCR") {
        auto whole = readIncrementally(timeoutMs);
        if (!whole) return std::nullopt;
        reply.data = *whole;
    }
    return reply;
}

// The owner writes one piece after another, each time we delete the last; an empty piece ends it.
std::optional<QByteArray> SelectionReader::readIncrementally(int timeoutMs) {
    QByteArray whole;
    for (;;) {
        if (!waitFor(XCB_PROPERTY_NOTIFY, XCB_PROPERTY_NEW_VALUE, timeoutMs, nullptr)) return std::nullopt;
        const auto piece = XcbCalls::property(connection_, window_, property_, true);
        if (!piece || piece->bytes.isEmpty()) return whole;
        whole += piece->bytes;
    }
}

std::optional<QList<XcbCalls::Atom>> SelectionReader::targets(XcbCalls::Atom selection, uint32_t time,
                                                              int timeoutMs) {
    const auto reply = read(selection, atom("TARGETS"), time, timeoutMs);
    if (!reply) return std::nullopt;
    XcbCalls::Property list{XCB_ATOM_ATOM, 32, reply->data};
    return XcbCalls::cardinals(list);
}

}  // namespace mosswick::testpeer
