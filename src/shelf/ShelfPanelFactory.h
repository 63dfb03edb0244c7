#pragma once

#include <functional>
#include <memory>

#include "shelf/ReducedMotion.h"
#include "shelf/ShelfPanelSurface.h"

namespace mosswick {

class DragTypeOverride;
class PanelWindowHints;
class ShelfDropHandler;
class ShelfMenuPresenter;
class ShelfPanel;
class ShelfStore;
class Workspace;

// Makes the shelf's window when the window controller first needs it: the panel over the store,
// its drops handed to the drop handler, wrapped as the surface the controller moves.
class ShelfPanelFactory {
public:
    struct Parts {
        ShelfStore& store;
        ReducedMotion motion;
        PanelWindowHints& hints;
        ShelfDropHandler& drops;
        // Where a double click on a tile opens its items.
        Workspace& workspace;
        // Answers what Qt would get wrong of the drags out of the shelf.
        DragTypeOverride& dragTypes;
        // The tile menu and the shelf's own menu.
        ShelfMenuPresenter& menus;
        // Whether the user chose the classic material; asked as each panel is made.
        std::function<bool()> classicMaterial = {};
    };

    explicit ShelfPanelFactory(Parts parts) : parts_(parts) {}

    std::unique_ptr<ShelfPanelSurface> operator()(const ScreenRect& frame) const;

    // Sees each panel as it is made (benchmarks watch its first frame).
    std::function<void(ShelfPanel&)> onPanelMade;

private:
    Parts parts_;
};

}  // namespace mosswick
