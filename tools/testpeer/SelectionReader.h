#pragma once

#include <QByteArray>
#include <QList>
#include <memory>
#include <optional>

#include "XcbCalls.h"

namespace mosswick::testpeer {

// Reads X selections byte for byte on a connection of its own, with a window of its own to
// receive them. Qt's drop data cannot do this: it renames targets (text/x-moz-url reads as
// text/uri-list) and re-encodes text. Large transfers (INCR) are followed to the end.
class SelectionReader {
public:
    struct Reply {
        QByteArray data;
        QByteArray type;  // the type the owner gave its answer
    };

    // Null when the display cannot be reached.
    static std::unique_ptr<SelectionReader> open();
    ~SelectionReader();
    SelectionReader(const SelectionReader&) = delete;
    SelectionReader& operator=(const SelectionReader&) = delete;

    xcb_connection_t* connection() const { return connection_; }
    XcbCalls::Atom atom(const QByteArray& name) const { return XcbCalls::atom(connection_, name); }
    QByteArray atomName(XcbCalls::Atom atom) const { return XcbCalls::atomName(connection_, atom); }

    // The selection's contents as `target`; nothing when the owner refused or did not answer in
    // time. `time` 0 is CurrentTime.
    std::optional<Reply> read(XcbCalls::Atom selection, XcbCalls::Atom target, uint32_t time, int timeoutMs);
    // The owner's list of targets (its answer to TARGETS).
    std::optional<QList<XcbCalls::Atom>> targets(XcbCalls::Atom selection, uint32_t time, int timeoutMs);

private:
    SelectionReader(xcb_connection_t* connection, XcbCalls::Window window);
    // The next event of `type` (and for PropertyNotify, on our property with `state`).
    bool waitFor(int type, int state, int timeoutMs, uint32_t* property);
    std::optional<QByteArray> readIncrementally(int timeoutMs);

    xcb_connection_t* connection_;
    XcbCalls::Window window_;
    XcbCalls::Atom property_;
};

}  // namespace mosswick::testpeer
