#pragma once

#include <QPoint>
#include <QTimer>
#include <QWidget>
#include <optional>

#include "DirectSavePromise.h"
#include "DragSourceEvents.h"
#include "Payload.h"
#include "PeerOptions.h"
#include "ReportFile.h"

namespace mosswick::testpeer {

// Another application's window the user drags something out of: a press and a move past the
// drag distance start a drag with the payload. Once the target says it is finished (or there was
// no target) the drag is reported: the action Qt's drag returned and the one the target took.
class DragSourceWindow : public QWidget {
    Q_OBJECT

public:
    DragSourceWindow(const PeerOptions& options, Payload payload);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void startDrag();
    void report();

    const PeerOptions& options_;
    Payload payload_;
    std::optional<DirectSavePromise> promise_;
    DragSourceEvents events_;
    ReportFile report_;
    QTimer finishWait_;
    std::optional<QPoint> pressedAt_;
    std::optional<DragSourceEvents::Finished> finished_;
    Qt::DropAction dragResult_ = Qt::IgnoreAction;
    bool dragging_ = false;
    bool inExec_ = false;
};

}  // namespace mosswick::testpeer
