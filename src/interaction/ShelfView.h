#pragma once

#include <QWidget>
#include <memory>

#include "shelf/ReducedMotion.h"
#include "interaction/MenuContent.h"
#include "interaction/ShelfKeys.h"
#include "interaction/TileDescription.h"
#include "interaction/TileListView.h"
#include "model/Scheduler.h"
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
// state of its own; everything it shows is read from the store when the store changes, at most
// once a frame: a burst of changes (a big drop's copies, a restore's findings) is one update.
class ShelfView : public QWidget {
    Q_OBJECT

public:
    // How long the tiles may lag behind a change of the store: one frame.
    static constexpr double kTileUpdateDelay = 1.0 / 60;

    ShelfView(ShelfStore& store, ReducedMotion motion, QWidget* parent = nullptr);
    ~ShelfView() override;

    // Everything the mouse does on the tiles: selecting, closing, opening, the tile's menu and
    // dragging items out. Give it the desktop's workspace and the tile menu.
    DragSource& dragSource() { return *dragSource_; }

    // Which items show the missing-original badge; asks the file system unless replaced.
    void setOriginCheck(TileDescription::OriginCheck check);
    // Reads the store again, and the file system for originals that went missing meanwhile.
    void refresh();
    // Brings the tiles up to date now when a change of the store waits for the next frame.
    void updateTilesNow();

    ShelfToolbar& toolbar() { return *toolbar_; }
    TileListView& tileList() { return *tiles_; }
    EmptyStateView& emptyState() { return *emptyState_; }
    DropHighlight& dropHighlight() { return *highlight_; }
    // What the shelf tells about itself (it cannot save, its list was rebuilt); a click dismisses it.
    QLabel& notice() { return *notice_; }

signals:
    // A right click on the shelf's background, or the menu key with nothing selected, for the
    // shelf's own menu.
    void contextMenuRequested(QPoint globalPosition);
    // A key asked for what the tile menu's row `command` does for the item `itemID` (as its
    // represented object).
    void commandRequested(MenuCommand command, const QString& itemID);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void itemsChanged();
    void updateTiles(TileListView::FileCheck check);
    void placeParts();
    void noticeChanged();
    void selectionChanged();
    bool perform(ShelfKeys::Command command);
    // The keyboard's place in the current list, if it still stands on a tile of it; else the
    // first selected tile.
    std::optional<ShelfKeys::Cursor> cursor(const std::vector<ShelfTile>& tiles) const;
    void setCursor(const std::vector<ShelfTile>& tiles, std::optional<ShelfKeys::Cursor> cursor);
    // Puts the keyboard (and the selection) on the tile `key`, if it is still there.
    void landOn(const std::optional<QUuid>& key);
    void showKeyboardFocus();

    ShelfStore& store_;
    std::unique_ptr<DragSource> dragSource_;
    ShelfToolbar* toolbar_;
    TileListView* tiles_;
    EmptyStateView* emptyState_;
    DropHighlight* highlight_;
    QLabel* notice_;
    // The tiles the keyboard stands on and extends from, by their keys: rows shift as items come.
    std::optional<QUuid> cursorKey_;
    std::optional<QUuid> anchorKey_;
    // The update of the tiles waiting for the next frame.
    ScheduledTask tileUpdate_;
};

}  // namespace mosswick
