#pragma once

#include <QColor>
#include <QIcon>
#include <QPainterPath>
#include <optional>

namespace mosswick::MenuBarIcon {

// The rounded square with the initial cut out, in an 18 × 18 box (y grows downwards).
QPainterPath outline();

// What the glyph is drawn in. A tray that names its text colour is followed exactly; otherwise
// nothing says whether the panel is light or dark, so the glyph gets a rim in the opposite colour
// and reads on either.
struct Colors {
    QColor ink;
    std::optional<QColor> rim;
};
Colors colorsFor(std::optional<QColor> trayText, const QColor& text, const QColor& background);

// The icon, drawn at each size a tray asks for so it stays crisp.
QIcon icon(const Colors& colors);

}  // namespace mosswick::MenuBarIcon
