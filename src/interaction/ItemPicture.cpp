#include "interaction/ItemPicture.h"

#include <QFileInfo>
#include <QPainter>

#include "interaction/ItemIcon.h"
#include "interaction/ShelfSymbols.h"
#include "model/ShelfItem.h"

namespace mosswick {

namespace {

QString extensionLabel(const ShelfItem& item) {
    const QString suffix = QFileInfo(item.displayName).suffix();
    return suffix.size() <= 4 ? suffix : QString();
}

}  // namespace

void ItemPicture::paint(QPainter& painter, const QRectF& box, const ShelfItem& item, double pixelRatio) {
    const QIcon icon = ItemIcon::themeIcon(item.contentTypeIdentifier, item.webURL.has_value());
    if (!icon.isNull()) {
        const QPixmap pixmap = icon.pixmap(box.size().toSize(), pixelRatio);
        if (!pixmap.isNull()) {
            QRectF target(QPointF(), pixmap.deviceIndependentSize());
            target.moveCenter(box.center());
            painter.drawPixmap(target, pixmap, pixmap.rect());
            return;
        }
    }
    ShelfSymbols::fileGlyph(painter, box,
                            ItemIcon::glyph(item.contentTypeIdentifier, item.webURL.has_value()),
                            extensionLabel(item));
}

}  // namespace mosswick
