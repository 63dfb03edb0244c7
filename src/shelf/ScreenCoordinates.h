#pragma once

#include <QPoint>
#include <QPointF>
#include <QRect>
#include <QRectF>

#include "shelf/Display.h"

namespace mosswick {

// Converts between Qt's virtual-desktop coordinates (origin at the top left, y down) and the
// shelf's (origin at the lower left of the main display, y up). Everything the shelf's logic
// measures passes through here once, on its way in or out.
class ScreenCoordinates {
public:
    // `mainDisplay` is the main display's geometry in Qt coordinates.
    explicit ScreenCoordinates(const QRect& mainDisplay);
    // From the primary screen of the running application.
    static ScreenCoordinates current();

    ScreenRect fromQt(const QRectF& rect) const;
    ScreenPoint fromQt(const QPointF& point) const;
    QRectF toQt(const ScreenRect& rect) const;
    QPointF toQt(ScreenPoint point) const;

    // The pointer stands on a whole pixel; its centre is taken, so a pointer on the top row of
    // one display never reads as the bottom edge of the display above it.
    ScreenPoint pointerFromQt(const QPoint& pixel) const;

    Display display(const QRect& geometry, const QRect& availableGeometry) const;

private:
    double left_;
    double bottom_;
};

}  // namespace mosswick
