#pragma once

#include <QRectF>
#include <QSizeF>

namespace mosswick {

// Where the parts of the shelf view and of a tile stand, in device-independent pixels. The list
// rows line up with the window's slots: a shelf made n slots tall shows exactly n tiles.
class ShelfLayout {
public:
    ShelfLayout() = delete;

    // The window's own measures (its slot, chrome and padding heights).
    static constexpr double kSlotHeight = 88;
    static constexpr double kChromeHeight = 40;
    static constexpr double kContentPadding = 16;

    static constexpr double kContentInset = 8;
    static constexpr double kToolbarHeight = kChromeHeight - kContentInset;
    static constexpr double kToolbarButtonSize = 22;
    static constexpr double kPanelCornerRadius = 22;
    static constexpr double kHighlightCornerRadius = 18;
    static constexpr double kHighlightLineWidth = 2.5;

    static constexpr double kTileGap = 8;
    static constexpr double kTileHeight = kSlotHeight - kTileGap;
    static constexpr double kTileCornerRadius = 12;
    static constexpr double kPreviewSide = 52;
    static constexpr double kTilePadding = 10;

    // The close button's hit square, as the drag-out layer also counts it, and its drawn circle.
    static constexpr double kCloseButtonSize = 20;
    static constexpr double kCloseButtonInset = 2;
    static constexpr double kCloseSymbolSize = 13;

    static QSizeF previewSize() { return {kPreviewSide, kPreviewSide}; }

    // In the list's own coordinates: row `index` of a list `width` wide.
    static QRectF tileRect(int index, double width);
    static double listHeight(int tileCount);

    // In the tile's own coordinates (y down).
    static QRectF closeButtonRect(const QRectF& tile);
    static QRectF closeSymbolRect(const QRectF& tile);
    static QRectF pictureRect(const QRectF& tile);
    static QRectF textRect(const QRectF& tile);
};

}  // namespace mosswick
