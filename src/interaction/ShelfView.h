#pragma once

#include <QWidget>
#include <memory>

#include "shelf/ReducedMotion.h"
#include "interaction/TileDescription.h"
#include "interaction/TileListView.h"
#include "model/ShelfTile.h"

class QLabel;

namespace mosswick {

class DragSource;
class DropHighlight;
class EmptyStateView;
class ShelfStore;
class ShelfToolbar;
class TileListView;

// The content of the shelf panel: the toolbar, then the tiles or, on an empty shelf, a hint on
// what to do, and the drop highlight over it all while a drag hovers on the shelf. It keeps no
// state of its own; everything it shows is read from the store when the store changes.
class ShelfView : public QWidget {
    Q_OBJECT

public:
    ShelfView(ShelfStore& store, ReducedMotion motion, QWidget* parent = nullptr);
    ~ShelfView() override;

    // Everything the mouse does on the tiles: selecting, closing, opening, the tile's menu and
    // dragging items out. Give it the desktop's workspace and the tile menu.
    DragSource& dragSource() { return *dragSource_; }

    // Which items show the missing-original badge; asks the file system unless replaced.
    void setOriginCheck(TileDescription::OriginCheck check);
    // Reads the store again, and the file system for originals that went missing meanwhile.
    void refresh();

    ShelfToolbar& toolbar() { return *toolbar_; }
    TileListView& tileList() { return *tiles_; }
    EmptyStateView& emptyState() { return *emptyState_; }
    DropHighlight& dropHighlight() { return *highlight_; }
    // What the shelf tells about itself (it cannot save, its list was rebuilt); a click dismisses it.
    QLabel& notice() { return *notice_; }

signals:
    // A right click on the shelf's background, for the shelf's own menu.
    void contextMenuRequested(QPoint globalPosition);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void itemsChanged(TileListView::FileCheck check = TileListView::FileCheck::changedTilesOnly);
    void placeParts();
    void noticeChanged();

    ShelfStore& store_;
    std::unique_ptr<DragSource> dragSource_;
    ShelfToolbar* toolbar_;
    TileListView* tiles_;
    EmptyStateView* emptyState_;
    DropHighlight* highlight_;
    QLabel* notice_;
};

}  // namespace mosswick
