#include "app/StatusBarController.h"

#include <QApplication>
#include <QLoggingCategory>
#include <QMenu>
#include <QPalette>
#include <QSystemTrayIcon>

#include "app/MenuBarIcon.h"
#include "interaction/MenuRenderer.h"

namespace mosswick {
namespace {
Q_LOGGING_CATEGORY(lcTray, "mosswick.tray")
}

StatusBarController::StatusBarController(Services services, QObject* parent)
    : QObject(parent), services_(std::move(services)) {}

StatusBarController::~StatusBarController() = default;

void StatusBarController::setVisible(bool visible) {
    if (visible == isVisible()) return;
    if (!visible) {
        trayIcon_.reset();
        menu_.reset();
        return;
    }
    // Without a tray the shelf and its shortcut still work; say so once, not at every change.
    if (!QSystemTrayIcon::isSystemTrayAvailable() && !saidNoTray_) {
        saidNoTray_ = true;
        qCInfo(lcTray) << "no system tray on this desktop: the tray icon waits for one to appear";
    }
    menu_ = std::make_unique<QMenu>();
    menu_->setAccessibleName(QStringLiteral("Mosswick"));
    connect(menu_.get(), &QMenu::aboutToShow, this,
            [this] { fillMenu(*menu_, services_.menu(), services_.perform); });
    trayIcon_ = std::make_unique<QSystemTrayIcon>();
    drawIcon();
    trayIcon_->setToolTip(QStringLiteral("Mosswick"));
    trayIcon_->setContextMenu(menu_.get());
    // A left click opens the same menu: the icon has nothing else to do.
    connect(trayIcon_.get(), &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::Trigger && menu_) menu_->popup(QCursor::pos());
            });
    trayIcon_->show();
}

void StatusBarController::setTrayTextColor(std::optional<QColor> color) {
    if (color == trayTextColor_) return;
    trayTextColor_ = color;
    if (trayIcon_) drawIcon();
}

void StatusBarController::drawIcon() {
    const QPalette palette = QApplication::palette();
    trayIcon_->setIcon(MenuBarIcon::icon(MenuBarIcon::colorsFor(
        trayTextColor_, palette.color(QPalette::WindowText), palette.color(QPalette::Window))));
}

}  // namespace mosswick
