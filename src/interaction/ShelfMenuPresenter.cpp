#include "interaction/ShelfMenuPresenter.h"

#include <QMenu>

#include "interaction/MenuActions.h"
#include "interaction/MenuRenderer.h"
#include "interaction/ShelfMenus.h"

namespace mosswick {

ShelfMenuPresenter::ShelfMenuPresenter(const Preferences& preferences, const ShelfStore& store)
    : preferences_(preferences), store_(store) {}

void ShelfMenuPresenter::popUp(const ShelfItem& item, QPoint globalPosition) {
    show(ShelfMenus::itemMenu({preferences_, store_, hasUpdater_ && hasUpdater_()}, item), globalPosition);
}

void ShelfMenuPresenter::popUpShelfMenu(QPoint globalPosition) {
    show(ShelfMenus::panelMenuContent({preferences_, store_, hasUpdater_ && hasUpdater_()}), globalPosition);
}

void ShelfMenuPresenter::perform(MenuCommand command, const QString& argument) {
    if (actions_) actions_->perform(command, argument);
}

void ShelfMenuPresenter::show(const MenuContent& content, QPoint globalPosition) {
    // Deleted once closed: a menu is built for one opening only.
    auto* menu = new QMenu;
    menu->setAttribute(Qt::WA_DeleteOnClose);
    fillMenu(*menu, content, [this](const MenuEntry& entry) {
        if (actions_) actions_->perform(entry);
    });
    menu->popup(globalPosition);
}

}  // namespace mosswick
