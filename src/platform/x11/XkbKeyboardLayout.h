#pragma once

#include "triggers/KeyboardLayout.h"

namespace mosswick {

class X11Connection;

// Key names from the X server's current keyboard map through xkbcommon, in the layout group that
// is active. The map is read at each question, so a layout switched since is followed; names are
// only asked for when a shortcut is shown.
class XkbKeyboardLayout final : public KeyboardLayout {
public:
    explicit XkbKeyboardLayout(X11Connection& connection);

    std::optional<QString> character(quint32 evdevCode) const override;
    std::optional<QString> symbolName(quint32 evdevCode) const override;

private:
    // The key's symbol at the first level of the active group, 0 when there is none.
    quint32 keysym(quint32 evdevCode) const;

    X11Connection& connection_;
    bool usable_ = false;
};

}  // namespace mosswick
