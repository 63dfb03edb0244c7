#include "interaction/ShelfMenus.h"

#include "model/Preferences.h"
#include "model/ShelfStore.h"

namespace mosswick::ShelfMenus {
namespace {

const QString kProductName = QStringLiteral("Mosswick");

MenuEntry positionEntry(ShelfPosition position, ShelfPosition current, MenuCommand command) {
    MenuEntry entry = MenuEntry::action(title(position), command, rawValue(position));
    entry.checkable = true;
    entry.checked = position == current;
    return entry;
}

MenuEntry sizeEntry(ShelfSize size, ShelfSize current, MenuCommand command) {
    MenuEntry entry = MenuEntry::action(title(size), command, rawValue(size));
    entry.checkable = true;
    entry.checked = size == current;
    return entry;
}

// A tile can be opened, revealed or copied when one of its members has a file to hand over: a
// promise still being written has none yet.
bool isAvailable(const std::vector<ShelfItem>& members) {
    for (const ShelfItem& member : members)
        if (!member.isPromised || member.dragURL()) return true;
    return false;
}

MenuEntry bringBack(const ShelfStore& store, MenuCommand command) {
    MenuEntry entry = MenuEntry::action(QStringLiteral("Bring Back Last Removed Files"), command);
    entry.enabled = !store.removalHistory().empty();
    return entry;
}

MenuEntry addClipboard() {
    return MenuEntry::action(QStringLiteral("Add Clipboard Contents to ") + kProductName,
                             MenuCommand::addClipboardContents);
}

// The shelf's own menu shows no shortcuts; the application menu does.
MenuEntry settings(bool withShortcut) {
    MenuEntry entry = MenuEntry::action(QStringLiteral("Settings…"), MenuCommand::showSettings);
    if (withShortcut) entry.shortcut = QStringLiteral("Ctrl+,");
    return entry;
}

MenuEntry quit(bool withShortcut) {
    MenuEntry entry = MenuEntry::action(QStringLiteral("Quit ") + kProductName, MenuCommand::quit);
    if (withShortcut) entry.shortcut = QStringLiteral("Ctrl+Q");
    return entry;
}

}  // namespace

MenuContent positionMenu(ShelfPosition current) {
    MenuContent menu;
    const auto edge = [&](const QString& header, std::initializer_list<ShelfPosition> positions) {
        menu.push_back(MenuEntry::header(header));
        for (ShelfPosition position : positions) {
            MenuEntry entry = positionEntry(position, current, MenuCommand::setPosition);
            entry.indentation = 1;
            menu.push_back(std::move(entry));
        }
    };
    edge(QStringLiteral("Left Edge of Screen"),
         {ShelfPosition::leftTop, ShelfPosition::leftCenter, ShelfPosition::leftBottom});
    menu.push_back(MenuEntry::separator());
    edge(QStringLiteral("Right Edge of Screen"),
         {ShelfPosition::rightTop, ShelfPosition::rightCenter, ShelfPosition::rightBottom});
    return menu;
}

MenuEntry sizeItem(ShelfSize size, ShelfSize current) {
    return sizeEntry(size, current, MenuCommand::setSize);
}

MenuContent sizeMenu(ShelfSize current) {
    return {sizeItem(ShelfSize::standard, current),         sizeItem(ShelfSize::biggest, current),
            sizeItem(ShelfSize::smallest, current),         MenuEntry::separator(),
            sizeItem(ShelfSize::adaptiveStandard, current), sizeItem(ShelfSize::adaptiveSmallest, current)};
}

MenuContent mainMenu(const Sources& sources) {
    MenuContent menu;
    menu.push_back(
        MenuEntry::sub(QStringLiteral("Window Position"), positionMenu(sources.preferences.position())));
    menu.push_back(MenuEntry::sub(QStringLiteral("Window Size"), sizeMenu(sources.preferences.size())));
    menu.push_back(MenuEntry::separator());
    menu.push_back(bringBack(sources.store, MenuCommand::restoreLastRemoved));
    menu.push_back(addClipboard());
    menu.push_back(MenuEntry::separator());
    MenuEntry about = MenuEntry::action(QStringLiteral("About ") + kProductName, MenuCommand::showAbout);
    about.iconName = QStringLiteral("help-about");
    menu.push_back(std::move(about));
    if (sources.hasUpdater)
        menu.push_back(MenuEntry::action(QStringLiteral("Check for Updates…"), MenuCommand::checkForUpdates));
    menu.push_back(settings(true));
    menu.push_back(MenuEntry::separator());
    menu.push_back(quit(true));
    return menu;
}

MenuContent itemMenu(const Sources& sources, const ShelfItem& item) {
    const std::vector<ShelfItem> members = sources.store.members(item);
    const bool available = isAvailable(members);
    const QString id = uuidString(item.id);
    const auto row = [&](const QString& title, MenuCommand command, bool enabled) {
        MenuEntry entry = MenuEntry::action(title, command, id);
        entry.enabled = enabled;
        return entry;
    };

    MenuContent menu;
    menu.push_back(row(QStringLiteral("Open"), MenuCommand::openItem, available));
    menu.push_back(row(QStringLiteral("Show in Folder"), MenuCommand::revealItem, available));
    menu.push_back(row(QStringLiteral("Copy"), MenuCommand::copyItem, available));
    if (members.size() > 1) menu.push_back(row(QStringLiteral("Ungroup"), MenuCommand::ungroupItem, true));
    menu.push_back(MenuEntry::separator());
    // The title counts the selection even when the click landed outside it and only the clicked
    // tile will go.
    const std::size_t selected = sources.store.selection().size();
    const QString remove =
        selected < 2 ? QStringLiteral("Remove") : QStringLiteral("Remove %1 Items").arg(selected);
    menu.push_back(row(remove, MenuCommand::removeItem, true));
    menu.push_back(MenuEntry::separator());
    menu.push_back(MenuEntry::sub(kProductName, mainMenu(sources)));
    return menu;
}

MenuContent panelMenuContent(const Sources& sources) {
    MenuContent positions;
    for (const auto& position : EnumCases<ShelfPosition>::all)
        positions.push_back(
            positionEntry(position.value, sources.preferences.position(), MenuCommand::assignPosition));
    MenuContent sizes;
    for (const auto& size : EnumCases<ShelfSize>::all)
        sizes.push_back(sizeEntry(size.value, sources.preferences.size(), MenuCommand::assignSize));

    MenuContent menu;
    menu.push_back(bringBack(sources.store, MenuCommand::restoreInPlace));
    menu.push_back(addClipboard());
    menu.push_back(MenuEntry::separator());
    menu.push_back(MenuEntry::sub(QStringLiteral("Window Position"), std::move(positions)));
    menu.push_back(MenuEntry::sub(QStringLiteral("Window Size"), std::move(sizes)));
    menu.push_back(MenuEntry::separator());
    MenuEntry clear = MenuEntry::action(QStringLiteral("Clear the Shelf"), MenuCommand::clearShelf);
    clear.enabled = !sources.store.items().empty();
    menu.push_back(std::move(clear));
    menu.push_back(MenuEntry::action(QStringLiteral("Hide ") + kProductName, MenuCommand::hideShelf));
    menu.push_back(MenuEntry::separator());
    menu.push_back(settings(false));
    menu.push_back(quit(false));
    return menu;
}

}  // namespace mosswick::ShelfMenus
