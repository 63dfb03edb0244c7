#pragma once

#include <QWidget>

#include "PeerOptions.h"

namespace mosswick::testpeer {

// A panel along one edge of a screen that reserves its strip (a dock window with
// _NET_WM_STRUT_PARTIAL), so the window manager's work area is smaller than the screen.
class StrutPanel : public QWidget {
    Q_OBJECT

public:
    explicit StrutPanel(const PeerOptions& options);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    // Before the window is mapped, so the window manager sees a dock from the start.
    void markAsDock(const QRect& screen, const QRect& root);

    const PeerOptions& options_;
};

}  // namespace mosswick::testpeer
