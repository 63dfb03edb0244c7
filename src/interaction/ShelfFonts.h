#pragma once

#include <QFont>

class QPaintDevice;

namespace mosswick {

// The shelf's type sizes are given in device-independent pixels, like the rest of its layout, so
// its text keeps its proportions in a window of fixed width whatever the desktop's font DPI.
class ShelfFonts {
public:
    ShelfFonts() = delete;

    static QFont ofPixels(const QPaintDevice& device, double pixels, QFont::Weight weight = QFont::Normal);
};

}  // namespace mosswick
