#pragma once

#include <QColor>
#include <QPalette>

namespace mosswick {

// The colours the shelf paints with, derived from the palette its window carries, so that one
// palette switch repaints everything in the new appearance.
struct ShelfColors {
    bool isDark = false;
    QColor body;
    QColor border;
    QColor sheen;
    QColor text;
    QColor secondaryText;
    QColor tertiaryText;
    QColor accent;
    QColor tileFill;
    QColor tileHover;
    QColor tileSelected;
    QColor tileSelectedEdge;
    QColor buttonFill;
    QColor buttonHover;
    QColor buttonPressed;
    QColor buttonEdge;
    QColor closeBackground;
    QColor closeMark;
    QColor warning;

    static ShelfColors from(const QPalette& palette);
    // The body's opacity where a compositor shows what lies behind the shelf.
    static constexpr double kTranslucentBodyAlpha = 0.9;
};

}  // namespace mosswick
