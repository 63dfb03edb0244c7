#pragma once

#include <QAbstractNativeEventFilter>
#include <QByteArray>
#include <QList>
#include <QString>
#include <functional>
#include <utility>

#include "XcbCalls.h"

namespace mosswick::testpeer {

// The X events of a drag that Qt keeps to itself. It answers requests for targets Qt would
// rewrite (Qt serves text/x-moz-url from text/uri-list, without the title) with the payload's own
// bytes, and tells when the target reports the drop finished, with the action it took.
class DragSourceEvents : public QAbstractNativeEventFilter {
public:
    struct Finished {
        bool accepted = false;
        QString action;  // "copy", "move", "link", "ask", "private" or "none"
        XcbCalls::Window target = 0;
    };

    explicit DragSourceEvents(const QList<std::pair<QByteArray, QByteArray>>& servedAsIs);
    ~DragSourceEvents() override;

    std::function<void(const Finished&)> onFinished;

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

private:
    bool serve(const void* request);
    void finished(const void* message);

    xcb_connection_t* connection_;
    XcbCalls::Atom selection_;
    XcbCalls::Atom finishedMessage_;
    QList<std::pair<XcbCalls::Atom, QByteArray>> servedAsIs_;
};

}  // namespace mosswick::testpeer
