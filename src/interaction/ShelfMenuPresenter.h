#pragma once

#include <QPoint>
#include <functional>

#include "interaction/MenuContent.h"
#include "interaction/TileMenu.h"

namespace mosswick {

class MenuActions;
class Preferences;
class ShelfStore;

// Pops up the tile menu and the shelf's own menu, each built afresh from the store and the
// preferences, and hands the chosen row to the menu actions.
class ShelfMenuPresenter final : public TileMenu {
public:
    ShelfMenuPresenter(const Preferences& preferences, const ShelfStore& store);

    // The actions exist only once the window controller does, which needs the panel factory
    // that needs this; until they are set a menu still opens but does nothing.
    void setActions(MenuActions* actions) { actions_ = actions; }
    // Whether "Check for Updates…" belongs in the application menu.
    void setHasUpdater(std::function<bool()> hasUpdater) { hasUpdater_ = std::move(hasUpdater); }

    void popUp(const ShelfItem& item, QPoint globalPosition) override;
    void popUpShelfMenu(QPoint globalPosition);
    // What a row with `command` and `argument` would do, asked for by a key rather than a menu.
    void perform(MenuCommand command, const QString& argument);

private:
    void show(const MenuContent& content, QPoint globalPosition);

    const Preferences& preferences_;
    const ShelfStore& store_;
    MenuActions* actions_ = nullptr;
    std::function<bool()> hasUpdater_;
};

}  // namespace mosswick
