#pragma once

#include <QVariantAnimation>
#include <QWidget>

#include "shelf/ReducedMotion.h"
#include "interaction/TileDescription.h"
#include "model/ShelfTile.h"

namespace mosswick {

class DragSource;
struct ShelfColors;

// One tile of the shelf: an item, or a stack of items dropped together, with its picture, name
// and size; highlighted when selected; a close button while hovered; a badge when the original
// is gone and the shelf's copy stands in. What the mouse does on it is the drag source's to
// decide; the tile hands it the events and runs the drags it asks for.
class ShelfItemView : public QWidget {
    Q_OBJECT

public:
    static constexpr int kCloseFadeMilliseconds = 120;

    explicit ShelfItemView(ReducedMotion motion, QWidget* parent = nullptr);

    void setTile(const ShelfTile& tile, const TileDescription& description);
    const ShelfTile& tile() const { return tile_; }
    const TileDescription& description() const { return description_; }

    void setSelected(bool selected);
    bool isSelected() const { return isSelected_; }

    // The keyboard stands on this tile while the shelf has the focus: a ring around it, and a
    // screen reader is told.
    void setKeyboardFocus(bool focused);
    bool hasKeyboardFocus() const { return hasKeyboardFocus_; }

    // Follows the pointer, or whatever layer handles the tile's mouse events.
    void setHovered(bool hovered);
    bool isHovered() const { return isHovered_; }
    double closeButtonOpacity() const { return closeOpacity_; }
    bool isCloseButtonFading() const { return closeFade_.state() == QAbstractAnimation::Running; }

    // How far the tile has come into the list: 0 before it appears and once it has left, 1 in place.
    void setPresence(double presence);
    double presence() const { return presence_; }

    // In the tile's own coordinates.
    QRectF closeButtonRect() const;

    // Not owned; without one the tile takes presses but does nothing with them.
    void setDragSource(DragSource* source) { dragSource_ = source; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void paintBackground(QPainter& painter, const QRectF& tile, const ShelfColors& colors) const;
    void paintPicture(QPainter& painter, const QRectF& tile, const ShelfColors& colors) const;
    void paintItemPicture(QPainter& painter, const QRectF& box, const ShelfItem& item) const;
    void paintText(QPainter& painter, const QRectF& tile, const ShelfColors& colors) const;

    void press(QMouseEvent* event, int clickCount);

    ReducedMotion motion_;
    DragSource* dragSource_ = nullptr;
    int clickCount_ = 1;
    ShelfTile tile_;
    TileDescription description_;
    bool isSelected_ = false;
    bool hasKeyboardFocus_ = false;
    bool isHovered_ = false;
    double presence_ = 1;
    double closeOpacity_ = 0;
    QVariantAnimation closeFade_;
};

}  // namespace mosswick
