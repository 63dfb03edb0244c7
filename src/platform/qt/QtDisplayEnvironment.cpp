#include "platform/qt/QtDisplayEnvironment.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

#include "shelf/ScreenCoordinates.h"

namespace mosswick {

QtDisplayEnvironment::QtDisplayEnvironment(std::unique_ptr<MonitorWorkAreas> workAreas)
    : workAreas_(std::move(workAreas)) {
    workAreas_->onChanged = [this] { notify(); };
    auto* app = qGuiApp;
    QObject::connect(app, &QGuiApplication::screenAdded, &connections_, [this](QScreen* screen) {
        watch(screen);
        notify();
    });
    QObject::connect(app, &QGuiApplication::screenRemoved, &connections_, [this](QScreen*) { notify(); });
    QObject::connect(app, &QGuiApplication::primaryScreenChanged, &connections_,
                     [this](QScreen*) { notify(); });
    for (QScreen* screen : QGuiApplication::screens()) watch(screen);
}

void QtDisplayEnvironment::watch(QScreen* screen) {
    QObject::connect(screen, &QScreen::geometryChanged, &connections_, [this] { notify(); });
    QObject::connect(screen, &QScreen::availableGeometryChanged, &connections_, [this] { notify(); });
}

void QtDisplayEnvironment::notify() {
    if (onParametersChanged) onParametersChanged();
}

std::vector<Display> QtDisplayEnvironment::displays() const {
    QScreen* primary = QGuiApplication::primaryScreen();
    if (!primary) return {};
    const ScreenCoordinates coordinates(primary->geometry());
    const QList<QScreen*> screens = QGuiApplication::screens();
    const bool alone = screens.size() == 1;
    std::vector<Display> result{display(coordinates, *primary, alone)};
    for (QScreen* screen : screens) {
        if (screen != primary) result.push_back(display(coordinates, *screen, alone));
    }
    return result;
}

Display QtDisplayEnvironment::display(const ScreenCoordinates& coordinates, const QScreen& screen,
                                      bool alone) const {
    const QRect geometry = screen.geometry();
    // Qt subtracts the panels itself only from a screen that is alone.
    if (alone) return coordinates.display(geometry, screen.availableGeometry());
    // Qt keeps a scaled screen's top-left corner in device pixels and divides only its size, so
    // device pixels inside it are scaled from that corner.
    const qreal ratio = screen.devicePixelRatio();
    const QPointF corner = geometry.topLeft();
    const QRect device(geometry.topLeft(), (QSizeF(geometry.size()) * ratio).toSize());
    const std::optional<QRect> usable = workAreas_->usableArea(device);
    if (!usable) return coordinates.display(geometry, screen.availableGeometry());
    const QRectF available(corner + (QPointF(usable->topLeft()) - corner) / ratio,
                           QSizeF(usable->size()) / ratio);
    return {coordinates.fromQt(QRectF(geometry)), coordinates.fromQt(available)};
}

ScreenPoint QtDisplayEnvironment::pointerLocation() const {
    return ScreenCoordinates::current().pointerFromQt(QCursor::pos());
}

}  // namespace mosswick
