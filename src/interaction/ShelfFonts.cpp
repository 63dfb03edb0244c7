#include "interaction/ShelfFonts.h"

#include <QGuiApplication>
#include <QPaintDevice>

namespace mosswick {

QFont ShelfFonts::ofPixels(const QPaintDevice& device, double pixels, QFont::Weight weight) {
    QFont font = QGuiApplication::font();
    const int dpi = device.logicalDpiY() > 0 ? device.logicalDpiY() : 96;
    font.setPointSizeF(pixels * 72.0 / dpi);
    font.setWeight(weight);
    return font;
}

}  // namespace mosswick
