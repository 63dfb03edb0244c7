#include "interaction/ShelfView.h"

#include <QKeyEvent>
#include <QLabel>
#include <algorithm>
#include <QMouseEvent>

#include "interaction/DragSource.h"
#include "interaction/DropHighlight.h"
#include "interaction/EmptyStateView.h"
#include "interaction/ShelfAccessibility.h"
#include "interaction/ShelfFonts.h"
#include "interaction/ShelfItemView.h"
#include "interaction/ShelfLayout.h"
#include "interaction/ShelfNotice.h"
#include "interaction/ShelfToolbar.h"
#include "interaction/ShelfToolbarState.h"
#include "interaction/TileListView.h"
#include "model/ShelfStore.h"

namespace mosswick {

ShelfView::ShelfView(ShelfStore& store, ReducedMotion motion, QWidget* parent)
    : QWidget(parent),
      store_(store),
      dragSource_(std::make_unique<DragSource>(store, store.preferences())),
      toolbar_(new ShelfToolbar(motion, this)),
      tiles_(new TileListView(motion, this)),
      emptyState_(new EmptyStateView(this)),
      highlight_(new DropHighlight(motion, this)),
      notice_(new QLabel(this)) {
    ShelfAccessibility::install();
    notice_->setWordWrap(true);
    notice_->setAlignment(Qt::AlignCenter);
    notice_->setFont(ShelfFonts::ofPixels(*notice_, 11));
    notice_->setCursor(Qt::PointingHandCursor);
    notice_->setAutoFillBackground(true);
    notice_->setBackgroundRole(QPalette::ToolTipBase);
    notice_->setForegroundRole(QPalette::ToolTipText);
    notice_->installEventFilter(this);
    tiles_->setDragSource(dragSource_.get());
    // Clicked or tabbed to, never on showing: the panel takes no focus from the program the user
    // drags from until it is clicked.
    setFocusPolicy(Qt::StrongFocus);

    connect(toolbar_, &ShelfToolbar::bringBackClicked, this, [this] { store_.restoreLastRemoved(); });
    connect(toolbar_, &ShelfToolbar::clearClicked, this, [this] { store_.removeAll(); });
    connect(&store_, &ShelfStore::itemsChanged, this, [this] { itemsChanged(); });
    connect(&store_, &ShelfStore::selectionChanged, this, &ShelfView::selectionChanged);
    connect(&store_, &ShelfStore::targetedChanged, this, [this] { highlight_->setLit(store_.isTargeted()); });
    connect(&store_, &ShelfStore::noticeChanged, this, &ShelfView::noticeChanged);

    highlight_->raise();
    updateTiles(TileListView::FileCheck::changedTilesOnly);
    noticeChanged();
    highlight_->setLit(store_.isTargeted());
}

ShelfView::~ShelfView() = default;

void ShelfView::noticeChanged() {
    const QString text = ShelfNotice::text(store_.notice(), store_.noticeDetail());
    notice_->setText(text);
    notice_->setAccessibleName(text);
    notice_->setVisible(!text.isEmpty());
    placeParts();
}

bool ShelfView::eventFilter(QObject* watched, QEvent* event) {
    if (watched == notice_ && event->type() == QEvent::MouseButtonRelease) {
        store_.dismissNotice();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void ShelfView::setOriginCheck(TileDescription::OriginCheck check) {
    tiles_->setOriginCheck(std::move(check));
    refresh();
}

void ShelfView::refresh() { updateTiles(TileListView::FileCheck::again); }

void ShelfView::itemsChanged() {
    if (tileUpdate_.isPending()) return;
    tileUpdate_ = store_.scheduler().after(
        kTileUpdateDelay, [this] { updateTiles(TileListView::FileCheck::changedTilesOnly); });
}

void ShelfView::updateTilesNow() {
    if (tileUpdate_.isPending()) updateTiles(TileListView::FileCheck::changedTilesOnly);
}

void ShelfView::updateTiles(TileListView::FileCheck check) {
    tileUpdate_.cancel();
    const bool isEmpty = store_.items().empty();
    toolbar_->setState(ShelfToolbarState::of(store_), static_cast<qsizetype>(store_.items().size()));
    // Shown before it is filled, so the first tiles grow in rather than just appear.
    emptyState_->setVisible(isEmpty);
    tiles_->setVisible(!isEmpty);
    tiles_->setTiles(ShelfStore::tiles(store_.items()), store_.selection(), check);
    showKeyboardFocus();
}

void ShelfView::selectionChanged() {
    // The keyboard and the selection act on the tiles as the store has them now.
    updateTilesNow();
    tiles_->setSelection(store_.selection());
    // A click moved the selection away from where the keyboard stood: the keyboard follows it.
    if (cursorKey_) {
        const auto views = tiles_->tileViews();
        const bool stillSelected = std::any_of(views.begin(), views.end(), [this](const ShelfItemView* view) {
            return view->description().key == *cursorKey_ && view->isSelected();
        });
        if (!stillSelected) {
            cursorKey_.reset();
            anchorKey_.reset();
        }
    }
    showKeyboardFocus();
}

std::optional<ShelfKeys::Cursor> ShelfView::cursor(const std::vector<ShelfTile>& tiles) const {
    auto rowOf = [&](const std::optional<QUuid>& key) -> std::optional<int> {
        if (!key) return std::nullopt;
        for (size_t row = 0; row < tiles.size(); ++row) {
            if (TileDescription::keyOf(tiles[row]) == *key) return static_cast<int>(row);
        }
        return std::nullopt;
    };
    const auto current = rowOf(cursorKey_);
    if (current) return ShelfKeys::Cursor{*current, rowOf(anchorKey_).value_or(*current)};
    if (const auto first = ShelfKeys::firstSelectedRow(tiles, store_.selection()))
        return ShelfKeys::Cursor{*first, *first};
    return std::nullopt;
}

void ShelfView::setCursor(const std::vector<ShelfTile>& tiles, std::optional<ShelfKeys::Cursor> cursor) {
    if (!cursor) {
        cursorKey_.reset();
        anchorKey_.reset();
        return;
    }
    cursorKey_ = TileDescription::keyOf(tiles[static_cast<size_t>(cursor->current)]);
    anchorKey_ = TileDescription::keyOf(tiles[static_cast<size_t>(cursor->anchor)]);
}

void ShelfView::landOn(const std::optional<QUuid>& key) {
    const std::vector<ShelfTile> tiles = ShelfStore::tiles(store_.items());
    std::optional<ShelfKeys::Cursor> at;
    for (size_t row = 0; key && row < tiles.size(); ++row)
        if (TileDescription::keyOf(tiles[row]) == *key) at = ShelfKeys::Cursor{int(row), int(row)};
    setCursor(tiles, at);
    // Only once the removal has happened: a removal nobody carried out keeps its selection.
    if (at && store_.selection().empty()) store_.setSelection(ShelfKeys::selection(tiles, *at));
    showKeyboardFocus();
}

void ShelfView::showKeyboardFocus() {
    std::optional<QUuid> focused;
    if (hasFocus()) {
        const auto at = cursor(ShelfStore::tiles(store_.items()));
        if (at)
            focused =
                TileDescription::keyOf(ShelfStore::tiles(store_.items())[static_cast<size_t>(at->current)]);
    }
    tiles_->setKeyboardFocus(focused);
}

void ShelfView::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    showKeyboardFocus();
}

void ShelfView::focusOutEvent(QFocusEvent* event) {
    QWidget::focusOutEvent(event);
    showKeyboardFocus();
}

void ShelfView::keyPressEvent(QKeyEvent* event) {
    if (!perform(ShelfKeys::command(event->key(), event->modifiers()))) QWidget::keyPressEvent(event);
}

bool ShelfView::perform(ShelfKeys::Command command) {
    using Command = ShelfKeys::Command;
    updateTilesNow();
    const std::vector<ShelfTile> tiles = ShelfStore::tiles(store_.items());
    const auto at = cursor(tiles);
    // The tile the keyboard stands on, when it is selected: what the tile menu would be opened on.
    const ShelfTile* current =
        at && TileDescription::isSelected(tiles[static_cast<size_t>(at->current)], store_.selection())
            ? &tiles[static_cast<size_t>(at->current)]
            : nullptr;
    auto onCurrent = [&](MenuCommand menuCommand) {
        if (current) emit commandRequested(menuCommand, current->first().id.toString(QUuid::WithoutBraces));
    };
    switch (command) {
        case Command::none:
            return false;
        case Command::moveUp:
        case Command::moveDown:
        case Command::extendUp:
        case Command::extendDown: {
            const int delta = command == Command::moveUp || command == Command::extendUp ? -1 : 1;
            const bool extend = command == Command::extendUp || command == Command::extendDown;
            const auto next = ShelfKeys::step(static_cast<int>(tiles.size()), at, delta, extend);
            setCursor(tiles, next);
            if (next) store_.setSelection(ShelfKeys::selection(tiles, *next));
            showKeyboardFocus();
            return true;
        }
        case Command::selectAll:
            if (!at && !tiles.empty()) setCursor(tiles, ShelfKeys::Cursor{0, 0});
            store_.setSelection(ShelfKeys::all(tiles));
            showKeyboardFocus();
            return true;
        case Command::open:
            onCurrent(MenuCommand::openItem);
            return true;
        case Command::copy:
            onCurrent(MenuCommand::copyItem);
            return true;
        case Command::remove: {
            if (!current) return true;
            const auto next = ShelfKeys::rowAfterRemovingSelection(tiles, store_.selection(), at->current);
            const std::optional<QUuid> nextKey =
                next ? std::optional(TileDescription::keyOf(tiles[static_cast<size_t>(*next)]))
                     : std::nullopt;
            onCurrent(MenuCommand::removeItem);
            landOn(nextKey);
            return true;
        }
        case Command::restoreLastRemoved:
            store_.restoreLastRemoved();
            return true;
        case Command::showMenu:
            if (current) {
                const ShelfItemView* view = tiles_->tileView(TileDescription::keyOf(*current));
                const QPoint where =
                    view ? view->mapToGlobal(view->rect().center()) : mapToGlobal(rect().center());
                dragSource_->rightMouseDown(current->first(), where);
            } else {
                emit contextMenuRequested(mapToGlobal(rect().center()));
            }
            return true;
    }
    return false;
}

void ShelfView::resizeEvent(QResizeEvent*) { placeParts(); }

void ShelfView::placeParts() {
    const int inset = static_cast<int>(ShelfLayout::kContentInset);
    const int toolbarHeight = static_cast<int>(ShelfLayout::kToolbarHeight);
    const QRect content = rect().adjusted(inset, inset, -inset, -inset);
    toolbar_->setGeometry(content.x(), content.y(), content.width(), toolbarHeight);
    QRect below = content.adjusted(0, toolbarHeight, 0, 0);
    if (notice_->isVisible()) {
        const int height = notice_->heightForWidth(below.width()) + 8;
        notice_->setGeometry(below.x(), below.bottom() - height + 1, below.width(), height);
        below.setBottom(below.bottom() - height);
    }
    tiles_->setGeometry(below);
    emptyState_->setGeometry(below);
    highlight_->setGeometry(content);
}

void ShelfView::mousePressEvent(QMouseEvent* event) {
    event->accept();
    if (event->button() == Qt::LeftButton) {
        store_.setSelection({});
    } else if (event->button() == Qt::RightButton) {
        emit contextMenuRequested(event->globalPosition().toPoint());
    }
}

void ShelfView::showEvent(QShowEvent*) {
    // A shelf that was away may hold items whose originals were moved or deleted meanwhile.
    refresh();
}

}  // namespace mosswick
