#pragma once

#include <QPointF>
#include <QRectF>
#include <Qt>
#include <optional>
#include <vector>

#include "interaction/DragPayload.h"
#include "model/ShelfItem.h"

namespace mosswick {

class DragTypeOverride;
class Preferences;
class ShelfStore;
class TileMenu;
class Workspace;

// All that the mouse does on a tile, apart from drawing: the close button, selecting with clicks
// and Ctrl-clicks, opening with a double click, the tile's menu, and dragging items out of the
// shelf into other programs. The view hands it the mouse's events in the tile's coordinates
// (logical pixels, so a doubled screen behaves like a plain one) and runs the drag it asks for.
//
// A press runs idle → pressed → either dragging (after more than kDragDistance of movement) →
// idle when the drag ends, or released → idle. A press on an already selected tile leaves the
// selection alone until the release, so that it can still become a drag of the whole selection.
class DragSource {
public:
    static constexpr double kDragDistance = 4.0;

    // What a release does to the selection when a press on a selected tile stayed a click.
    enum class DeferredSelection { collapse, deselect };

    // What a press did.
    enum class Press { closed, pressed };

    // A drag to run: the items it carries, what it offers for them, and the operations allowed.
    struct Drag {
        std::vector<ShelfItem> items;
        DragPayload::Types types;
        Qt::DropActions operations;
    };

    // The workspace, the menu and the type override are not owned, and must outlive this object or be
    // replaced.
    DragSource(ShelfStore& store, const Preferences& preferences);

    void setWorkspace(Workspace* workspace);
    void setTileMenu(TileMenu* menu);
    // Told what each drag offers, to answer for it where Qt would not.
    void setTypeOverride(DragTypeOverride* types);

    // A press of the left button at `position` on the tile `tile` (its bounds) showing `item`;
    // Ctrl (`extending`) adds to the selection or takes out of it.
    Press mouseDown(const ShelfItem& item, QPointF position, const QRectF& tile, bool extending);
    // The pointer moved with the button down. Once it is more than kDragDistance from the press,
    // the press becomes a drag and this gives what to drag, once; nothing when none of the items
    // has a file to hand out.
    std::optional<Drag> mouseDragged(QPointF position);
    // The button came up; `clickCount` is 2 for the release of a double click.
    void mouseUp(int clickCount);
    void rightMouseDown(const ShelfItem& item, QPoint globalPosition);

    // The drag given by mouseDragged ended; `accepted` when a program took the drop, `shiftHeld`
    // as the keyboard was at that moment.
    void dragEnded(bool accepted, bool shiftHeld);

    bool isPressed() const { return pressed_.has_value(); }
    std::optional<DeferredSelection> deferredSelection() const { return deferred_; }
    const std::vector<ShelfItem>& draggedItems() const { return draggedItems_; }

    // The rules, for whoever needs them without a press.
    static Qt::DropActions operations(const std::vector<ShelfItem>& items);
    static bool removesAfterDrop(bool removeItemsWhenDraggedOut, bool shiftHeld);

private:
    struct Pressed {
        ShelfItem item;
        QPointF position;
    };

    void open(const ShelfItem& item);

    ShelfStore& store_;
    const Preferences& preferences_;
    Workspace* workspace_;
    TileMenu* menu_;
    DragTypeOverride* types_;
    std::optional<Pressed> pressed_;
    std::optional<DeferredSelection> deferred_;
    std::vector<ShelfItem> draggedItems_;
};

}  // namespace mosswick
