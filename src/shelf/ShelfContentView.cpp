#include "shelf/ShelfContentView.h"

#include <QDropEvent>
#include <QLoggingCategory>
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

Q_LOGGING_CATEGORY(lcShelfDrop, "mosswick.shelf.drop")

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
        forgotten_ = false;
        emit foreignDragEntered(PasteboardTypes::bringsShelfUp(event->mimeData()->formats()));
        // Put away for it (withdrawn or parked): no leave would ever come to end the hover, and
        // nothing of it is to be read.
        if (forgotten_) {
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
    if (readsDataOnEnter_) keepEnteredData(*event->mimeData());
    event->setDropAction(copyIfOffered(*event));
    event->accept();
    setTargeted(true);
}

void ShelfContentView::keepEnteredData(const QMimeData& offered) {
    // A file drag's URI list is all that is needed of it; each other type costs a round trip to
    // the source while the pointer waits.
    const QStringList formats = offered.formats();
    QStringList wanted;
    if (const auto uris = PasteboardTypes::find(formats, QStringLiteral("text/uri-list")))
        wanted = {*uris};
    else
        for (const QString& format : formats)
            if (PasteboardTypes::takenOnDrop({format})) wanted.append(format);
    enteredData_ = std::make_unique<QMimeData>();
    for (const QString& format : wanted) {
        const QByteArray bytes = offered.data(format);
        if (!bytes.isEmpty()) enteredData_->setData(format, bytes);
    }
    qCDebug(lcShelfDrop) << "read on enter:" << enteredData_->formats() << "of" << formats;
}

void ShelfContentView::dragMoveEvent(QDragMoveEvent* event) {
    event->setDropAction(copyIfOffered(*event));
    event->accept();
}

void ShelfContentView::dragLeaveEvent(QDragLeaveEvent*) {
    setTargeted(false);
    enteredData_.reset();
}

void ShelfContentView::dropEvent(QDropEvent* event) {
    setTargeted(false);
    const DropContext context{event->possibleActions(), event->modifiers(), event->position()};
    // Read as it entered, the drag's data is what the drop hands on: at the drop it may be gone.
    const std::unique_ptr<QMimeData> entered = std::move(enteredData_);
    const QMimeData* offered = entered ? entered.get() : event->mimeData();
    if (entered && entered->formats().isEmpty()) {
        // Refused, the source keeps what it offered.
        qCWarning(lcShelfDrop) << "drop refused: nothing of the drag could be read as it entered";
        offered = nullptr;
    }
    const bool taken = dropHandler_ && offered && dropHandler_->drop(*offered, context);
    if (taken) {
        event->setDropAction(copyIfOffered(*event));
        event->accept();
    } else {
        event->ignore();
    }
}

void ShelfContentView::hideEvent(QHideEvent*) {
    forgetDrag();
    enteredData_.reset();
}

void ShelfContentView::setTargeted(bool targeted) {
    if (targeted == isTargeted_) return;
    isTargeted_ = targeted;
    store_.setTargeted(targeted);
    emit targetChanged(targeted);
}

}  // namespace mosswick
