#pragma once

#include <functional>
#include <optional>

#include "triggers/KeyCombo.h"

namespace mosswick {

// The desktop's facility for one system-wide shortcut: register a combo and get a handle or a
// failure status, unregister by handle, and hear when the key goes down and up. A held key is
// one press and one release. Main thread only.
class HotKeyService {
public:
    using Handle = quint64;
    enum class Event { pressed, released };
    struct Registration {
        std::optional<Handle> handle;
        // The desktop's own failure code when there is no handle; 0 otherwise.
        qint32 status = 0;
    };
    using EventHandler = std::function<void(Event)>;
    // For desktops that answer a registration only later: the handle given out has been refused.
    using FailureHandler = std::function<void(Handle, qint32 status)>;

    // Returned when the combo names a key this desktop cannot grab.
    static constexpr qint32 kKeyUnavailable = -1;

    virtual ~HotKeyService() = default;

    virtual void installHandler(EventHandler events, FailureHandler lateFailures) = 0;
    virtual Registration registerHotKey(const KeyCombo& combo) = 0;
    virtual void unregisterHotKey(Handle handle) = 0;
};

}  // namespace mosswick
