#include "shelf/ScreenCoordinates.h"

#include <QGuiApplication>
#include <QScreen>

namespace mosswick {

ScreenCoordinates::ScreenCoordinates(const QRect& mainDisplay)
    : left_(mainDisplay.x()), bottom_(double(mainDisplay.y()) + mainDisplay.height()) {}

ScreenCoordinates ScreenCoordinates::current() {
    const QScreen* primary = QGuiApplication::primaryScreen();
    return ScreenCoordinates(primary ? primary->geometry() : QRect());
}

ScreenRect ScreenCoordinates::fromQt(const QRectF& rect) const {
    return {rect.x() - left_, bottom_ - (rect.y() + rect.height()), rect.width(), rect.height()};
}

ScreenPoint ScreenCoordinates::fromQt(const QPointF& point) const {
    return {point.x() - left_, bottom_ - point.y()};
}

QRectF ScreenCoordinates::toQt(const ScreenRect& rect) const {
    return {rect.x + left_, bottom_ - rect.maxY(), rect.width, rect.height};
}

QPointF ScreenCoordinates::toQt(ScreenPoint point) const { return {point.x + left_, bottom_ - point.y}; }

ScreenPoint ScreenCoordinates::pointerFromQt(const QPoint& pixel) const {
    return fromQt(QPointF(pixel.x() + 0.5, pixel.y() + 0.5));
}

Display ScreenCoordinates::display(const QRect& geometry, const QRect& availableGeometry) const {
    return {fromQt(QRectF(geometry)), fromQt(QRectF(availableGeometry))};
}

}  // namespace mosswick
