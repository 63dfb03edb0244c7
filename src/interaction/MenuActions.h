#pragma once

#include <QUrl>
#include <QUuid>
#include <functional>
#include <set>
#include <vector>

#include "interaction/MenuContent.h"

namespace mosswick {

class FileClipboard;
class Preferences;
class ShelfStore;
class ShelfWindowController;
class Workspace;

// What the menus' rows do. A stale item id, a wrong argument or a file that is gone makes an
// action do nothing: a menu may outlive what it was built from.
class MenuActions {
public:
    struct Services {
        Preferences& preferences;
        ShelfStore& store;
        ShelfWindowController& controller;
        Workspace& workspace;
        FileClipboard& clipboard;
        std::function<void()> addClipboardContents;
        std::function<void()> showSettings;
        std::function<void()> showAbout;
        std::function<void()> checkForUpdates;  // empty: nothing can update this installation
        std::function<void()> quit;
    };

    explicit MenuActions(Services services);

    // Carries out the row's command with its argument.
    void perform(const MenuEntry& entry);
    void perform(MenuCommand command, const QString& argument = {});

    void setPosition(const QString& argument, bool preview);
    void setSize(const QString& argument, bool preview);
    void restoreLastRemoved();
    void openItem(const QString& argument);
    void revealItem(const QString& argument);
    void copyItem(const QString& argument);
    void removeItem(const QString& argument);
    void ungroupItem(const QString& argument);

private:
    // The files of the clicked tile's whole stack, not of the selection.
    std::vector<QUrl> urls(const QString& argument) const;
    // The selection when it holds the clicked item, else the clicked item alone.
    std::set<QUuid> targets(const QUuid& clicked) const;

    Services services_;
};

}  // namespace mosswick
