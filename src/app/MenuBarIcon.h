#pragma once

#include <QIcon>
#include <QPainterPath>

namespace mosswick::MenuBarIcon {

// The rounded square with the initial cut out, in an 18 × 18 box (y grows downwards).
QPainterPath outline();
// The icon in the panel's text colour, drawn at each size a tray asks for so it stays crisp.
QIcon icon(const QColor& ink);

}  // namespace mosswick::MenuBarIcon
