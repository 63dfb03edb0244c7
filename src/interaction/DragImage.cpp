#include "interaction/DragImage.h"

#include <QPainter>
#include <QPainterPath>

#include "interaction/ItemPicture.h"
#include "interaction/ShelfFonts.h"

namespace mosswick {

namespace {

// A stack shows this many pictures, the first one in front.
constexpr size_t kStackLayers = 3;
constexpr double kLayerOffset = 5;
constexpr double kBadgeHeight = 18;

void paintCount(QPainter& painter, const QRectF& canvas, size_t count) {
    QFont font = painter.font();
    font.setPixelSize(11);
    font.setWeight(QFont::DemiBold);
    const QString text = QString::number(count);
    const double width = std::max(kBadgeHeight, QFontMetricsF(font).horizontalAdvance(text) + 10);
    const QRectF badge(canvas.right() - width, canvas.top(), width, kBadgeHeight);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(225, 45, 45));
    painter.drawRoundedRect(badge, kBadgeHeight / 2, kBadgeHeight / 2);
    painter.setPen(Qt::white);
    painter.setFont(font);
    painter.drawText(badge, Qt::AlignCenter, text);
}

}  // namespace

QPixmap DragImage::of(const std::vector<ShelfItem>& items, double pixelRatio) {
    QPixmap pixmap(QSize(static_cast<int>(std::ceil(kSide * pixelRatio)),
                         static_cast<int>(std::ceil(kSide * pixelRatio))));
    pixmap.setDevicePixelRatio(pixelRatio);
    pixmap.fill(Qt::transparent);
    if (items.empty()) return pixmap;
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QRectF canvas(0, 0, kSide, kSide);
    if (items.size() == 1) {
        ItemPicture::paint(painter, canvas, items.front(), pixelRatio);
        return pixmap;
    }
    // Behind one another from the bottom left, the first item in front, with room for the count.
    const size_t layers = std::min(items.size(), kStackLayers);
    const double side = kSide - kLayerOffset * (kStackLayers - 1) - 4;
    for (size_t i = layers; i-- > 0;) {
        const double shift = kLayerOffset * static_cast<double>(i);
        const QRectF box(shift, kSide - side - shift, side, side);
        painter.setOpacity(1.0 - 0.2 * static_cast<double>(i));
        ItemPicture::paint(painter, box, items[i], pixelRatio);
    }
    painter.setOpacity(1);
    paintCount(painter, canvas, items.size());
    return pixmap;
}

}  // namespace mosswick
