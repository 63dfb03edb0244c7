#include "shelf/WindowPlacement.h"

#include <QtGlobal>
#include <algorithm>
#include <array>
#include <cmath>

namespace mosswick {

namespace {

using M = WindowPlacement::Metrics;

constexpr std::array<double, 6> kVerticalFactors = {0, 0.5, 1, 0, 0.5, 1};

double squaredDistance(const ScreenRect& frame, ScreenPoint p) {
    const double dx =
        frame.minX() - p.x > 0 ? frame.minX() - p.x : (p.x - frame.maxX() > 0 ? p.x - frame.maxX() : 0);
    const double dy =
        frame.minY() - p.y > 0 ? frame.minY() - p.y : (p.y - frame.maxY() > 0 ? p.y - frame.maxY() : 0);
    return dx * dx + dy * dy;
}

}  // namespace

std::optional<Display> WindowPlacement::screen(const std::vector<Display>& displays, ScreenPoint point) {
    for (const Display& display : displays)
        if (display.frame.contains(point)) return display;
    return std::nullopt;
}

Display WindowPlacement::nearestScreen(const std::vector<Display>& displays, ScreenPoint point) {
    if (displays.empty()) qFatal("Mosswick: no display to place the shelf on");
    Display best = displays.front();
    for (size_t i = 1; i < displays.size(); ++i) {
        if (squaredDistance(displays[i].frame, point) < squaredDistance(best.frame, point))
            best = displays[i];
    }
    return best;
}

Display WindowPlacement::pointerScreen(const std::vector<Display>& displays, ScreenPoint pointer) {
    if (auto display = screen(displays, pointer)) return *display;
    return nearestScreen(displays, pointer);
}

std::optional<Display> WindowPlacement::screenHolding(const std::vector<Display>& displays,
                                                      const ScreenRect& rect) {
    std::optional<Display> best;
    double bestArea = 0;
    for (const Display& display : displays) {
        const double area = display.frame.intersectionArea(rect);
        if (area > bestArea) {
            best = display;
            bestArea = area;
        }
    }
    return best;
}

qint64 WindowPlacement::maximumSlots(const Display& display) {
    // Subtracted one by one as the reserve is made up, so rounding matches the defined order.
    const double fitting = ((((display.visibleFrame.height - 6) - 34) - 16) - 12) / M::slotHeight;
    if (!std::isfinite(fitting) || fitting >= 9.2e18 || fitting <= -9.2e18)
        qFatal("Mosswick: the display's visible height gives no slot count");
    return std::max<qint64>(static_cast<qint64>(fitting), 1);
}

qint64 WindowPlacement::slotCount(ShelfSize size, qint64 itemCount, const Display& display) {
    const qint64 fitting = maximumSlots(display);
    switch (size) {
        case ShelfSize::standard:
            return std::min<qint64>(3, fitting);
        case ShelfSize::biggest:
            return fitting;
        case ShelfSize::smallest:
            return 1;
        case ShelfSize::adaptiveStandard:
            return std::min(fitting, std::max<qint64>(itemCount, 3));
        case ShelfSize::adaptiveSmallest:
            return itemCount >= 1 ? std::min(fitting, itemCount) : 1;
    }
    return 1;
}

double WindowPlacement::height(qint64 slotsShown) {
    return static_cast<double>(slotsShown) * M::slotHeight + M::chromeHeight + M::contentPadding;
}

QSizeF WindowPlacement::size(ShelfSize size, qint64 itemCount, const Display& display) {
    return {M::shelfWidth, height(slotCount(size, itemCount, display))};
}

ScreenRect WindowPlacement::clamped(const ScreenRect& rect, const Display& display) {
    const ScreenRect& v = display.visibleFrame;
    double x = std::max(rect.minX(), v.minX() + M::edgeInset);
    x = std::min(v.maxX() - rect.width - M::edgeInset, x);
    double y = std::max(rect.minY(), v.minY() + M::edgeInset);
    y = std::min(v.maxY() - rect.height - M::edgeInset, y);
    return {x, y, rect.width, rect.height};
}

ScreenRect WindowPlacement::frameAtCursor(ShelfSize size, qint64 itemCount, const Display& display,
                                          ScreenPoint pointer) {
    const double h = height(slotCount(size, itemCount, display));
    // Compared with the bare visible edge; clamping below takes care of the inset.
    const bool fitsRight = display.visibleFrame.maxX() >= pointer.x + M::cursorGap + M::shelfWidth;
    const double x = fitsRight ? pointer.x + M::cursorGap : pointer.x - M::shelfWidth - M::cursorGap;
    return clamped({x, pointer.y - h * 0.5, M::shelfWidth, h}, display);
}

ScreenRect WindowPlacement::edgeFrame(ShelfPosition position, ShelfSize size, qint64 itemCount,
                                      const Display& display) {
    const double h = height(slotCount(size, itemCount, display));
    const ScreenRect& v = display.visibleFrame;
    const double x = isLeftSide(position) ? v.minX() + M::edgeInset : v.maxX() - M::shelfWidth - M::edgeInset;
    const double slack = std::max(0.0, v.height - h - 2 * M::edgeInset);
    const double y = v.minY() + M::edgeInset + slack * (1 - verticalFactor(position));
    return {x, y, M::shelfWidth, h};
}

ScreenRect WindowPlacement::anchoredFrame(ScreenPoint anchor, ShelfSize size, qint64 itemCount,
                                          const Display& display) {
    const double h = height(slotCount(size, itemCount, display));
    return clamped({anchor.x, anchor.y - h, M::shelfWidth, h}, display);
}

bool WindowPlacement::isLeftSide(ShelfPosition position) {
    return position == ShelfPosition::leftTop || position == ShelfPosition::leftCenter ||
           position == ShelfPosition::leftBottom;
}

double WindowPlacement::verticalFactor(ShelfPosition position) {
    return kVerticalFactors[static_cast<size_t>(position)];
}

}  // namespace mosswick
