#pragma once

#include <QObject>
#include <QRectF>
#include <optional>

#include "shelf/DisplayEnvironment.h"

class QScreen;

namespace mosswick {

// The displays and the pointer as Qt sees them (QScreen's geometry and available geometry,
// QCursor), converted to the shelf's coordinates.
class QtDisplayEnvironment final : public DisplayEnvironment {
public:
    QtDisplayEnvironment();

    std::vector<Display> displays() const override;
    ScreenPoint pointerLocation() const override;

    // The frame of the display under a point given in X root pixels (device pixels), in the same
    // pixels: what the drag monitor measures the screen edge against.
    static std::optional<QRectF> deviceFrameAt(QPointF pixels);

private:
    void watch(QScreen* screen);
    void notify();

    QObject connections_;
};

}  // namespace mosswick
