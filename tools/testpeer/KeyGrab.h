#pragma once

#include <QByteArray>

namespace mosswick::testpeer {

// Another program holding a global shortcut: grabs the key named by an X keysym ("F5") on the
// root window with no modifiers, prints "ready" once the server granted it, and keeps it until
// killed. Returns the exit code (1 when the grab was refused or the key is unknown).
int holdKeyGrab(const QByteArray& keysymName);

}  // namespace mosswick::testpeer
