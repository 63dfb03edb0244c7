// The desktop's thumbnail cache and its thumbnailers, as Mosswick reads and writes them.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QBuffer>
#include <QElapsedTimer>
#include <QImage>
#include <QImageWriter>

#include "interaction/PreviewGenerator.h"
#include "interaction/ThumbnailFolder.h"
#include "interaction/Thumbnailers.h"
#include "support/TestFolders.h"

namespace mosswick::testing {
namespace {

using namespace std::chrono_literals;

QByteArray encoded(const QImage& image, const char* format) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format);
    writer.write(image);
    return buffer.data();
}

QImage filled(int width, int height, QColor colour) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

std::string bytesOf(const QByteArray& data) { return data.toStdString(); }

int modeOf(const std::filesystem::path& path) {
    struct stat info {};
    ::stat(path.c_str(), &info);
    return static_cast<int>(info.st_mode & 0777);
}

void setMtime(const std::filesystem::path& file, int secondsAgo) {
    std::filesystem::last_write_time(
        file, std::filesystem::file_time_type::clock::now() - std::chrono::seconds(secondsAgo));
}

// A thumbnailer script in a folder of its own, installed for `type`.
Thumbnailer script(const std::filesystem::path& folder, const std::string& name, const std::string& body,
                   const QString& type = QStringLiteral("application/x-mosswick-test")) {
    const auto file = folder / name;
    writeFile(file, "#!/bin/sh\n" + body + "\n");
    ::chmod(file.c_str(), 0755);
    Thumbnailer made;
    made.exec = QString::fromStdString(file.native()) + QStringLiteral(" -s %s %i %o");
    made.mimeTypes = {type};
    return made;
}

TEST(ThumbnailFolderTest, UrisAreTheOnesGLibProgramsCompute) {
    const struct {
        std::string path;
        QByteArray uri;
    } cases[] = {
        {"/home/jens/photos/me.png", "file:///home/jens/photos/me.png"},
        {"/tmp/a b.png", "file:///tmp/a%20b.png"},
        {"/tmp/r\xc3\xa9sum\xc3\xa9.pdf", "file:///tmp/r%C3%A9sum%C3%A9.pdf"},
        {"/tmp/\xff\xfe.bin", "file:///tmp/%FF%FE.bin"},
        {"/x/[1];#?%\"<>\\^`{|}\n", "file:///x/%5B1%5D%3B%23%3F%25%22%3C%3E%5C%5E%60%7B%7C%7D%0A"},
        {"/x/a+b,c=d@e$f&g:h~i!j*k'(l)_-.", "file:///x/a+b,c=d@e$f&g:h~i!j*k'(l)_-."},
    };
    for (const auto& c : cases) EXPECT_EQ(ThumbnailFolder::fileUri(c.path), c.uri) << c.path;
    // The thumbnail specification's own example.
    EXPECT_EQ(ThumbnailFolder("/c").pathOf(ThumbnailSize::normal, "file:///home/jens/photos/me.png"),
              "/c/normal/c6ee772d9e49320e97ec29a7eb5b1697.png");
}

TEST(ThumbnailFolderTest, SizeIsTheSmallestThatCoversThePixels) {
    const std::pair<int, ThumbnailSize> cases[] = {
        {52, ThumbnailSize::normal},    {128, ThumbnailSize::normal}, {129, ThumbnailSize::large},
        {192, ThumbnailSize::large},    {512, ThumbnailSize::xLarge}, {1024, ThumbnailSize::xxLarge},
        {4000, ThumbnailSize::xxLarge},
    };
    for (const auto& [pixels, size] : cases) EXPECT_EQ(ThumbnailFolder::sizeFor(pixels), size) << pixels;
}

