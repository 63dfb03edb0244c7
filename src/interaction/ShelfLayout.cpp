#include "interaction/ShelfLayout.h"

#include <algorithm>

namespace mosswick {

namespace {
// Half a gap above the first row, so the gaps between rows are all alike.
constexpr double kListTopMargin = ShelfLayout::kTileGap / 2;
}  // namespace

QRectF ShelfLayout::tileRect(int index, double width) {
    return {0, kListTopMargin + index * kSlotHeight, width, kTileHeight};
}

double ShelfLayout::listHeight(int tileCount) {
    return tileCount > 0 ? kListTopMargin + tileCount * kSlotHeight - kTileGap / 2 : 0;
}

QRectF ShelfLayout::closeButtonRect(const QRectF& tile) {
    return {tile.right() - kCloseButtonInset - kCloseButtonSize, tile.top() + kCloseButtonInset,
            kCloseButtonSize, kCloseButtonSize};
}

QRectF ShelfLayout::closeSymbolRect(const QRectF& tile) {
    QRectF symbol(0, 0, kCloseSymbolSize, kCloseSymbolSize);
    symbol.moveCenter(closeButtonRect(tile).center());
    return symbol;
}

QRectF ShelfLayout::pictureRect(const QRectF& tile) {
    return {tile.left() + kTilePadding, tile.center().y() - kPreviewSide / 2, kPreviewSide, kPreviewSide};
}

QRectF ShelfLayout::textRect(const QRectF& tile) {
    const double left = pictureRect(tile).right() + kTilePadding;
    return {left, tile.top() + kTilePadding, std::max(0.0, tile.right() - kTilePadding - left),
            tile.height() - 2 * kTilePadding};
}

}  // namespace mosswick
