// Pictures of the shelf for a person to look at: set MOSSWICK_SCREENSHOT_DIR to a folder and run
// these; each scene is written in the light and the dark appearance, over a busy backdrop so the
// see-through body shows.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QIcon>
#include <QImage>
#include <QPainter>

#include "ShelfFixture.h"
#include "interaction/ShelfItemView.h"
#include "interaction/ShelfView.h"
#include "interaction/TileListView.h"
#include "shelf/ShelfContentView.h"
#include "shelf/ShelfPanel.h"

namespace mosswick {
namespace {

class ShelfScreenshots : public testing::ShelfFixture {
protected:
    void SetUp() override {
        const QString folder = qEnvironmentVariable("MOSSWICK_SCREENSHOT_DIR");
        if (folder.isEmpty()) GTEST_SKIP() << "set MOSSWICK_SCREENSHOT_DIR to write the shelf's pictures";
        ShelfFixture::SetUp();
        folder_ = QDir(folder);
        folder_.mkpath(QStringLiteral("."));
    }

    void fillShelf() {
        ShelfItem notes = item("Meeting notes.txt", "text/plain");
        notes.byteSize = 1800;
        ShelfItem folder = item("Holiday photos", "inode/directory");
        ShelfItem report = item("Quarterly report final version.pdf");
        report.byteSize = 2'400'000;
        store->add({notes});
        store->add({folder});
        store->add({report});
        store->add(batch({"Beach.jpg", "Harbour at dusk.jpg", "Lighthouse.jpg"}));
        ShelfItem link = item("Release notes.desktop", "application/x-desktop");
        link.webURL = QUrl("https://www.example.org/releases/4.2");
        link.displayName = "Release notes";
        store->add({link});
        store->setSelection({report.id});
    }

    ShelfItemView* tileNamed(ShelfPanel& panel, const QString& title) {
        for (ShelfItemView* tile : panel.shelfView().tileList().tileViews())
            if (tile->description().title.startsWith(title)) return tile;
        return nullptr;
    }

    void shoot(const QString& name, int slotCount, const std::function<void(ShelfPanel&)>& arrange,
               double pixelRatio = 1) {
        for (AppearanceMode mode : {AppearanceMode::light, AppearanceMode::dark}) {
            ShelfPanel panel(*store, motion(), windowHints);
            panel.setAppearance(mode);
            panel.mapAt(QRect(40, 40, 196, slotCount * 88 + 56));
            arrange(panel);
            panel.shelfView().tileList().settle();
            // The scroll bar shows itself on a later turn of the event loop.
            QCoreApplication::processEvents();

            const QSize logical(196 + 64, slotCount * 88 + 56 + 64);
            QImage picture(logical * pixelRatio, QImage::Format_ARGB32_Premultiplied);
            picture.setDevicePixelRatio(pixelRatio);
            {
                QPainter painter(&picture);
                paintBackdrop(painter, QRectF(QPointF(), QSizeF(logical)));
            }
            QImage window(panel.size() * pixelRatio, QImage::Format_ARGB32_Premultiplied);
            window.setDevicePixelRatio(pixelRatio);
            window.fill(Qt::transparent);
            panel.render(&window, QPoint(), QRegion(), QWidget::DrawChildren);
            {
                QPainter painter(&picture);
                painter.drawImage(QPointF(32, 32), window);
            }
            const QString file = folder_.filePath(QStringLiteral("%1-%2.png").arg(name, rawValue(mode)));
            ASSERT_TRUE(picture.save(file)) << file.toStdString();
        }
    }

    // Stripes and a gradient, so what shows through the shelf is easy to see.
    static void paintBackdrop(QPainter& painter, const QRectF& area) {
        QLinearGradient sky(area.topLeft(), area.bottomRight());
        sky.setColorAt(0, QColor(0x3a, 0x6e, 0xa5));
        sky.setColorAt(1, QColor(0xc0, 0x5a, 0x7a));
        painter.fillRect(area, sky);
        painter.setPen(QPen(QColor(255, 255, 255, 90), 6));
        for (double x = -area.height(); x < area.width(); x += 28)
            painter.drawLine(QPointF(x, area.bottom()), QPointF(x + area.height(), area.top()));
    }

    QDir folder_;
};

TEST_F(ShelfScreenshots, Scenes) {
    const auto nothing = [](ShelfPanel&) {};
    shoot("empty", 3, nothing);
    shoot("empty-drop-highlight", 3, [&](ShelfPanel&) { store->setTargeted(true); });
    store->setTargeted(false);

    fillShelf();
    shoot("stack-and-singles", 4, [&](ShelfPanel& panel) {
        if (ShelfItemView* tile = tileNamed(panel, "Quarterly")) tile->setHovered(true);
    });
    shoot("stack-and-singles-hidpi", 4, nothing, 2);
    shoot("opaque-no-compositor", 3, [](ShelfPanel& panel) { panel.contentView().setTranslucent(false); });
    shoot("drop-highlight", 3, [&](ShelfPanel&) { store->setTargeted(true); });
    store->setTargeted(false);

    const QUuid report = *store->selection().begin();
    store->setSelection({});
    ShelfItem promised = item("Archive entry.odt", "application/vnd.oasis.opendocument.text");
    promised.isPromised = true;
    store->add({promised});
    shoot("missing-original-and-waiting", 5, [&](ShelfPanel& panel) {
        panel.shelfView().setOriginCheck([&](const ShelfItem& candidate) { return candidate.id == report; });
    });
    shoot(
        "missing-original-and-waiting-hidpi", 5,
        [&](ShelfPanel& panel) {
            panel.shelfView().setOriginCheck(
                [&](const ShelfItem& candidate) { return candidate.id == report; });
        },
        2);

    // Without a desktop (the offscreen platform) Qt looks for no icon theme at all.
    const QString theme = QIcon::themeName();
    const QStringList searchPaths = QIcon::themeSearchPaths();
    QIcon::setThemeSearchPaths(searchPaths + QStringList{QStringLiteral("/usr/share/icons")});
    QIcon::setThemeName(QStringLiteral("Adwaita"));
    if (QIcon::hasThemeIcon(QStringLiteral("folder"))) shoot("icon-theme", 5, nothing);
    QIcon::setThemeName(theme);
    QIcon::setThemeSearchPaths(searchPaths);
}

}  // namespace
}  // namespace mosswick
