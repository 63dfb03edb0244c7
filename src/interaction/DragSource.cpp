#include "interaction/DragSource.h"

#include <QLineF>
#include <algorithm>

#include "interaction/DragTypeOverride.h"
#include "interaction/ShelfLayout.h"
#include "interaction/TileMenu.h"
#include "interaction/Workspace.h"
#include "model/LocalPath.h"
#include "model/Preferences.h"
#include "model/ShelfStore.h"

namespace mosswick {

namespace {

NoWorkspace noWorkspace;
NoTileMenu noTileMenu;
NoDragTypeOverride noTypeOverride;

bool anySelected(const std::vector<ShelfItem>& items, const std::set<QUuid>& selection) {
    return std::any_of(items.begin(), items.end(),
                       [&](const ShelfItem& item) { return selection.count(item.id) > 0; });
}

bool fileAt(const QUrl& url) {
    const auto path = LocalPath::fromUrl(url);
    return path && LocalPath::exists(*path);
}

}  // namespace

DragSource::DragSource(ShelfStore& store, const Preferences& preferences)
    : store_(store),
      preferences_(preferences),
      workspace_(&noWorkspace),
      menu_(&noTileMenu),
      types_(&noTypeOverride) {}

void DragSource::setWorkspace(Workspace* workspace) { workspace_ = workspace ? workspace : &noWorkspace; }

void DragSource::setTileMenu(TileMenu* menu) { menu_ = menu ? menu : &noTileMenu; }

void DragSource::setTypeOverride(DragTypeOverride* types) { types_ = types ? types : &noTypeOverride; }

DragSource::Press DragSource::mouseDown(const ShelfItem& item, QPointF position, const QRectF& tile,
                                        bool extending) {
    pressed_.reset();
    deferred_.reset();
    const std::vector<ShelfItem> members = store_.members(item);
    if (ShelfLayout::closeButtonRect(tile).contains(position)) {
        std::set<QUuid> ids;
        for (const ShelfItem& member : members) ids.insert(member.id);
        store_.remove(ids, true);
        return Press::closed;
    }
    pressed_ = Pressed{item, position};
    if (anySelected(members, store_.selection()))
        deferred_ = extending ? DeferredSelection::deselect : DeferredSelection::collapse;
    else
        store_.toggleSelection(item, extending);
    return Press::pressed;
}

std::optional<DragSource::Drag> DragSource::mouseDragged(QPointF position) {
    if (!pressed_ || QLineF(pressed_->position, position).length() <= kDragDistance) return std::nullopt;
    const ShelfItem item = pressed_->item;
    pressed_.reset();
    deferred_.reset();

    const std::vector<ShelfItem> carried =
        preferences_.combineMultipleFilesToStack() ? store_.dragPayload(item) : store_.members(item);
    Drag drag;
    std::vector<DragPayload::PasteboardItem> offered;
    for (const ShelfItem& candidate : carried) {
        // A promised file still arriving is not there to hand out, whatever lies at its path.
        if (candidate.isPromised) continue;
        auto entry = DragPayload::pasteboardItem(candidate, preferences_.alternateDragData());
        if (!entry) continue;
        offered.push_back(std::move(*entry));
        drag.items.push_back(candidate);
    }
    if (drag.items.empty()) return std::nullopt;
    drag.types = DragPayload::types(offered);
    drag.operations = operations(drag.items);
    draggedItems_ = drag.items;
    types_->offer(drag.types);
    return drag;
}

void DragSource::mouseUp(int clickCount) {
    if (!pressed_) {
        deferred_.reset();
        return;
    }
    const ShelfItem item = pressed_->item;
    pressed_.reset();
    if (deferred_) {
        store_.toggleSelection(item, *deferred_ == DeferredSelection::deselect);
        deferred_.reset();
    }
    if (clickCount == 2) open(item);
}

void DragSource::open(const ShelfItem& item) {
    const std::vector<ShelfItem> members = store_.members(item);
    if (members.size() < 2) {
        if (const auto url = item.dragURL()) workspace_->open(*url);
        return;
    }
    std::vector<QUrl> found;
    for (const ShelfItem& member : members) {
        if (auto origin = member.reachableOriginURL())
            found.push_back(*origin);
        else if (member.stagedURL && fileAt(*member.stagedURL))
            found.push_back(*member.stagedURL);
    }
    if (!found.empty()) workspace_->reveal(found);
}

void DragSource::rightMouseDown(const ShelfItem& item, QPoint globalPosition) {
    if (store_.selection().count(item.id) == 0) store_.toggleSelection(item, false);
    menu_->popUp(item, globalPosition);
}

void DragSource::dragEnded(bool accepted, bool shiftHeld) {
    const std::vector<ShelfItem> dragged = std::exchange(draggedItems_, {});
    if (!accepted || !removesAfterDrop(preferences_.removeItemsWhenDraggedOut(), shiftHeld)) return;
    std::set<QUuid> ids;
    for (const ShelfItem& item : dragged) ids.insert(item.id);
    store_.remove(ids, true);
}

Qt::DropActions DragSource::operations(const std::vector<ShelfItem>& items) {
    const bool allReachable = std::all_of(items.begin(), items.end(), [](const ShelfItem& item) {
        return item.reachableOriginURL().has_value();
    });
    return allReachable ? Qt::CopyAction | Qt::MoveAction : Qt::DropActions(Qt::CopyAction);
}

bool DragSource::removesAfterDrop(bool removeItemsWhenDraggedOut, bool shiftHeld) {
    return removeItemsWhenDraggedOut != shiftHeld;
}

}  // namespace mosswick
