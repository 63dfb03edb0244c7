#include "interaction/DragOutSession.h"

#include <QDrag>
#include <QGuiApplication>
#include <QPointer>
#include <QWidget>

#include "interaction/DragImage.h"
#include "interaction/DragOutMimeData.h"

namespace mosswick {

void DragOutSession::run(QWidget& from, DragSource& source, const DragSource::Drag& drag) {
    QPointer<QWidget> guard(&from);
    auto* qdrag = new QDrag(&from);
    qdrag->setMimeData(new DragOutMimeData(drag.types));
    const QPixmap image = DragImage::of(drag.items, from.devicePixelRatioF());
    qdrag->setPixmap(image);
    qdrag->setHotSpot(QPoint(static_cast<int>(DragImage::kSide / 2), static_cast<int>(DragImage::kSide / 2)));
    // Move is proposed where it is allowed: a file manager then moves the original out of the way.
    const Qt::DropAction result = qdrag->exec(drag.operations);
    const bool shiftHeld = QGuiApplication::queryKeyboardModifiers().testFlag(Qt::ShiftModifier);
    if (guard) qdrag->deleteLater();
    source.dragEnded(result != Qt::IgnoreAction, shiftHeld);
}

}  // namespace mosswick
