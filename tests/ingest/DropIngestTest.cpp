// The order in which a pasteboard is read, and which items share a batch.
#include <QImage>

#include "support/FakeFilePromise.h"
#include "support/IngestFixture.h"

namespace mosswick {
namespace {

using testing::FakeFilePromise;
using testing::FakePasteboard;

class DropIngestTest : public testing::IngestTest {
protected:
    std::filesystem::path file(const std::string& name) {
        const auto path = folder / name;
        testing::writeFile(path, "contents of " + name);
        return path;
    }
    static QImage redSquare() {
        QImage image(4, 4, QImage::Format_RGB32);
        image.fill(Qt::red);
        return image;
    }
    static std::shared_ptr<FakeFilePromise> promise() {
        return std::make_shared<FakeFilePromise>(QStringList{QStringLiteral("application/pdf")},
                                                 std::vector<QByteArray>{"Invoice.pdf"});
    }

    std::filesystem::path folder = testing::freshFolder("drops");
};

TEST_F(DropIngestTest, FilesWinOverEverythingElseOnThePasteboard) {
    FakePasteboard pasteboard;
    pasteboard.withFile(file("a.txt")).withUrl(QStringLiteral("https://example.com/")).withImage(redSquare());
    pasteboard.withText(QStringLiteral("some text"));
    pasteboard.linkTitle = QStringLiteral("Example");

    const auto items = drop(pasteboard);
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(items[0].displayName, QStringLiteral("a.txt"));
    EXPECT_FALSE(items[0].webURL);
}

TEST_F(DropIngestTest, EachLaterStepRunsOnlyWhenTheEarlierOnesGaveNothing) {
    FakePasteboard linkImageText;
    linkImageText.withUrl(QStringLiteral("https://example.com/"))
        .withImage(redSquare())
        .withText(QStringLiteral("t"));
    auto items = drop(linkImageText);
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(items[0].webURL, QUrl(QStringLiteral("https://example.com/")));

    FakePasteboard imageText;
    imageText.withImage(redSquare()).withText(QStringLiteral("t"));
    items = drop(imageText);
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(items[0].contentTypeIdentifier, QStringLiteral("image/png"));

    // An image that does not decode gives nothing; the text still comes through.
    FakePasteboard brokenImageText;
    brokenImageText.imageBytes = "\x89PNG but not really";
    brokenImageText.withText(QStringLiteral("fallback"));
    items = drop(brokenImageText);
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(items[0].displayName, QStringLiteral("fallback.txt"));

    EXPECT_TRUE(drop(FakePasteboard()).empty());
}

TEST_F(DropIngestTest, AFileStepThatSkipsEveryObjectFallsThrough) {
    FakePasteboard pasteboard;
    // A file on another machine, and one whose name hides a slash: neither is a file here.
    pasteboard.withUrl(QStringLiteral("file://elsewhere/home/a.txt"))
        .withUrl(QStringLiteral("file:///tmp/a%2Fb"));
    pasteboard.withText(QStringLiteral("what was meant"));
    const auto items = drop(pasteboard);
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(items[0].displayName, QStringLiteral("what was meant.txt"));
}

TEST_F(DropIngestTest, PromisesAreTakenOnlyWhereAccepted) {
    auto offered = promise();
    FakePasteboard pasteboard;
    pasteboard.withPromise(offered).withText(QStringLiteral("the text beside it"));

    auto items = drop(pasteboard, false);
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(items[0].displayName, QStringLiteral("the text beside it.txt"));
    EXPECT_FALSE(offered->wasAsked());

    items = drop(pasteboard, true);
    ASSERT_EQ(items.size(), 1u);
    EXPECT_TRUE(items[0].isPromised);
    EXPECT_TRUE(offered->wasAsked());
}

// One file alone, and several files, are shown by the desktop tests; a file and a promise are not.
TEST_F(DropIngestTest, OneDropOfSeveralObjectsSharesOneBatch) {
    FakePasteboard fileAndPromise;
    fileAndPromise.withFile(file("c.txt")).withPromise(promise());
    const auto mixed = drop(fileAndPromise);
    ASSERT_EQ(mixed.size(), 2u);
    ASSERT_TRUE(mixed[0].batchID);
    EXPECT_EQ(mixed[0].batchID, mixed[1].batchID);

    // Counted before skipping: the file from elsewhere still made this a drop of two.
    FakePasteboard withSkipped;
    withSkipped.withFile(file("d.txt")).withUrl(QStringLiteral("file://elsewhere/e.txt"));
    const auto kept = drop(withSkipped);
    ASSERT_EQ(kept.size(), 1u);
    EXPECT_TRUE(kept[0].batchID);
}

TEST_F(DropIngestTest, LinksImagesAndTextsNeverCarryABatch) {
    FakePasteboard link;
    link.withUrl(QStringLiteral("https://a.example/")).withUrl(QStringLiteral("https://b.example/"));
    const auto items = drop(link);
    ASSERT_EQ(items.size(), 1u) << "only the first web link is taken";
    EXPECT_FALSE(items[0].batchID);
    EXPECT_EQ(items[0].webURL, QUrl(QStringLiteral("https://a.example/")));
}

}  // namespace
}  // namespace mosswick
