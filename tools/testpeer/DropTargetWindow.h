#pragma once

#include <QWidget>
#include <memory>

#include "DropTargetEvents.h"
#include "PeerOptions.h"
#include "ReportFile.h"
#include "SelectionReader.h"

class QMimeData;

namespace mosswick::testpeer {

// Another application's window the user drops on. Each drop is recorded byte for byte as X
// delivered it, next to what Qt makes of it (formats, URLs, text, image), with the action taken;
// a promise is kept in the promise folder when one is given.
class DropTargetWindow : public QWidget {
    Q_OBJECT

public:
    DropTargetWindow(const PeerOptions& options, std::unique_ptr<SelectionReader> reader);

protected:
    void paintEvent(QPaintEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    // False when the drag is to be refused.
    bool choose(QDropEvent* event) const;
    QJsonObject record(const QDropEvent& event);

    const PeerOptions& options_;
    std::unique_ptr<SelectionReader> reader_;
    DropTargetEvents events_;
    ReportFile report_;
    int drops_ = 0;
};

}  // namespace mosswick::testpeer