TEST(ThumbnailFolderTest, AThumbnailStandsOnlyForTheVersionOfTheFileItWasMadeFor) {
    const auto root = freshFolder("cache-validity") / "thumbnails";
    const ThumbnailFolder cache(root);
    const ThumbnailKeys keys{"file:///tmp/photo.jpg", 1700000000, 1234, QStringLiteral("image/jpeg")};
    ASSERT_TRUE(cache.store(keys, ThumbnailSize::large, filled(256, 192, Qt::red)));

    const struct {
        const char* what;
        ThumbnailKeys asked;
        ThumbnailSize size;
        std::optional<QSize> found;
    } cases[] = {
        {"same file, same size", keys, ThumbnailSize::large, QSize(256, 192)},
        {"a larger thumbnail scaled down", keys, ThumbnailSize::normal, QSize(128, 96)},
        {"no larger one for a larger size", keys, ThumbnailSize::xLarge, std::nullopt},
        {"the file changed since",
         {keys.uri, keys.mtime + 1, 1234, keys.mimeType},
         ThumbnailSize::large,
         std::nullopt},
        {"another file",
         {"file:///tmp/other.jpg", keys.mtime, 1234, keys.mimeType},
         ThumbnailSize::large,
         std::nullopt},
    };
    for (const auto& c : cases) {
        const auto image = cache.lookup(c.asked, c.size);
        EXPECT_EQ(image.has_value(), c.found.has_value()) << c.what;
        if (image && c.found) {
            EXPECT_EQ(image->size(), *c.found) << c.what;
        }
    }

    // Written the way the thumbnail cache's rules ask: owner-only files in owner-only folders, nothing left
    // beside them.
    EXPECT_EQ(modeOf(root), 0700);
    EXPECT_EQ(modeOf(root / "large"), 0700);
    EXPECT_EQ(modeOf(cache.pathOf(ThumbnailSize::large, keys.uri)), 0600);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(root / "large"), {}), 1);

    EXPECT_FALSE(cache.hasFailure(keys));
    ASSERT_TRUE(cache.recordFailure(keys));
    EXPECT_TRUE(cache.hasFailure(keys));
    EXPECT_FALSE(cache.hasFailure({keys.uri, keys.mtime + 60, 1234, keys.mimeType}));
    EXPECT_TRUE(cache.failurePathOf(keys.uri).native().find("/fail/mosswick-") != std::string::npos);
}

TEST(ThumbnailersTest, ExecLinesBecomeArgumentListsWhateverTheNamesHold) {
    const QString hostile = QStringLiteral("/tmp/a b \"c\" 'd' $(touch x) `y` ;|&\n%i \\z.png");
    const ThumbnailerArguments args{hostile, QStringLiteral("/out dir/o.png"),
                                    QStringLiteral("file:///u%20v"), 128};
    const struct {
        const char* exec;
        std::optional<QStringList> expected;
    } cases[] = {
        {"thumb -s %s %i %o", QStringList{"thumb", "-s", "128", hostile, "/out dir/o.png"}},
        {"thumb --size=%s  %u\t%o", QStringList{"thumb", "--size=128", "file:///u%20v", "/out dir/o.png"}},
        {"\"/opt/my thumb\" \"%i\" 100%%", QStringList{"/opt/my thumb", hostile, "100%"}},
        {"thumb \"a \\\"quoted\\\" \\\\ word\"", QStringList{"thumb", "a \"quoted\" \\ word"}},
        {"thumb %f %F %k %i", QStringList{"thumb", "", "", "", hostile}},
        {"thumb \"unclosed %i", std::nullopt},
        {"   ", std::nullopt},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Thumbnailers::expand(QString::fromUtf8(c.exec), args), c.expected) << c.exec;
}

TEST(ThumbnailersTest, EntriesAreReadAndMatchedByType) {
    const struct {
        const char* text;
        bool valid;
    } cases[] = {
        {"[Thumbnailer Entry]\nTryExec=sh\nExec=sh -c x %i\nMimeType=application/pdf;application/x-pdf;\n",
         true},
        {"# comment\n[Other]\nExec=x\n[Thumbnailer Entry]\nExec=x %o\nMimeType=image/x;\n", true},
        {"[Thumbnailer Entry]\nMimeType=application/pdf;\n", false},
        {"[Thumbnailer Entry]\nExec=x %o\n", false},
        {"[Other]\nExec=x %o\nMimeType=image/x;\n", false},
    };
    for (const auto& c : cases) EXPECT_EQ(Thumbnailer::parse(c.text).has_value(), c.valid) << c.text;

    const auto folder = freshFolder("thumbnailer-entries");
    writeFile(folder / "b-pdf.thumbnailer", cases[0].text);
    writeFile(folder / "a-missing.thumbnailer",
              "[Thumbnailer Entry]\nTryExec=no-such-program-here\nExec=no-such-program-here %i "
              "%o\nMimeType=application/pdf;\n");
    writeFile(folder / "c-not-one.txt", cases[1].text);
    const Thumbnailers installed = Thumbnailers::load({folder, folder / "absent"});
    ASSERT_NE(installed.forType(QStringLiteral("application/x-pdf")), nullptr);
    EXPECT_EQ(installed.forType(QStringLiteral("application/pdf"))->tryExec, QStringLiteral("sh"));
    EXPECT_EQ(installed.forType(QStringLiteral("image/x")), nullptr);
}

