// Which picture the shelf asks for, when, and what it keeps.
#include <gtest/gtest.h>

#include <QBuffer>
#include <QImageWriter>

#include "interaction/ThumbnailProvider.h"
#include "interaction/WorkspaceIcons.h"
#include "model/DefaultsStore.h"
#include "model/LocalPath.h"
#include "model/Preferences.h"
#include "support/ManualScheduler.h"
#include "support/TestFolders.h"

namespace mosswick::testing {
namespace {

// Counts what it is asked, and answers with an icon named after the question.
class CountingIcons final : public WorkspaceIcons {
public:
    QIcon iconForType(const QString& mimeType, bool) override {
        asked.push_back(QStringLiteral("type:") + mimeType);
        return {};
    }
    QIcon iconForFile(const std::filesystem::path& path, bool isDirectory, const QString&) override {
        asked.push_back((isDirectory ? QStringLiteral("dir:") : QStringLiteral("file:")) +
                        LocalPath::displayName(path));
        return {};
    }
    std::vector<QString> asked;
};

class ThumbnailProviderTest : public ::testing::Test {
protected:
    void SetUp() override {
        folder = freshFolder(::testing::UnitTest::GetInstance()->current_test_info()->name());
        makeProvider(1);
    }
    void makeProvider(int maxRunning) {
        provider.reset();
        provider = std::make_unique<ThumbnailProvider>(ThumbnailProvider::Services{
            preferences, clock, icons,
            std::make_shared<const PreviewGenerator>(ThumbnailFolder(folder / "thumbnails"), Thumbnailers(),
                                                     PreviewGenerator::Limits()),
            [this] { return scale; }, maxRunning});
        QObject::connect(provider.get(), &ThumbnailProvider::previewArrived,
                         [this](const QUuid& id) { arrived.push_back(id); });
    }
    ShelfItem fileItem(const std::string& name, bool validImage = true) {
        const auto path = folder / name;
        if (validImage) {
            QBuffer buffer;
            buffer.open(QIODevice::WriteOnly);
            QImage image(300, 200, QImage::Format_RGB32);
            image.fill(Qt::darkCyan);
            QImageWriter(&buffer, "png").write(image);
            writeFile(path, buffer.data().toStdString());
        } else {
            writeFile(path, "not a picture");
        }
        ShelfItem item;
        item.id = QUuid::createUuid();
        item.displayName = QString::fromStdString(name);
        item.contentTypeIdentifier = QStringLiteral("image/png");
        item.originURL = LocalPath::toUrl(path);
        return item;
    }
    void request(const ShelfItem& item) { provider->requestPreview(item, {64, 64}); }

