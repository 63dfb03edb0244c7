#include "interaction/TileListView.h"

#include <QResizeEvent>
#include <QScrollBar>
#include <algorithm>

#include "interaction/ShelfAccessibility.h"
#include "interaction/ShelfItemView.h"
#include "interaction/ShelfLayout.h"

namespace mosswick {

namespace {

QRectF between(const QRectF& a, const QRectF& b, double t) {
    return {a.x() + (b.x() - a.x()) * t, a.y() + (b.y() - a.y()) * t, a.width() + (b.width() - a.width()) * t,
            a.height() + (b.height() - a.height()) * t};
}

// A slim bar that stays out of the tiles' way; the arrows and the track are left out.
constexpr const char* kScrollBarStyle = R"(
QScrollBar:vertical { background: transparent; width: 7px; margin: 2px 1px 2px 0px; }
QScrollBar::handle:vertical { background: rgba(128, 128, 128, 110); border-radius: 3px; min-height: 24px; }
QScrollBar::handle:vertical:hover { background: rgba(128, 128, 128, 170); }
QScrollBar::add-line:vertical, QScrollBar::sub-line:vertical { height: 0px; }
QScrollBar::add-page:vertical, QScrollBar::sub-page:vertical { background: none; }
)";

}  // namespace

TileListView::TileListView(ReducedMotion motion, QWidget* parent)
    : QScrollArea(parent), motion_(motion), canvas_(new QWidget) {
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setFocusPolicy(Qt::NoFocus);
    verticalScrollBar()->setStyleSheet(QString::fromLatin1(kScrollBarStyle));
    setWidgetResizable(false);
    // Named before anything asks the accessibility bus about it: the role is chosen once.
    ShelfAccessibility::install();
    canvas_->setObjectName(QLatin1String(ShelfAccessibility::kTileListName));
    canvas_->setAccessibleName(QStringLiteral("Items on the shelf"));
    setWidget(canvas_);
    viewport()->setAutoFillBackground(false);
    canvas_->setAutoFillBackground(false);

    animation_.setStartValue(0.0);
    animation_.setEndValue(spring_.settlingTime());
    animation_.setDuration(static_cast<int>(spring_.settlingTime() * 1000));
    connect(&animation_, &QVariantAnimation::valueChanged, this,
            [this](const QVariant& seconds) { step(spring_.value(seconds.toDouble())); });
    connect(&animation_, &QVariantAnimation::finished, this, &TileListView::settle);
}

TileListView::~TileListView() = default;

ShelfItemView* TileListView::makeTileView() {
    auto* view = new ShelfItemView(motion_, canvas_);
    view->setDragSource(dragSource_);
    return view;
}

void TileListView::setDragSource(DragSource* source) {
    dragSource_ = source;
    for (const Placement& placement : placements_) placement.view->setDragSource(source);
}

void TileListView::setTiles(const std::vector<ShelfTile>& tiles, const std::set<QUuid>& selection,
                            FileCheck check) {
    const double width = viewport()->width();
    QHash<ShelfItemView*, size_t> placed;
    placed.reserve(static_cast<qsizetype>(placements_.size()));
    for (size_t i = 0; i < placements_.size(); ++i) {
        Placement& placement = placements_[i];
        placement.from = placement.view->geometry();
        placement.fromPresence = placement.view->presence();
        placed.insert(placement.view, i);
    }

    QHash<QUuid, ShelfItemView*> kept;
    std::vector<Placement> next;
    next.reserve(tiles.size() + placements_.size());
    for (size_t row = 0; row < tiles.size(); ++row) {
        const ShelfTile& tile = tiles[row];
        const QUuid key = TileDescription::keyOf(tile);
        const QRectF target = ShelfLayout::tileRect(static_cast<int>(row), width);
        ShelfItemView* view = byKey_.take(key);
        if (view) {
            const Placement& old = placements_[placed.value(view)];
            next.push_back({view, old.from, target, old.fromPresence, 1, false});
            // Describing a tile asks the file system; one that did not change keeps its words
            // unless the files are to be looked at again.
            if (check == FileCheck::again || view->tile().items != tile.items)
                view->setTile(tile, TileDescription::of(tile, originCheck_));
        } else {
            view = makeTileView();
            view->setGeometry(target.toRect());
            view->setPresence(0);
            view->show();
            next.push_back({view, target, target, 0, 1, false});
            view->setTile(tile, TileDescription::of(tile, originCheck_));
        }
        view->setSelected(TileDescription::isSelected(tile, selection));
        kept.insert(key, view);
    }
    // What is left was removed from the shelf: it fades where it stands, and takes no more clicks.
    for (Placement& placement : placements_) {
        const bool removedNow = std::find(byKey_.cbegin(), byKey_.cend(), placement.view) != byKey_.cend();
        if (!removedNow && !placement.isLeaving) continue;
        placement.view->setAttribute(Qt::WA_TransparentForMouseEvents);
        placement.view->setHovered(false);
        next.push_back({placement.view, placement.from, placement.from, placement.fromPresence, 0, true});
    }
    byKey_ = std::move(kept);
    placements_ = std::move(next);
    canvas_->resize(static_cast<int>(width),
                    static_cast<int>(ShelfLayout::listHeight(static_cast<int>(tiles.size()))));

    animation_.stop();
    if (motion_.applies() || !isVisible()) {
        settle();
    } else {
        animation_.start();
    }
}