class PreviewGeneratorTest : public ::testing::Test {
protected:
    void SetUp() override {
        folder = freshFolder(::testing::UnitTest::GetInstance()->current_test_info()->name());
        root = folder / "thumbnails";
    }
    PreviewGenerator generator(std::vector<Thumbnailer> thumbnailers = {},
                               std::filesystem::path cacheRoot = {}) {
        return PreviewGenerator(ThumbnailFolder(cacheRoot.empty() ? root : cacheRoot),
                                Thumbnailers(std::move(thumbnailers)), {200'000'000, 400ms});
    }
    std::optional<QImage> make(const PreviewGenerator& g, const std::filesystem::path& file,
                               const char* type) {
        return g.generate(file, QString::fromLatin1(type), ThumbnailSize::normal, notCancelled);
    }

    std::filesystem::path folder, root;
    std::atomic<bool> notCancelled{false};
};

TEST_F(PreviewGeneratorTest, ImagesArePicturedAtTheCacheSizeAndWrittenBack) {
    QImage twoColours(400, 300, QImage::Format_Mono);
    twoColours.setColorTable({qRgb(230, 0, 230), qRgb(255, 255, 255)});
    twoColours.fill(0);
    const struct {
        const char* name;
        const char* type;
        QByteArray bytes;
        QSize size;
        QColor colour;
    } cases[] = {
        {"big photo.jpg", "image/jpeg", encoded(filled(3000, 2000, Qt::blue), "jpg"), {128, 85}, Qt::blue},
        {"portrait.png", "image/png", encoded(filled(200, 400, Qt::green), "png"), {64, 128}, Qt::green},
        {"small.png", "image/png", encoded(filled(40, 30, Qt::red), "png"), {40, 30}, Qt::red},
        {"two colours.png", "image/png", encoded(twoColours, "png"), {128, 96}, QColor(230, 0, 230)},
    };
    for (const auto& c : cases) {
        const auto file = folder / c.name;
        writeFile(file, bytesOf(c.bytes));
        const auto image = make(generator(), file, c.type);
        ASSERT_TRUE(image) << c.name;
        EXPECT_EQ(image->size(), c.size) << c.name;
        const QColor centre = image->pixelColor(image->width() / 2, image->height() / 2);
        EXPECT_LT(std::abs(centre.red() - c.colour.red()) + std::abs(centre.green() - c.colour.green()) +
                      std::abs(centre.blue() - c.colour.blue()),
                  30)
            << c.name;
        const auto keys = ThumbnailKeys::of(file, QString::fromLatin1(c.type));
        const auto written = ThumbnailFolder(root).pathOf(ThumbnailSize::normal, keys->uri);
        EXPECT_TRUE(ThumbnailFolder::isValidFor(written, *keys)) << c.name;
        EXPECT_EQ(QImage(QString::fromStdString(written.native())).size(), c.size) << c.name;
    }
}

TEST_F(PreviewGeneratorTest, ACachedThumbnailIsUsedUntilTheFileChanges) {
    const auto picture = folder / "picture.png";
    writeFile(picture, bytesOf(encoded(filled(300, 300, Qt::blue), "png")));
    setMtime(picture, 100);
    const auto keys = ThumbnailKeys::of(picture, QStringLiteral("image/png"));
    ASSERT_TRUE(ThumbnailFolder(root).store(*keys, ThumbnailSize::normal, filled(128, 128, Qt::red)));

    EXPECT_EQ(make(generator(), picture, "image/png")->pixelColor(5, 5), QColor(Qt::red));
    setMtime(picture, 10);
    EXPECT_EQ(make(generator(), picture, "image/png")->pixelColor(5, 5), QColor(Qt::blue));
    // The stale entry was replaced by one for this version.
    EXPECT_TRUE(ThumbnailFolder::isValidFor(ThumbnailFolder(root).pathOf(ThumbnailSize::normal, keys->uri),
                                            *ThumbnailKeys::of(picture, QStringLiteral("image/png"))));
}

