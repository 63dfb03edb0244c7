#include "interaction/MenuActions.h"

#include <QLoggingCategory>

#include "interaction/FileClipboard.h"
#include "interaction/Workspace.h"
#include "model/Preferences.h"
#include "model/ShelfStore.h"
#include "shelf/ShelfWindowController.h"

namespace mosswick {
namespace {

const ShelfItem* findItem(const ShelfStore& store, const QString& argument) {
    const std::optional<QUuid> id = parseUuid(argument);
    if (!id) return nullptr;
    for (const ShelfItem& item : store.items())
        if (item.id == *id) return &item;
    return nullptr;
}

void call(const std::function<void()>& action) {
    if (action) action();
}

}  // namespace

MenuActions::MenuActions(Services services) : services_(std::move(services)) {}

void MenuActions::perform(const MenuEntry& entry) {
    if (entry.kind == MenuEntry::Kind::action) perform(entry.command, entry.argument);
}

void MenuActions::perform(MenuCommand command, const QString& argument) {
    switch (command) {
        case MenuCommand::none:
            return;
        case MenuCommand::setPosition:
            return setPosition(argument, true);
        case MenuCommand::setSize:
            return setSize(argument, true);
        case MenuCommand::assignPosition:
            return setPosition(argument, false);
        case MenuCommand::assignSize:
            return setSize(argument, false);
        case MenuCommand::restoreLastRemoved:
            return restoreLastRemoved();
        case MenuCommand::restoreInPlace:
            return services_.store.restoreLastRemoved();
        case MenuCommand::addClipboardContents:
            return call(services_.addClipboardContents);
        case MenuCommand::showSettings:
            return call(services_.showSettings);
        case MenuCommand::checkForUpdates:
            return call(services_.checkForUpdates);
        case MenuCommand::showAbout:
            return call(services_.showAbout);
        case MenuCommand::toggleShelf:
            return services_.controller.toggle();
        case MenuCommand::quit:
            return call(services_.quit);
        case MenuCommand::openItem:
            return openItem(argument);
        case MenuCommand::revealItem:
            return revealItem(argument);
        case MenuCommand::copyItem:
            return copyItem(argument);
        case MenuCommand::removeItem:
            return removeItem(argument);
        case MenuCommand::ungroupItem:
            return ungroupItem(argument);
        case MenuCommand::clearShelf:
            return services_.store.removeAll();
        case MenuCommand::hideShelf:
            return services_.controller.escape();
    }
}

// From the tray the shelf may be away: the preview shows where it will now stand. On the shelf's
// own menu it is already in view and simply moves.
void MenuActions::setPosition(const QString& argument, bool preview) {
    const std::optional<ShelfPosition> position = fromRawValue<ShelfPosition>(argument);
    if (!position) return;
    services_.preferences.setPosition(*position);
    if (preview) services_.controller.previewPlacement();
}

void MenuActions::setSize(const QString& argument, bool preview) {
    const std::optional<ShelfSize> size = fromRawValue<ShelfSize>(argument);
    if (!size) return;
    services_.preferences.setSize(*size);
    if (preview) services_.controller.previewPlacement();
}

void MenuActions::restoreLastRemoved() {
    services_.store.restoreLastRemoved();
    services_.controller.summon();
}

std::vector<QUrl> MenuActions::urls(const QString& argument) const {
    const ShelfItem* clicked = findItem(services_.store, argument);
    if (!clicked) return {};
    std::vector<QUrl> found;
    for (const ShelfItem& member : services_.store.members(*clicked))
        if (std::optional<QUrl> url = member.dragURL()) found.push_back(*url);
    return found;
}

std::set<QUuid> MenuActions::targets(const QUuid& clicked) const {
    const std::set<QUuid>& selection = services_.store.selection();
    if (selection.contains(clicked)) return selection;
    return {clicked};
}

void MenuActions::openItem(const QString& argument) {
    for (const QUrl& url : urls(argument)) services_.workspace.open(url);
}

void MenuActions::revealItem(const QString& argument) {
    const std::vector<QUrl> found = urls(argument);
    if (!found.empty()) services_.workspace.reveal(found);
}

void MenuActions::copyItem(const QString& argument) {
    const ShelfItem* clicked = findItem(services_.store, argument);
    if (!clicked) return;
    const std::set<QUuid> wanted = targets(clicked->id);
    std::vector<QUrl> found;
    for (const ShelfItem& item : services_.store.items())
        if (wanted.contains(item.id))
            if (std::optional<QUrl> url = item.dragURL()) found.push_back(*url);
    // Nothing to copy leaves whatever the user had on the clipboard.
    if (!found.empty()) services_.clipboard.putFiles(found);
}

void MenuActions::removeItem(const QString& argument) {
    const ShelfItem* clicked = findItem(services_.store, argument);
    if (!clicked) return;
    services_.store.remove(targets(clicked->id), true);
}

void MenuActions::ungroupItem(const QString& argument) {
    const ShelfItem* clicked = findItem(services_.store, argument);
    if (!clicked) return;
    const ShelfItem item = *clicked;  // ungrouping rewrites the list the pointer is into
    services_.store.ungroup(item);
}

}  // namespace mosswick
