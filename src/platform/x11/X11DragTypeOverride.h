#pragma once

#include <QAbstractNativeEventFilter>

#include "interaction/DragTypeOverride.h"

namespace mosswick {

class X11Atoms;

// Answers the reads of the shelf's drag data that Qt would answer wrongly, on Qt's own
// connection: it sees each request for the drag selection (XdndSelection) before Qt does, and
// writes the answer into the reader's property itself where the rule says so. Bridged to Wayland
// programs, it also lists the drag's types (TARGETS) itself: the compositor asks at its own time,
// which Qt refuses, and would then offer the Wayland program types it cannot read. Main thread only.
class X11DragTypeOverride final : public QAbstractNativeEventFilter, public DragTypeOverride {
public:
    // Does nothing unless Qt runs on xcb. `bridged`: the X server is XWayland, whose compositor
    // hands the shelf's drags to Wayland programs (DragTypeOverride::answer).
    X11DragTypeOverride(X11Atoms& atoms, bool bridged);
    ~X11DragTypeOverride() override;
    X11DragTypeOverride(const X11DragTypeOverride&) = delete;
    X11DragTypeOverride& operator=(const X11DragTypeOverride&) = delete;

    void offer(const DragPayload::Types& types) override { types_ = types; }

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

private:
    void listTargets(const void* request);

    X11Atoms& atoms_;
    bool bridged_;
    quint32 selection_ = 0;
    quint32 mozUrl_ = 0;
    quint32 plainText_ = 0;
    quint32 targets_ = 0;
    DragPayload::Types types_;
};

}  // namespace mosswick
