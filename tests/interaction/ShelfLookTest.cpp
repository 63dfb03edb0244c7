// How the shelf looks without a window: palettes, the spring, the types it takes, its drawn
// pictures.
#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>

#include "interaction/ItemIcon.h"
#include "interaction/ShelfPalette.h"
#include "interaction/ShelfSymbols.h"
#include "interaction/SpringCurve.h"

namespace mosswick {
namespace {

QPalette desktopPalette(QColor window, QColor text, QColor accent) {
    QPalette palette;
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Highlight, accent);
    return palette;
}

TEST(ShelfPaletteTest, SystemAppearanceFollowsTheDesktopInItsAccent) {
    const QColor orange(0xe9, 0x54, 0x20);
    const QPalette darkDesktop = desktopPalette(QColor(0x30, 0x30, 0x30), Qt::white, orange);
    const QPalette lightDesktop = desktopPalette(QColor(0xee, 0xee, 0xee), Qt::black, orange);

    const QPalette followed = ShelfPalette::forAppearance(AppearanceMode::system, darkDesktop);
    EXPECT_TRUE(ShelfPalette::isDark(followed));
    EXPECT_EQ(followed.color(QPalette::Highlight), orange);
    EXPECT_FALSE(ShelfPalette::isDark(ShelfPalette::forAppearance(AppearanceMode::system, lightDesktop)));

    // An explicit choice ignores the desktop altogether.
    const QPalette light = ShelfPalette::forAppearance(AppearanceMode::light, darkDesktop);
    EXPECT_FALSE(ShelfPalette::isDark(light));
    EXPECT_NE(light.color(QPalette::Highlight), orange);
    EXPECT_TRUE(ShelfPalette::isDark(ShelfPalette::forAppearance(AppearanceMode::dark, lightDesktop)));
}

TEST(SpringCurveTest, TheListSpringOvershootsALittleAndSettles) {
    const SpringCurve spring(0.32, 0.82);
    EXPECT_EQ(spring.value(0), 0);
    double peak = 0;
    for (double t = 0; t <= 1; t += 0.001) peak = std::max(peak, spring.value(t));
    EXPECT_GT(peak, 1.0);
    EXPECT_LT(peak, 1.03);
    const double settled = spring.settlingTime();
    EXPECT_GT(settled, 0.3);
    EXPECT_LT(settled, 0.6);
    for (double t = settled; t < settled + 1; t += 0.01) EXPECT_NEAR(spring.value(t), 1, 0.001) << t;
}

TEST(SpringCurveTest, ACriticallyDampedSpringNeverOvershoots) {
    const SpringCurve spring(0.3, 1);
    double last = 0;
    for (double t = 0.001; t <= 1; t += 0.001) {
        const double v = spring.value(t);
        EXPECT_GE(v, last);
        EXPECT_LE(v, 1);
        last = v;
    }
}

struct GlyphRow {
    const char* name;
    const char* type;
    bool isLink;
    FileGlyph glyph;
};

class FileGlyphTest : public ::testing::TestWithParam<GlyphRow> {};

TEST_P(FileGlyphTest, PicksTheKindFromTheContentType) {
    EXPECT_EQ(ItemIcon::glyph(QString::fromLatin1(GetParam().type), GetParam().isLink), GetParam().glyph);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, FileGlyphTest,
    ::testing::Values(GlyphRow{"folder", "inode/directory", false, FileGlyph::folder},
                      GlyphRow{"photo", "image/jpeg", false, FileGlyph::image},
                      GlyphRow{"sourceCode", "text/x-csrc", false, FileGlyph::text},
                      GlyphRow{"shellScript", "application/x-shellscript", false, FileGlyph::text},
                      GlyphRow{"zip", "application/zip", false, FileGlyph::archive},
                      GlyphRow{"tarball", "application/x-compressed-tar", false, FileGlyph::archive},
                      GlyphRow{"officeDocumentIsNoArchive", "application/vnd.oasis.opendocument.text", false,
                               FileGlyph::document},
                      GlyphRow{"song", "audio/mpeg", false, FileGlyph::audio},
                      GlyphRow{"film", "video/mp4", false, FileGlyph::video},
                      GlyphRow{"pdf", "application/pdf", false, FileGlyph::document},
                      GlyphRow{"unknown", "application/x-mosswick-nothing", false, FileGlyph::document},
                      GlyphRow{"link", "application/x-desktop", true, FileGlyph::link}),
    [](const auto& row) { return std::string(row.param.name); });

// Share of the box's pixels that the drawing touched.
double coverage(void (*draw)(QPainter&, const QRectF&)) {
    QImage image(64, 64, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    {
        QPainter painter(&image);
        draw(painter, QRectF(0, 0, 64, 64));
    }
    int touched = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) touched += qAlpha(image.pixel(x, y)) > 0;
    return touched / double(image.width() * image.height());
}

TEST(ShelfSymbolsTest, EveryFallbackPictureFillsItsBox) {
    // Drawn when the icon theme has nothing: an empty square would look broken.
    static FileGlyph current;
    for (FileGlyph glyph : {FileGlyph::document, FileGlyph::folder, FileGlyph::image, FileGlyph::text,
                            FileGlyph::link, FileGlyph::archive, FileGlyph::audio, FileGlyph::video}) {
        current = glyph;
        const double covered = coverage([](QPainter& p, const QRectF& box) {
            ShelfSymbols::fileGlyph(p, box, current, QStringLiteral("pdf"));
        });
        EXPECT_GT(covered, 0.45) << static_cast<int>(glyph);
    }
}

TEST(ShelfSymbolsTest, ToolbarAndBadgeSymbolsAreVisibleButNotBlobs) {
    using Draw = void (*)(QPainter&, const QRectF&);
    const Draw symbols[] = {
        [](QPainter& p, const QRectF& b) { ShelfSymbols::bringBack(p, b, Qt::black); },
        [](QPainter& p, const QRectF& b) { ShelfSymbols::trash(p, b, Qt::black); },
        [](QPainter& p, const QRectF& b) { ShelfSymbols::dropDocument(p, b, Qt::black); },
    };
    for (Draw draw : symbols) {
        const double covered = coverage(draw);
        EXPECT_GT(covered, 0.05);
        EXPECT_LT(covered, 0.5);
    }
}

}  // namespace
}  // namespace mosswick
