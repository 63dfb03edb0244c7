#include "interaction/ItemPicture.h"

#include <QFileInfo>
#include <QPainter>
#include <QWidget>
#include <cmath>

#include "interaction/ItemIcon.h"
#include "interaction/ShelfSymbols.h"
#include "interaction/ThumbnailProvider.h"

namespace mosswick::ItemPicture {

namespace {

QString extensionLabel(const ShelfItem& item) {
    const QString suffix = QFileInfo(item.displayName).suffix();
    return suffix.size() <= 4 ? suffix : QString();
}

QRectF fitted(const QSizeF& size, const QRectF& box) {
    QRectF target(QPointF(), size.scaled(box.size(), Qt::KeepAspectRatio));
    if (size.width() <= box.width() && size.height() <= box.height()) target.setSize(size);
    target.moveCenter(box.center());
    return target;
}

}  // namespace

void paint(QPainter& painter, const QRectF& box, const ShelfItem& item, double devicePixelRatio) {
    ThumbnailProvider* provider = ThumbnailProvider::shared();
    if (provider) {
        provider->requestPreview(item, {kPreviewPoints, kPreviewPoints});
        if (const auto preview = provider->preview(item.id)) {
            painter.drawImage(fitted(preview->size().toSizeF() / devicePixelRatio, box), *preview);
            return;
        }
    }
    const bool isLink = item.webURL.has_value();
    const QIcon icon =
        provider ? provider->icon(item) : ItemIcon::themeIcon(item.contentTypeIdentifier, isLink);
    if (!icon.isNull()) {
        const QPixmap pixmap = icon.pixmap(box.size().toSize(), devicePixelRatio);
        if (!pixmap.isNull()) {
            painter.drawPixmap(fitted(pixmap.deviceIndependentSize(), box), pixmap, pixmap.rect());
            return;
        }
    }
    ShelfSymbols::fileGlyph(painter, box, ItemIcon::glyph(item.contentTypeIdentifier, isLink),
                            extensionLabel(item));
}

void request(const ShelfTile& tile) {
    ThumbnailProvider* provider = ThumbnailProvider::shared();
    if (!provider) return;
    for (const ShelfItem& item : tile.items) provider->requestPreview(item, {kPreviewPoints, kPreviewPoints});
}

QImage dragImage(const ShelfItem& item, double devicePixelRatio) {
    const int side = static_cast<int>(std::ceil(kDragImagePoints * devicePixelRatio));
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(devicePixelRatio);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    paint(painter, QRectF(0, 0, kDragImagePoints, kDragImagePoints), item, devicePixelRatio);
    return image;
}

void watch(QWidget* receiver, std::function<void(const QUuid&)> changed) {
    ThumbnailProvider* provider = ThumbnailProvider::shared();
    if (!provider) return;
    QObject::connect(provider, &ThumbnailProvider::previewArrived, receiver, changed);
    QObject::connect(provider, &ThumbnailProvider::previewsShownChanged, receiver,
                     [changed] { changed(QUuid()); });
}

}  // namespace mosswick::ItemPicture
