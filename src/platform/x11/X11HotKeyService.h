#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "triggers/HotKeyService.h"

union _XEvent;

namespace mosswick {

class X11Connection;

// The global shortcut on X11: a passive grab of the key on the root window, once for each state
// of Caps Lock and Num Lock (otherwise the key goes unseen whenever a lock is on). The connection
// is put in detectable auto-repeat mode, so a held key is one press and one release; a press
// while the key is already down is ignored. A grab the server refuses, in whole or in part
// (another program holds the key), is undone and reported with the X error code as its status.
class X11HotKeyService final : public HotKeyService {
public:
    explicit X11HotKeyService(X11Connection& connection);
    ~X11HotKeyService() override;

    void installHandler(EventHandler events, FailureHandler lateFailures) override;
    Registration registerHotKey(const KeyCombo& combo) override;
    void unregisterHotKey(Handle handle) override;

private:
    struct Grab {
        Handle handle;
        unsigned keycode;
        unsigned modifiers;
        std::vector<unsigned> lockVariants;
    };

    bool handleEvent(_XEvent& event);
    std::vector<unsigned> lockVariants() const;
    unsigned modifierMaskFor(unsigned long keysym, unsigned fallback) const;
    void ungrab(const Grab& grab);

    X11Connection& connection_;
    int filterId_ = 0;
    EventHandler events_;
    std::vector<Grab> grabs_;
    Handle lastHandle_ = 0;
    unsigned numLockMask_ = 0;
    // The grabbed key that is down, if any.
    std::optional<unsigned> keyDown_;
};

}  // namespace mosswick
