#pragma once

#include <QString>
#include <vector>

namespace mosswick {

// Every command a menu row can carry. The shelf's own menu has rows of its own where the design
// wants them to act differently from the application menu's (no preview, no summon).
enum class MenuCommand {
    none,
    setPosition,  // argument: a position's raw value; previews the new placement
    setSize,      // argument: a size's raw value; previews the new placement
    restoreLastRemoved,
    addClipboardContents,
    showSettings,
    checkForUpdates,
    showAbout,
    toggleShelf,
    quit,
    openItem,  // argument: the clicked item's id, as are the four below
    revealItem,
    copyItem,
    ungroupItem,
    removeItem,
    assignPosition,  // the shelf's menu: the position only
    assignSize,      // the shelf's menu: the size only
    restoreInPlace,  // the shelf's menu: the shelf is already up
    clearShelf,
    hideShelf,
};

// One row of a menu, as plain data: tests read it without a display, and one view renders it.
struct MenuEntry {
    enum class Kind { action, separator, header, submenu };

    Kind kind = Kind::action;
    QString title;
    MenuCommand command = MenuCommand::none;
    QString argument;  // the row's represented object
    bool enabled = true;
    bool checkable = false;
    bool checked = false;
    int indentation = 0;
    QString shortcut;  // portable QKeySequence text
    QString iconName;  // a freedesktop icon name
    std::vector<MenuEntry> submenu;

    static MenuEntry separator() { return MenuEntry{.kind = Kind::separator}; }
    static MenuEntry header(const QString& title) {
        return MenuEntry{.kind = Kind::header, .title = title, .enabled = false};
    }
    static MenuEntry action(const QString& title, MenuCommand command, const QString& argument = {}) {
        return MenuEntry{.kind = Kind::action, .title = title, .command = command, .argument = argument};
    }
    static MenuEntry sub(const QString& title, std::vector<MenuEntry> entries) {
        return MenuEntry{.kind = Kind::submenu, .title = title, .submenu = std::move(entries)};
    }
};

using MenuContent = std::vector<MenuEntry>;

}  // namespace mosswick
