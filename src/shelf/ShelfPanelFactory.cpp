#include "shelf/ShelfPanelFactory.h"

#include "shelf/QtShelfPanelSurface.h"
#include "shelf/ShelfContentView.h"
#include "shelf/ShelfPanel.h"
#include "interaction/DragSource.h"
#include "interaction/ShelfMenuPresenter.h"
#include "interaction/ShelfView.h"

namespace mosswick {

std::unique_ptr<ShelfPanelSurface> ShelfPanelFactory::operator()(const ScreenRect&) const {
    // The controller places the new panel itself before showing it.
    auto* panel = new ShelfPanel(parts_.store, parts_.motion, parts_.hints);
    panel->contentView().setDropHandler(&parts_.drops);
    panel->shelfView().dragSource().setWorkspace(&parts_.workspace);
    panel->shelfView().dragSource().setTypeOverride(&parts_.dragTypes);
    panel->shelfView().dragSource().setTileMenu(&parts_.menus);
    ShelfMenuPresenter* menus = &parts_.menus;
    QObject::connect(&panel->shelfView(), &ShelfView::contextMenuRequested, panel,
                     [menus](QPoint at) { menus->popUpShelfMenu(at); });
    QObject::connect(&panel->shelfView(), &ShelfView::commandRequested, panel,
                     [menus](MenuCommand command, const QString& item) { menus->perform(command, item); });
    if (parts_.classicMaterial) panel->setClassicMaterial(parts_.classicMaterial());
    if (onPanelMade) onPanelMade(*panel);
    return std::make_unique<QtShelfPanelSurface>(panel);
}

}  // namespace mosswick
