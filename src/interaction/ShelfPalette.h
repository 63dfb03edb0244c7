#pragma once

#include <QPalette>

#include "model/PreferenceEnums.h"

namespace mosswick {

// The shelf's light and dark palettes. The shelf keeps its own pair rather than the widget
// style's, so it looks the same on every desktop; following the system means picking the one that
// matches the desktop's palette, in the desktop's accent colour.
class ShelfPalette {
public:
    ShelfPalette() = delete;

    static QPalette light();
    static QPalette dark();
    static QPalette forAppearance(AppearanceMode mode, const QPalette& desktop);
    // The dark or light palette in the desktop's accent colour.
    static QPalette following(bool wantDark, const QPalette& desktop);
    static bool isDark(const QPalette& palette);
};

}  // namespace mosswick