TEST_F(PreviewGeneratorTest, BadImagesGiveNoPictureAndAreNotTriedAgain) {
    const QByteArray png = encoded(filled(400, 400, Qt::green), "png");
    const QByteArray jpeg = encoded(filled(400, 400, Qt::green), "jpg");
    const struct {
        const char* name;
        const char* type;
        QByteArray bytes;
    } cases[] = {
        {"truncated.png", "image/png", png.left(png.size() / 2)},
        {"truncated.jpg", "image/jpeg", jpeg.left(200)},
        {"noise.png", "image/png", QByteArray(5000, '\x5a')},
        {"empty.png", "image/png", {}},
        // A few bytes that promise 3.6 billion pixels.
        {"bomb.ppm", "image/x-portable-pixmap", QByteArray("P6\n60000 60000\n255\n") + QByteArray(64, '\0')},
    };
    const PreviewGenerator g = generator();
    for (const auto& c : cases) {
        const auto file = folder / c.name;
        writeFile(file, bytesOf(c.bytes));
        QElapsedTimer timer;
        timer.start();
        EXPECT_FALSE(make(g, file, c.type)) << c.name;
        EXPECT_LT(timer.elapsed(), 2000) << c.name;
        EXPECT_TRUE(ThumbnailFolder(root).hasFailure(*ThumbnailKeys::of(file, QString::fromLatin1(c.type))))
            << c.name;
    }
}

TEST_F(PreviewGeneratorTest, ThumbnailersThatFailGiveNoPictureAndNeverHoldUpTheShelf) {
    // The thumbnailer gets: -s SIZE INPUT OUTPUT.
    const struct {
        const char* what;
        std::string body;
        bool pictured;
    } cases[] = {
        {"copies the picture it is given", "cp \"$3\" \"$4\"", true},
        {"hangs", "exec sleep 60", false},
        {"hangs in a child of its own", "sleep 60; cp \"$3\" \"$4\"", false},
        {"writes nothing", "exit 0", false},
        {"writes garbage", "echo garbage > \"$4\"", false},
        {"fails", "cp \"$3\" \"$4\"; exit 3", false},
    };
    // A name no shell could take in one piece, and bytes that are not UTF-8.
    const auto input = folder / "a b \"c\" $(touch pwned) \n\xff.test";
    writeFile(input, bytesOf(encoded(filled(64, 64, Qt::magenta), "png")));
    int index = 0;
    for (const auto& c : cases) {
        // A fresh version each time, so no earlier picture or failure record stands in; far apart,
        // as the times are counted back from now and a slow case must not meet the one before.
        setMtime(input, 1000 * (index + 1));
        const auto tools = folder / ("tools" + std::to_string(index++));
        const PreviewGenerator g = generator({script(tools, "thumb", c.body)});
        QElapsedTimer timer;
        timer.start();
        const auto image = make(g, input, "application/x-mosswick-test");
        EXPECT_LT(timer.elapsed(), 3000) << c.what;
        EXPECT_EQ(image.has_value(), c.pictured) << c.what;
        if (image) {
            EXPECT_EQ(image->pixelColor(3, 3), QColor(Qt::magenta)) << c.what;
        }
    }
    EXPECT_FALSE(std::filesystem::exists(folder / "pwned"));
    std::filesystem::remove(input);  // the sandbox is removed by a QString path, which cannot name it
}

TEST_F(PreviewGeneratorTest, AReadOnlyCacheStillGivesPictures) {
    // A file where the cache folder should be: nothing can be made below it (even by root).
    writeFile(folder / "blocked", "x");
    const auto picture = folder / "picture.png";
    writeFile(picture, bytesOf(encoded(filled(200, 100, Qt::yellow), "png")));
    const auto image = make(generator({}, folder / "blocked" / "thumbnails"), picture, "image/png");
    ASSERT_TRUE(image);
    EXPECT_EQ(image->size(), QSize(128, 64));
}

}  // namespace
}  // namespace mosswick::testing