    std::filesystem::path folder;
    ManualScheduler clock;
    MemoryDefaultsStore defaults;
    Preferences preferences{defaults};
    CountingIcons icons;
    double scale = 2;
    std::unique_ptr<ThumbnailProvider> provider;
    std::vector<QUuid> arrived;
};

TEST_F(ThumbnailProviderTest, IconsAreKeptPerExtensionButFoldersAndBareNamesAreAskedEachTime) {
    ShelfItem report = fileItem("REPORT.PDF", false), notes = fileItem("notes.pdf", false),
              bare = fileItem("README", false);
    std::filesystem::create_directories(folder / "Folder.pdf");
    ShelfItem directory;
    directory.id = QUuid::createUuid();
    directory.originURL = LocalPath::toUrl(folder / "Folder.pdf", true);
    ShelfItem text;
    text.id = QUuid::createUuid();
    text.contentTypeIdentifier = QStringLiteral("text/plain");

    for (const ShelfItem* item :
         {&report, &notes, &report, &directory, &directory, &bare, &bare, &text, &text})
        provider->icon(*item);
    const std::vector<QString> expected = {"file:REPORT.PDF", "dir:Folder.pdf", "dir:Folder.pdf",
                                           "file:README",     "file:README",    "type:text/plain",
                                           "type:text/plain"};
    EXPECT_EQ(icons.asked, expected);
}

TEST_F(ThumbnailProviderTest, RequestsFollowTheRules) {
    const ShelfItem photo = fileItem("photo.png");
    ShelfItem noFile;
    noFile.id = QUuid::createUuid();

    // Off: nothing is made, and a preview made earlier is not shown.
    preferences.setShowQuickLookPreviews(false);
    request(photo);
    EXPECT_FALSE(provider->isInFlight(photo.id));
    preferences.setShowQuickLookPreviews(true);

    // Asked twice while it is being made: made once.
    clock.holdBackgroundWork(true);
    request(photo);
    request(photo);
    request(noFile);
    EXPECT_TRUE(provider->isInFlight(photo.id));
    EXPECT_FALSE(provider->isInFlight(noFile.id));
    clock.runBackgroundWork();
    clock.drain();
    EXPECT_EQ(arrived, std::vector<QUuid>{photo.id});
    EXPECT_FALSE(provider->isInFlight(photo.id));
    ASSERT_TRUE(provider->preview(photo.id));
    EXPECT_EQ(provider->preview(photo.id)->size(), QSize(128, 85));

    // Made once for good.
    request(photo);
    EXPECT_FALSE(provider->isInFlight(photo.id));

    preferences.setShowQuickLookPreviews(false);
    EXPECT_FALSE(provider->preview(photo.id));
    preferences.setShowQuickLookPreviews(true);
    EXPECT_TRUE(provider->preview(photo.id));
}

TEST_F(ThumbnailProviderTest, AFailedAttemptIsRetriedLaterNotAtEveryPaint) {
    ShelfItem item = fileItem("later.png", false);
    request(item);
    clock.drain();
    EXPECT_TRUE(arrived.empty());
    EXPECT_FALSE(provider->isInFlight(item.id));

    fileItem("later.png");  // the same file, now a picture
    std::filesystem::last_write_time(folder / "later.png",
                                     std::filesystem::file_time_type::clock::now() + std::chrono::seconds(5));
    request(item);
    EXPECT_FALSE(provider->isInFlight(item.id));
    clock.advance(ThumbnailProvider::kRetryAfter);
    request(item);
    clock.drain();
    EXPECT_EQ(arrived, std::vector<QUuid>{item.id});
}

TEST_F(ThumbnailProviderTest, TilesInViewGoFirstAndRemovedItemsAreNotMade) {
    const ShelfItem a = fileItem("a.png"), b = fileItem("b.png"), c = fileItem("c.png"),
                    d = fileItem("d.png");
    clock.holdBackgroundWork(true);
    for (const ShelfItem* item : {&a, &b, &c, &d}) request(*item);  // a starts, the others wait
    request(d);                                                     // d paints: it is in view
    provider->keepWorkFor({a.id, b.id, d.id});                      // c left the shelf
    provider->evict(b.id);                                          // b left for good
    EXPECT_FALSE(provider->isInFlight(b.id));
    EXPECT_FALSE(provider->isInFlight(c.id));
    for (int i = 0; i < 4; ++i) {
        clock.runBackgroundWork();
        clock.drain();
    }
    EXPECT_EQ(arrived, (std::vector<QUuid>{a.id, d.id}));
}

TEST_F(ThumbnailProviderTest, PreviewsAreMadeForTheScreensScale) {
    const struct {
        double scale;
        double points;
        const char* folder;
    } cases[] = {{1, 64, "normal"}, {2, 64, "normal"}, {3, 64, "large"}, {2, 200, "x-large"}};
    for (const auto& c : cases) {
        scale = c.scale;
        const ShelfItem item = fileItem("scaled.png");
        std::filesystem::remove_all(folder / "thumbnails");
        provider->requestPreview(item, {c.points, c.points});
        clock.drain();
        EXPECT_TRUE(std::filesystem::exists(folder / "thumbnails" / c.folder)) << c.scale << " " << c.points;
    }
}

}  // namespace
}  // namespace mosswick::testing
