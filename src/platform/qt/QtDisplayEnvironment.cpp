#include "platform/qt/QtDisplayEnvironment.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

#include "shelf/ScreenCoordinates.h"

namespace mosswick {

QtDisplayEnvironment::QtDisplayEnvironment() {
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
    std::vector<Display> result{coordinates.display(primary->geometry(), primary->availableGeometry())};
    for (QScreen* screen : QGuiApplication::screens()) {
        if (screen != primary)
            result.push_back(coordinates.display(screen->geometry(), screen->availableGeometry()));
    }
    return result;
}

ScreenPoint QtDisplayEnvironment::pointerLocation() const {
    return ScreenCoordinates::current().pointerFromQt(QCursor::pos());
}

}  // namespace mosswick
