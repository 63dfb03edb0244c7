#pragma once

#include "triggers/DesktopSession.h"

namespace mosswick {

// What Mosswick, an X client, can see of another program's drag in a session. On a plain X server
// it sees the left button and the pointer for the whole drag. Through XWayland it sees the drag
// begin (the compositor hands the drag selection to XWayland) but not the button, the pointer or
// the end: the compositor routes no input of a drag over Wayland windows to X clients, and a
// pointer query answers with the last position over an X window, button up.
struct DragSight {
    // The left button is reported while the drag goes on, and the pointer's position is current.
    bool followsPointer = true;
    // The drag's types can be read when it begins. KWin and wlroots answer no request for the
    // drag's selection while no window of ours is active or under the drag, so there they are
    // learnt only when the drag enters one.
    bool readsTypes = true;

    static DragSight of(DesktopSession session) {
        return {!isWayland(session),
                session != DesktopSession::KdeWayland && session != DesktopSession::WlrootsWayland};
    }
};

}  // namespace mosswick
