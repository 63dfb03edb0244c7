#include "interaction/DragOutSession.h"

#include <QCoreApplication>
#include <QDrag>
#include <QEvent>
#include <QGuiApplication>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include "interaction/DragImage.h"
#include "interaction/DragOutMimeData.h"

namespace mosswick {

namespace {

// Qt lets go of a drag as soon as it sends the drop, but the target reads the data only then, and
// a file manager that asks the user what to do reads it seconds later. Qt answers those reads
// from the drag object for as long as it lives: this keeps each one alive for a while (as long as
// Qt keeps its record of the drop) instead of letting Qt delete it at once.
class DragKeeper final : public QObject {
public:
    static constexpr int kKeepMilliseconds = 10 * 60 * 1000;

    void keep(QDrag* drag) {
        drag->installEventFilter(this);
        QTimer::singleShot(kKeepMilliseconds, drag, [this, drag] {
            drag->removeEventFilter(this);
            drag->deleteLater();
        });
    }

protected:
    bool eventFilter(QObject*, QEvent* event) override { return event->type() == QEvent::DeferredDelete; }
};

DragKeeper& keeper() {
    static auto* made = new DragKeeper;
    return *made;
}

}  // namespace

void DragOutSession::run(QWidget& from, DragSource& source, const DragSource::Drag& drag) {
    // Owned by the application, not the tile: the tile leaves when its items are dragged away.
    auto* qdrag = new QDrag(QCoreApplication::instance());
    keeper().keep(qdrag);
    qdrag->setMimeData(new DragOutMimeData(drag.types));
    qdrag->setPixmap(DragImage::of(drag.items, from.devicePixelRatioF()));
    qdrag->setHotSpot(QPoint(static_cast<int>(DragImage::kSide / 2), static_cast<int>(DragImage::kSide / 2)));
    // Move is proposed where it is allowed: a file manager then moves the original out of the way.
    const Qt::DropAction result = qdrag->exec(drag.operations);
    // As the keyboard was at the release that dropped (the last input event Qt handled), not as it
    // is by now: a quick hand lets go of Shift right after the button.
    const bool shiftHeld = QGuiApplication::keyboardModifiers().testFlag(Qt::ShiftModifier);
    source.dragEnded(result != Qt::IgnoreAction, shiftHeld);
}

}  // namespace mosswick
