#pragma once

#include "interaction/MenuContent.h"
#include "model/PreferenceEnums.h"

namespace mosswick {

class Preferences;
class ShelfStore;
struct ShelfItem;

// The three menus, built fresh from the preferences and the store each time one opens, so titles,
// checkmarks and enabled flags are never stale. No state of their own.
namespace ShelfMenus {

struct Sources {
    const Preferences& preferences;
    const ShelfStore& store;
    bool hasUpdater = false;  // "Check for Updates…" is there only when something can update us
};

// The tray icon's menu, and the last submenu of the tile menu.
MenuContent mainMenu(const Sources& sources);
MenuContent positionMenu(ShelfPosition current);
MenuContent sizeMenu(ShelfSize current);
MenuEntry sizeItem(ShelfSize size, ShelfSize current);
// The menu of a right-clicked tile; `item` is the tile's item that was clicked.
MenuContent itemMenu(const Sources& sources, const ShelfItem& item);
// The menu of the shelf's background.
MenuContent panelMenuContent(const Sources& sources);

}  // namespace ShelfMenus
}  // namespace mosswick
