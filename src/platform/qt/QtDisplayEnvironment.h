#pragma once

#include <QObject>
#include <memory>

#include "shelf/DisplayEnvironment.h"
#include "shelf/MonitorWorkAreas.h"

class QScreen;

namespace mosswick {

class ScreenCoordinates;

// The displays and the pointer as Qt sees them (QScreen's geometry and available geometry,
// QCursor), converted to the shelf's coordinates. With more than one screen Qt reports each
// whole as available, so the panels' reservations come from `workAreas` then.
class QtDisplayEnvironment final : public DisplayEnvironment {
public:
    explicit QtDisplayEnvironment(
        std::unique_ptr<MonitorWorkAreas> workAreas = std::make_unique<NoMonitorWorkAreas>());

    std::vector<Display> displays() const override;
    ScreenPoint pointerLocation() const override;

private:
    void watch(QScreen* screen);
    void notify();
    Display display(const ScreenCoordinates& coordinates, const QScreen& screen, bool alone) const;

    std::unique_ptr<MonitorWorkAreas> workAreas_;
    QObject connections_;
};

}  // namespace mosswick