void TileListView::setSelection(const std::set<QUuid>& selection) {
    for (const Placement& placement : placements_) {
        if (!placement.isLeaving)
            placement.view->setSelected(TileDescription::isSelected(placement.view->tile(), selection));
    }
}

void TileListView::setKeyboardFocus(std::optional<QUuid> key) {
    ShelfItemView* focused = key ? byKey_.value(*key) : nullptr;
    for (const Placement& placement : placements_)
        placement.view->setKeyboardFocus(placement.view == focused);
    if (!focused || keyboardFocus_ == key) {
        keyboardFocus_ = key;
        return;
    }
    keyboardFocus_ = key;
    // Where the tile is going, not where a running change has it now; the first and last tiles
    // take the list's padding with them.
    const std::vector<ShelfItemView*> views = tileViews();
    const auto found = std::find(views.begin(), views.end(), focused);
    if (found == views.end()) return;
    if (found == views.begin()) {
        verticalScrollBar()->setValue(verticalScrollBar()->minimum());
    } else if (found + 1 == views.end()) {
        verticalScrollBar()->setValue(verticalScrollBar()->maximum());
    } else {
        const QRect target = placements_[static_cast<size_t>(found - views.begin())].to.toRect();
        ensureVisible(target.center().x(), target.center().y(), 0,
                      static_cast<int>(ShelfLayout::kSlotHeight / 2));
    }
}

std::vector<ShelfItemView*> TileListView::tileViews() const {
    std::vector<ShelfItemView*> views;
    for (const Placement& placement : placements_) {
        if (!placement.isLeaving) views.push_back(placement.view);
    }
    return views;
}

void TileListView::settle() {
    animation_.stop();
    step(1);
    auto leaving = std::stable_partition(placements_.begin(), placements_.end(),
                                         [](const Placement& p) { return !p.isLeaving; });
    // Later, not now: the tile may be the one whose close button is being pressed.
    for (auto it = leaving; it != placements_.end(); ++it) {
        it->view->hide();
        it->view->deleteLater();
    }
    placements_.erase(leaving, placements_.end());
    for (Placement& placement : placements_) {
        placement.from = placement.to;
        placement.fromPresence = placement.toPresence;
    }
}

void TileListView::step(double springValue) {
    // The spring overshoots its rest a little; presence is an opacity and must not.
    const double clamped = std::clamp(springValue, 0.0, 1.0);
    const bool atRest = springValue == 1.0;
    for (const Placement& placement : placements_) {
        // Most tiles of a long list stay where they are; between rests they need no visit.
        if (!atRest && placement.from == placement.to && placement.fromPresence == placement.toPresence)
            continue;
        placement.view->setGeometry(between(placement.from, placement.to, springValue).toRect());
        placement.view->setPresence(placement.fromPresence +
                                    (placement.toPresence - placement.fromPresence) * clamped);
    }
}

void TileListView::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    fitToWidth();
}

void TileListView::fitToWidth() {
    // The width changes with the scroll bar coming and going, often in the middle of a change of
    // the list, which carries on.
    const double width = viewport()->width();
    canvas_->resize(static_cast<int>(width), canvas_->height());
    for (Placement& placement : placements_) {
        placement.from.setWidth(width);
        placement.to.setWidth(width);
    }
    if (!isAnimating()) step(1);
}

}  // namespace mosswick
