#include "shelf/ShelfContentView.h"

#include <QDropEvent>
#include <QMimeData>
#include <QPainter>

#include "interaction/GlassEffects.h"
#include "interaction/ShelfColors.h"
#include "interaction/ShelfLayout.h"
#include "interaction/ShelfView.h"
#include "model/ShelfStore.h"
#include "shelf/ShelfDropHandler.h"
#include "ingest/PasteboardTypes.h"

namespace mosswick {

namespace {

// The shelf copies what is dropped on it; it never takes the original away from its source.
Qt::DropAction copyIfOffered(const QDropEvent& event) {
    return event.possibleActions().testFlag(Qt::CopyAction) ? Qt::CopyAction : event.proposedAction();
}

}  // namespace

ShelfContentView::ShelfContentView(ShelfStore& store, ReducedMotion motion, QWidget* parent)
    : QWidget(parent), store_(store), shelfView_(new ShelfView(store, motion, this)) {
    setAcceptDrops(true);
}

void ShelfContentView::setTranslucent(bool translucent) {
    if (translucent == isTranslucent_) return;
    isTranslucent_ = translucent;
    update();
}

void ShelfContentView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    GlassEffects::paintPanelBackground(painter, rect(), ShelfLayout::kPanelCornerRadius,
                                       ShelfColors::from(palette()), isTranslucent_);
}

void ShelfContentView::resizeEvent(QResizeEvent*) { shelfView_->setGeometry(rect()); }

void ShelfContentView::dragEnterEvent(QDragEnterEvent* event) {
    if (!event->source() && event->mimeData()) {
        const bool wasVisible = isVisible();
        emit foreignDragEntered(PasteboardTypes::bringsShelfUp(event->mimeData()->formats()));
        // Put away for it: no leave would ever come to end the hover.
        if (wasVisible && !isVisible()) {
            event->ignore();
            return;
        }
    }
    // Tiles dragged out of the shelf are not taken back by it.
    if (event->source() || !event->mimeData() ||
        !PasteboardTypes::takenOnDrop(event->mimeData()->formats())) {
        event->ignore();
        return;
    }
    event->setDropAction(copyIfOffered(*event));
    event->accept();
    setTargeted(true);
}

void ShelfContentView::dragMoveEvent(QDragMoveEvent* event) {
    event->setDropAction(copyIfOffered(*event));
    event->accept();
}

void ShelfContentView::dragLeaveEvent(QDragLeaveEvent*) { setTargeted(false); }

void ShelfContentView::dropEvent(QDropEvent* event) {
    setTargeted(false);
    const DropContext context{event->possibleActions(), event->modifiers(), event->position()};
    const bool taken = dropHandler_ && event->mimeData() && dropHandler_->drop(*event->mimeData(), context);
    if (taken) {
        event->setDropAction(copyIfOffered(*event));
        event->accept();
    } else {
        event->ignore();
    }
}

void ShelfContentView::hideEvent(QHideEvent*) { forgetDrag(); }

void ShelfContentView::setTargeted(bool targeted) {
    if (targeted == isTargeted_) return;
    isTargeted_ = targeted;
    store_.setTargeted(targeted);
    emit targetChanged(targeted);
}

}  // namespace mosswick
