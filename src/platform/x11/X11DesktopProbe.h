#pragma once

#include <memory>

#include "triggers/DesktopProbe.h"

union _XEvent;

namespace mosswick {

class X11Connection;
class X11DragSelection;

// The drag monitor's view of an X11 desktop: the left button from XInput 2 raw events on the
// root window (they arrive even while a drag source holds the pointer), the drag pasteboard from
// X11DragSelection, button and Shift state from the server. Pointer motion is only listened to
// while the left button is down, and a burst of it is handed on as one event. The pointer is in
// root-window pixels.
class X11DesktopProbe final : public DesktopProbe {
public:
    // Null when the server lacks XFixes or XInput 2.
    static std::unique_ptr<X11DesktopProbe> create(X11Connection& connection);
    ~X11DesktopProbe() override;

    void watch(EventHandler handler) override;
    qint64 dragChangeCount() override;
    QStringList dragTypes() override;
    bool isLeftButtonDown() override;
    bool isShiftDown() override;
    FrontmostApplication frontmostApplication() override;

private:
    X11DesktopProbe(X11Connection& connection, std::unique_ptr<X11DragSelection> selection, int xinputOpcode);
    bool handleEvent(_XEvent& event);
    void selectRawEvents(bool buttons, bool motion);
    void send(Event event);
    unsigned queryPointer();

    X11Connection& connection_;
    std::unique_ptr<X11DragSelection> selection_;
    int xinputOpcode_;
    int filterId_ = 0;
    int batchObserverId_ = 0;
    EventHandler handler_;
    bool leftButtonDown_ = false;
    bool moved_ = false;
    // Physical button number of the logical left button (swapped for left-handed use).
    int leftButton_ = 1;
};

}  // namespace mosswick
