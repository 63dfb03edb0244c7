#pragma once

#include <QColor>
#include <QObject>
#include <functional>
#include <memory>
#include <optional>

#include "interaction/MenuContent.h"

class QMenu;
class QSystemTrayIcon;

namespace mosswick {

// The tray icon: the way to the shelf's commands, the settings and Quit while the shelf is away.
// Its menu is built afresh each time it is about to open.
class StatusBarController : public QObject {
    Q_OBJECT

public:
    struct Services {
        std::function<MenuContent()> menu;
        std::function<void(const MenuEntry&)> perform;
    };

    explicit StatusBarController(Services services, QObject* parent = nullptr);
    ~StatusBarController() override;

    // Shows or removes the icon; asking twice for the same leaves one icon or none.
    void setVisible(bool visible);
    bool isVisible() const { return trayIcon_ != nullptr; }
    // The colour the running tray draws its icons in, when it says (X11 trays may); the icon is
    // drawn again in it.
    void setTrayTextColor(std::optional<QColor> color);

private:
    void drawIcon();

    Services services_;
    std::optional<QColor> trayTextColor_;
    std::unique_ptr<QMenu> menu_;
    std::unique_ptr<QSystemTrayIcon> trayIcon_;
    bool saidNoTray_ = false;
};

}  // namespace mosswick
