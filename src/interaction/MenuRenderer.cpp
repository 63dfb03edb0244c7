#include "interaction/MenuRenderer.h"

#include <QIcon>
#include <QKeySequence>
#include <QMenu>

namespace mosswick {

void fillMenu(QMenu& menu, const MenuContent& content, const std::function<void(const MenuEntry&)>& chosen) {
    menu.clear();
    for (const MenuEntry& entry : content) {
        switch (entry.kind) {
            case MenuEntry::Kind::separator:
                menu.addSeparator();
                break;
            // A section title, which styles draw apart from the rows under it: the rows keep
            // their plain titles for screen readers instead of leading spaces.
            case MenuEntry::Kind::header:
                menu.addSection(entry.title);
                break;
            case MenuEntry::Kind::submenu: {
                QMenu* sub = menu.addMenu(entry.title);
                fillMenu(*sub, entry.submenu, chosen);
                break;
            }
            case MenuEntry::Kind::action: {
                QAction* action = menu.addAction(entry.title);
                action->setEnabled(entry.enabled);
                action->setCheckable(entry.checkable);
                action->setChecked(entry.checked);
                if (!entry.shortcut.isEmpty()) action->setShortcut(QKeySequence(entry.shortcut));
                if (!entry.iconName.isEmpty()) action->setIcon(QIcon::fromTheme(entry.iconName));
                QObject::connect(action, &QAction::triggered, &menu, [entry, chosen] { chosen(entry); });
                break;
            }
        }
    }
}

}  // namespace mosswick
