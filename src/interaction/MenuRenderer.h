#pragma once

#include <functional>

#include "interaction/MenuContent.h"

class QMenu;

namespace mosswick {

// The one place menu data becomes a Qt menu. `chosen` receives the row the user picked.
void fillMenu(QMenu& menu, const MenuContent& content, const std::function<void(const MenuEntry&)>& chosen);

}  // namespace mosswick
