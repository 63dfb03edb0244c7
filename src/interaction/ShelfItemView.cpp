#include "interaction/ShelfItemView.h"

#include <QAccessible>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QTextLayout>

#include "interaction/DragOutSession.h"
#include "interaction/DragSource.h"
#include "interaction/ItemPicture.h"
#include "interaction/ShelfAccessibility.h"
#include "interaction/ShelfColors.h"
#include "interaction/ShelfFonts.h"
#include "interaction/ShelfLayout.h"
#include "interaction/ShelfSymbols.h"

namespace mosswick {

namespace {

constexpr double kTitlePixels = 11;
constexpr double kDetailPixels = 9.5;
constexpr int kTitleLines = 2;
constexpr double kBadgeSide = 18;
// A stack fans up to this many pictures behind its first one.
constexpr size_t kStackLayers = 2;
constexpr double kWaitingOpacity = 0.45;

// Lays `text` out in at most `maxLines` lines of `width`, the last one cut short with an ellipsis
// when the text does not fit (in the middle by default, which keeps a file name's extension).
QStringList wrapped(const QString& text, const QFont& font, double width, int maxLines,
                    Qt::TextElideMode elide = Qt::ElideMiddle) {
    QStringList lines;
    QTextLayout layout(text, font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    int consumed = 0;
    while (static_cast<int>(lines.size()) < maxLines - 1) {
        QTextLine line = layout.createLine();
        if (!line.isValid()) break;
        line.setLineWidth(width);
        lines << text.mid(line.textStart(), line.textLength()).trimmed();
        consumed = line.textStart() + line.textLength();
    }
    layout.endLayout();
    const QString rest = text.mid(consumed).trimmed();
    if (!rest.isEmpty()) {
        lines << QFontMetricsF(font).elidedText(rest, elide, width);
    }
    return lines;
}

constexpr double kFocusRingWidth = 2;

}  // namespace

ShelfItemView::ShelfItemView(ReducedMotion motion, QWidget* parent) : QWidget(parent), motion_(motion) {
    ShelfAccessibility::install();
    closeFade_.setDuration(kCloseFadeMilliseconds);
    closeFade_.setEasingCurve(QEasingCurve::OutCubic);
    connect(&closeFade_, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        closeOpacity_ = value.toDouble();
        update();
    });
    // Only the tile that shows the item redraws when its preview arrives.
    ItemPicture::watch(this, [this](const QUuid& id) {
        const size_t shown = std::min(tile_.items.size(), kStackLayers + 1);
        if (id.isNull() || std::any_of(tile_.items.begin(), tile_.items.begin() + static_cast<long>(shown),
                                       [&id](const ShelfItem& item) { return item.id == id; }))
            update();
    });
}

void ShelfItemView::setTile(const ShelfTile& tile, const TileDescription& description) {
    tile_ = tile;
    description_ = description;
    setToolTip(description.toolTip);
    setAccessibleName(description.spoken);
    setAccessibleDescription(description.toolTip);
    ItemPicture::request(tile);
    update();
}

void ShelfItemView::setSelected(bool selected) {
    if (selected == isSelected_) return;
    isSelected_ = selected;
    update();
}

void ShelfItemView::setHovered(bool hovered) {
    if (hovered == isHovered_) return;
    isHovered_ = hovered;
    const double target = hovered ? 1 : 0;
    closeFade_.stop();
    if (motion_.applies()) {
        closeOpacity_ = target;
    } else {
        closeFade_.setStartValue(closeOpacity_);
        closeFade_.setEndValue(target);
        closeFade_.start();
    }
    update();
}

void ShelfItemView::setPresence(double presence) {
    if (presence == presence_) return;
    presence_ = presence;
    update();
}

void ShelfItemView::setKeyboardFocus(bool focused) {
    if (focused == hasKeyboardFocus_) return;
    hasKeyboardFocus_ = focused;
    update();
    if (focused && QAccessible::isActive()) {
        QAccessibleEvent event(this, QAccessible::Focus);
        QAccessible::updateAccessibility(&event);
    }
}

QRectF ShelfItemView::closeButtonRect() const { return ShelfLayout::closeButtonRect(rect()); }

void ShelfItemView::enterEvent(QEnterEvent*) { setHovered(true); }

void ShelfItemView::leaveEvent(QEvent*) { setHovered(false); }

void ShelfItemView::mousePressEvent(QMouseEvent* event) { press(event, 1); }

void ShelfItemView::mouseDoubleClickEvent(QMouseEvent* event) { press(event, 2); }

void ShelfItemView::press(QMouseEvent* event, int clickCount) {
    // Taken even when nothing comes of it: a press on a tile must not count as a press on the
    // shelf's empty background, which clears the selection.
    event->accept();
    if (!dragSource_ || tile_.items.empty()) return;
    if (event->button() == Qt::RightButton) {
        dragSource_->rightMouseDown(tile_.first(), event->globalPosition().toPoint());
    } else if (event->button() == Qt::LeftButton) {
        clickCount_ = clickCount;
        dragSource_->mouseDown(tile_.first(), event->position(), rect(),
                               event->modifiers().testFlag(Qt::ControlModifier));
    }
}

void ShelfItemView::mouseMoveEvent(QMouseEvent* event) {
    if (!dragSource_ || !event->buttons().testFlag(Qt::LeftButton)) return;
    if (const auto drag = dragSource_->mouseDragged(event->position())) {
        setHovered(false);
        DragOutSession::run(*this, *dragSource_, *drag);
    }
}

void ShelfItemView::mouseReleaseEvent(QMouseEvent* event) {
    if (dragSource_ && event->button() == Qt::LeftButton) dragSource_->mouseUp(clickCount_);
}

void ShelfItemView::paintEvent(QPaintEvent*) {
    if (tile_.items.empty() || presence_ <= 0) return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QRectF tile = rect();
    if (presence_ < 1) {
        // Arriving tiles grow into place; leaving ones shrink away.
        const double scale = 0.92 + 0.08 * presence_;
        painter.translate(tile.center());
        painter.scale(scale, scale);
        painter.translate(-tile.center());
        painter.setOpacity(std::clamp(presence_, 0.0, 1.0));
    }
    const ShelfColors colors = ShelfColors::from(palette());
    paintBackground(painter, tile, colors);
    paintPicture(painter, tile, colors);
    paintText(painter, tile, colors);
    if (closeOpacity_ > 0) {
        painter.setOpacity(painter.opacity() * closeOpacity_);
        ShelfSymbols::closeButton(painter, ShelfLayout::closeSymbolRect(tile), colors.closeBackground,
                                  colors.closeMark);
    }
}

void ShelfItemView::paintBackground(QPainter& painter, const QRectF& tile, const ShelfColors& colors) const {
    const double radius = ShelfLayout::kTileCornerRadius;
    const QRectF face = tile.adjusted(0.75, 0.75, -0.75, -0.75);
    painter.setPen(Qt::NoPen);
    painter.setBrush(isSelected_ ? colors.tileSelected : isHovered_ ? colors.tileHover : colors.tileFill);
    painter.drawRoundedRect(face, radius, radius);
    if (isSelected_) {
        painter.setPen(QPen(colors.tileSelectedEdge, 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(face, radius - 0.75, radius - 0.75);
    }
    if (hasKeyboardFocus_) {
        const double inset = kFocusRingWidth / 2;
        painter.setPen(QPen(colors.accent, kFocusRingWidth));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(tile.adjusted(inset, inset, -inset, -inset), radius, radius);
    }
}

void ShelfItemView::paintPicture(QPainter& painter, const QRectF& tile, const ShelfColors& colors) const {
    const QRectF picture = ShelfLayout::pictureRect(tile);
    painter.save();
    if (description_.isWaiting) painter.setOpacity(painter.opacity() * kWaitingOpacity);
    if (tile_.isStack()) {
        // The items behind the first one, fanned out a little, the furthest first.
        const size_t behind = std::min(tile_.items.size() - 1, kStackLayers);
        const double angles[kStackLayers] = {-9, 7};
        for (size_t i = behind; i >= 1; --i) {
            painter.save();
            painter.translate(picture.center().x(), picture.bottom());
            painter.rotate(angles[i - 1]);
            painter.translate(-picture.center().x(), -picture.bottom());
            const QRectF layer = picture.adjusted(6, 6, -6, -2);
            paintItemPicture(painter, layer, tile_.items[i]);
            painter.restore();
        }
        paintItemPicture(painter, picture.adjusted(3, 3, -3, 1), tile_.first());
    } else {
        paintItemPicture(painter, picture, tile_.first());
    }
    painter.restore();
    if (description_.isOriginMissing) {
        const QRectF badge(picture.right() - kBadgeSide + 4, picture.bottom() - kBadgeSide + 2, kBadgeSide,
                           kBadgeSide);
        QColor backing = colors.body;
        backing.setAlpha(255);
        ShelfSymbols::missingOriginalBadge(painter, badge, colors.secondaryText, colors.warning, backing);
    }
}

void ShelfItemView::paintItemPicture(QPainter& painter, const QRectF& box, const ShelfItem& item) const {
    ItemPicture::paint(painter, box, item, devicePixelRatioF());
}

void ShelfItemView::paintText(QPainter& painter, const QRectF& tile, const ShelfColors& colors) const {
    const QRectF box = ShelfLayout::textRect(tile);
    const QFont titleFont = ShelfFonts::ofPixels(*this, kTitlePixels, QFont::Medium);
    const QFont detailFont = ShelfFonts::ofPixels(*this, kDetailPixels);
    const QFontMetricsF titleMetrics(titleFont), detailMetrics(detailFont);

    // A waiting item's detail finishes its caption and may take a second line; a size never needs
    // one. Without a detail line the headline may take its room.
    const QStringList detail = description_.detail.isEmpty()
                                   ? QStringList()
                                   : wrapped(description_.detail, detailFont, box.width(),
                                             description_.isWaiting ? 2 : 1, Qt::ElideRight);
    const QStringList title = wrapped(description_.headline, titleFont, box.width(),
                                      detail.isEmpty() ? kTitleLines + 1 : kTitleLines);
    const double gap = 2;
    const double height = title.size() * titleMetrics.lineSpacing() +
                          (detail.isEmpty() ? 0 : gap + detail.size() * detailMetrics.lineSpacing());
    double y = box.center().y() - height / 2;

    painter.setFont(titleFont);
    painter.setPen(colors.text);
    for (const QString& line : title) {
        painter.drawText(QRectF(box.left(), y, box.width(), titleMetrics.lineSpacing()),
                         Qt::AlignLeft | Qt::AlignVCenter, line);
        y += titleMetrics.lineSpacing();
    }
    painter.setFont(detailFont);
    painter.setPen(colors.secondaryText);
    y += gap;
    for (const QString& line : detail) {
        painter.drawText(QRectF(box.left(), y, box.width(), detailMetrics.lineSpacing()),
                         Qt::AlignLeft | Qt::AlignVCenter, line);
        y += detailMetrics.lineSpacing();
    }
}

}  // namespace mosswick
