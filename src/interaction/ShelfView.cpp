#include "interaction/ShelfView.h"

#include <QLabel>
#include <QMouseEvent>

#include "interaction/DragSource.h"
#include "interaction/DropHighlight.h"
#include "interaction/EmptyStateView.h"
#include "interaction/ShelfFonts.h"
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
    notice_->setWordWrap(true);
    notice_->setAlignment(Qt::AlignCenter);
    notice_->setFont(ShelfFonts::ofPixels(*notice_, 11));
    notice_->setCursor(Qt::PointingHandCursor);
    notice_->setAutoFillBackground(true);
    notice_->setBackgroundRole(QPalette::ToolTipBase);
    notice_->setForegroundRole(QPalette::ToolTipText);
    notice_->installEventFilter(this);
    tiles_->setDragSource(dragSource_.get());

    connect(toolbar_, &ShelfToolbar::bringBackClicked, this, [this] { store_.restoreLastRemoved(); });
    connect(toolbar_, &ShelfToolbar::clearClicked, this, [this] { store_.removeAll(); });
    connect(&store_, &ShelfStore::itemsChanged, this, [this] { itemsChanged(); });
    connect(&store_, &ShelfStore::selectionChanged, this,
            [this] { tiles_->setSelection(store_.selection()); });
    connect(&store_, &ShelfStore::targetedChanged, this, [this] { highlight_->setLit(store_.isTargeted()); });
    connect(&store_, &ShelfStore::noticeChanged, this, &ShelfView::noticeChanged);

    highlight_->raise();
    itemsChanged();
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

void ShelfView::refresh() { itemsChanged(TileListView::FileCheck::again); }

void ShelfView::itemsChanged(TileListView::FileCheck check) {
    const bool isEmpty = store_.items().empty();
    toolbar_->setState(ShelfToolbarState::of(store_), static_cast<qsizetype>(store_.items().size()));
    // Shown before it is filled, so the first tiles grow in rather than just appear.
    emptyState_->setVisible(isEmpty);
    tiles_->setVisible(!isEmpty);
    tiles_->setTiles(ShelfStore::tiles(store_.items()), store_.selection(), check);
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
