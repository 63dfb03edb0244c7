#pragma once

#include <algorithm>

#include "shelf/ScreenPoint.h"

namespace mosswick {

// A rectangle in the shelf's screen coordinates (see ScreenPoint): (x, y) is its lower-left
// corner. Kept apart from QRectF, whose top() and bottom() would read upside down here.
struct ScreenRect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    double minX() const { return x; }
    double maxX() const { return x + width; }
    double minY() const { return y; }
    double maxY() const { return y + height; }
    ScreenPoint center() const { return {x + width / 2, y + height / 2}; }

    // The minimum edges count as inside and the maximum edges as outside, so a point on the
    // border of two touching displays belongs to exactly one of them.
    bool contains(ScreenPoint p) const {
        return p.x >= minX() && p.x < maxX() && p.y >= minY() && p.y < maxY();
    }

    // Negative amounts grow the rectangle.
    ScreenRect insetBy(double dx, double dy) const {
        return {x + dx, y + dy, width - 2 * dx, height - 2 * dy};
    }
    ScreenRect offsetBy(double dx, double dy) const { return {x + dx, y + dy, width, height}; }

    double intersectionArea(const ScreenRect& other) const {
        const double w = std::min(maxX(), other.maxX()) - std::max(minX(), other.minX());
        const double h = std::min(maxY(), other.maxY()) - std::max(minY(), other.minY());
        return w > 0 && h > 0 ? w * h : 0;
    }

    bool operator==(const ScreenRect&) const = default;
};

}  // namespace mosswick
