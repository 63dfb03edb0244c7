#pragma once

#include <QObject>

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

private:
    void watch(QScreen* screen);
    void notify();

    QObject connections_;
};

}  // namespace mosswick
