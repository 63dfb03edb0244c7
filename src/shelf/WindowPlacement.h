#pragma once

#include <QSizeF>
#include <QtGlobal>
#include <optional>
#include <vector>

#include "model/PreferenceEnums.h"
#include "shelf/Display.h"

namespace mosswick {

// Where the shelf stands and how tall it is. Stateless: every function takes the displays and
// the pointer it needs, so callers read them afresh each time.
class WindowPlacement {
public:
    struct Metrics {
        static constexpr double shelfWidth = 196;
        static constexpr double slotHeight = 88;
        static constexpr double chromeHeight = 40;
        static constexpr double contentPadding = 16;
        static constexpr double edgeInset = 6;
        static constexpr double cursorGap = 24;
        static constexpr double slotReserve = 6 + 34 + 16 + 12;
    };

    WindowPlacement() = delete;

    // The first display whose frame contains the point.
    static std::optional<Display> screen(const std::vector<Display>& displays, ScreenPoint point);
    // The closest display; ties go to the earlier one. The list must not be empty.
    static Display nearestScreen(const std::vector<Display>& displays, ScreenPoint point);
    // The display the pointer is on, or the nearest one when it is on none.
    static Display pointerScreen(const std::vector<Display>& displays, ScreenPoint pointer);
    // The display holding the largest part of the rectangle, as a window manager counts a window's
    // display; none when the rectangle is on no display.
    static std::optional<Display> screenHolding(const std::vector<Display>& displays, const ScreenRect& rect);

    static QSizeF size(ShelfSize size, qint64 itemCount, const Display& display);
    // Moved, not resized, to keep the edge inset from the display's visible frame; where it
    // cannot, it sticks to the right and the top insets.
    static ScreenRect clamped(const ScreenRect& rect, const Display& display);
    // Beside the pointer (to its right when there is room), vertically centred on it.
    static ScreenRect frameAtCursor(ShelfSize size, qint64 itemCount, const Display& display,
                                    ScreenPoint pointer);
    // Docked at the position's edge; not clamped, so a shelf taller than the display runs off
    // its top.
    static ScreenRect edgeFrame(ShelfPosition position, ShelfSize size, qint64 itemCount,
                                const Display& display);
    // Hanging from the anchor, its top-left corner.
    static ScreenRect anchoredFrame(ScreenPoint anchor, ShelfSize size, qint64 itemCount,
                                    const Display& display);

    static bool isLeftSide(ShelfPosition position);
    // How much of the free vertical space lies above the shelf: 0 at the top, 1 at the bottom.
    static double verticalFactor(ShelfPosition position);

private:
    static qint64 maximumSlots(const Display& display);
    static qint64 slotCount(ShelfSize size, qint64 itemCount, const Display& display);
    static double height(qint64 slotsShown);
};

}  // namespace mosswick
