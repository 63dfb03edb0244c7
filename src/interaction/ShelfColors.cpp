#include "interaction/ShelfColors.h"

#include "interaction/ShelfPalette.h"

namespace mosswick {

namespace {

QColor withAlpha(QColor color, double alpha) {
    color.setAlphaF(static_cast<float>(alpha));
    return color;
}

}  // namespace

ShelfColors ShelfColors::from(const QPalette& palette) {
    ShelfColors c;
    c.isDark = ShelfPalette::isDark(palette);
    const QColor ink = c.isDark ? QColor(Qt::white) : QColor(Qt::black);
    c.body = palette.color(QPalette::Active, QPalette::Window);
    c.text = palette.color(QPalette::Active, QPalette::WindowText);
    c.secondaryText = withAlpha(c.text, 0.6);
    c.tertiaryText = withAlpha(c.text, 0.38);
    c.accent = palette.color(QPalette::Active, QPalette::Highlight);
    c.border = withAlpha(ink, c.isDark ? 0.16 : 0.13);
    c.sheen = withAlpha(Qt::white, c.isDark ? 0.07 : 0.6);
    c.tileFill = withAlpha(ink, c.isDark ? 0.06 : 0.035);
    c.tileHover = withAlpha(ink, c.isDark ? 0.11 : 0.07);
    c.tileSelected = withAlpha(c.accent, c.isDark ? 0.3 : 0.18);
    c.tileSelectedEdge = withAlpha(c.accent, 0.85);
    c.buttonFill = c.isDark ? withAlpha(Qt::white, 0.08) : withAlpha(Qt::white, 0.55);
    c.buttonHover = c.isDark ? withAlpha(Qt::white, 0.16) : withAlpha(Qt::white, 0.9);
    c.buttonPressed = withAlpha(ink, c.isDark ? 0.22 : 0.1);
    c.buttonEdge = withAlpha(ink, c.isDark ? 0.14 : 0.1);
    c.closeBackground = withAlpha(Qt::black, 0.45);
    c.closeMark = Qt::white;
    c.warning = QColor(0xf5, 0x9e, 0x0b);
    return c;
}

}  // namespace mosswick
