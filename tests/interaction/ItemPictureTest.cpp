// The picture a tile and a drag image show of an item.
#include <gtest/gtest.h>

#include <QBuffer>
#include <QImageWriter>

#include "interaction/ItemPicture.h"
#include "interaction/ThumbnailProvider.h"
#include "interaction/WorkspaceIcons.h"
#include "model/DefaultsStore.h"
#include "model/LocalPath.h"
#include "model/Preferences.h"
#include "support/ManualScheduler.h"
#include "support/TestFolders.h"

namespace mosswick::testing {
namespace {

TEST(ItemPictureTest, DragImagesShowThePreviewWhilePreviewsAreOn) {
    const auto folder = freshFolder("item-picture");
    QImage orange(400, 300, QImage::Format_RGB32);
    orange.fill(QColor(255, 128, 0));
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImageWriter(&buffer, "png").write(orange);
    writeFile(folder / "orange.png", buffer.data().toStdString());
    ShelfItem item;
    item.id = QUuid::createUuid();
    item.displayName = QStringLiteral("orange.png");
    item.contentTypeIdentifier = QStringLiteral("image/png");
    item.originURL = LocalPath::toUrl(folder / "orange.png");

    ManualScheduler clock;
    MemoryDefaultsStore defaults;
    Preferences preferences(defaults);
    NoWorkspaceIcons icons;
    ThumbnailProvider provider(
        {preferences, clock, icons,
         std::make_shared<const PreviewGenerator>(ThumbnailFolder(folder / "thumbnails"), Thumbnailers(),
                                                  PreviewGenerator::Limits())});
    ThumbnailProvider::setShared(&provider);
    const auto centre = [&](double scale) {
        const QImage image = ItemPicture::dragImage(item, scale);
        EXPECT_EQ(image.size(), QSize(64, 64) * scale);
        EXPECT_EQ(image.deviceIndependentSize(), QSizeF(64, 64));
        return image.pixelColor(image.width() / 2, image.height() / 2);
    };

    centre(2);  // asks for the preview
    clock.drain();
    for (const double scale : {1.0, 2.0}) EXPECT_EQ(centre(scale), QColor(255, 128, 0)) << scale;
    preferences.setShowQuickLookPreviews(false);
    EXPECT_NE(centre(2), QColor(255, 128, 0));
    ThumbnailProvider::setShared(nullptr);
}

}  // namespace
}  // namespace mosswick::testing
