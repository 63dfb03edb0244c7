// Links, images and texts kept as files: their bytes, names and item fields.

#include "ingest/ContentItems.h"
#include "model/ItemStaging.h"
#include "model/LocalPath.h"
#include "support/IngestFixture.h"

namespace mosswick {
namespace {

using testing::FakePasteboard;
using testing::readFile;

class ContentItemsTest : public testing::IngestTest {
protected:
    ShelfItem only(const Pasteboard& pasteboard) {
        auto items = drop(pasteboard);
        EXPECT_EQ(items.size(), 1u);
        return items.empty() ? ShelfItem{} : items.front();
    }
    // The file lies directly in the item's own folder in the staging area.
    static void expectInItsFolder(const ShelfItem& item, const QString& name) {
        EXPECT_EQ(itemFile(item), ItemStaging::itemFolder(item.id) / name.toStdString());
    }
};

TEST_F(ContentItemsTest, ALinkBecomesADesktopEntryNamedByItsTitle) {
    FakePasteboard pasteboard;
    pasteboard.withUrl(QStringLiteral("https://example.com/a b?q=\"x\""));
    pasteboard.linkTitle = QStringLiteral(" Docs: \\ intro\nand\tmore ");

    const ShelfItem item = only(pasteboard);
    expectInItsFolder(item, QStringLiteral("Docs- \\ intro\nand\tmore.desktop"));
    EXPECT_EQ(readFile(itemFile(item)),
              "[Desktop Entry]\n"
              "Type=Link\n"
              "Name=\\sDocs: \\\\ intro\\nand\\tmore\\s\n"
              "URL=https://example.com/a%20b?q=%22x%22\n"
              "Icon=text-html\n");
    EXPECT_EQ(item.displayName, *pasteboard.linkTitle) << "shown as it came, untrimmed";
    EXPECT_EQ(item.webURL, QUrl(QStringLiteral("https://example.com/a b?q=\"x\"")));
    EXPECT_EQ(item.contentTypeIdentifier, QStringLiteral("application/x-desktop"));
    EXPECT_EQ(item.byteSize, static_cast<qint64>(std::filesystem::file_size(itemFile(item))));
    EXPECT_EQ(item.addedAt, Timestamp::fromDateTime(now));
}

TEST_F(ContentItemsTest, ALinkWithoutATitleIsNamedByItsHostElseLink) {
    FakePasteboard withHost;
    withHost.withUrl(QStringLiteral("https://news.example.org/today"));
    EXPECT_EQ(only(withHost).displayName, QStringLiteral("news.example.org"));

    FakePasteboard withoutHost;
    withoutHost.withUrl(QStringLiteral("mailto:someone@example.org"));
    const ShelfItem item = only(withoutHost);
    EXPECT_EQ(item.displayName, QStringLiteral("Link"));
    expectInItsFolder(item, QStringLiteral("Link.desktop"));
    EXPECT_NE(readFile(itemFile(item)).find("URL=mailto:someone@example.org\n"), std::string::npos);
}

TEST_F(ContentItemsTest, APdfWithoutAnImageIsKeptAsItCameNamedByTheMoment) {
    FakePasteboard pasteboard;
    pasteboard.pdf = QByteArrayLiteral("%PDF-1.4\n%\xe2\xe3\n1 0 obj\n");
    pasteboard.plainText = QStringLiteral("the page's words");

    const ShelfItem item = only(pasteboard);
    expectInItsFolder(item, QStringLiteral("Document 2024-05-01 at 13.07.09.pdf"));
    EXPECT_EQ(item.contentTypeIdentifier, QStringLiteral("application/pdf"));
    EXPECT_EQ(readFile(itemFile(item)), pasteboard.pdf.toStdString());
}

TEST_F(ContentItemsTest, ATextIsKeptWholeAndUntrimmedAsUtf8) {
    const QString text = QStringLiteral("\n  Grüße/Hello: x  \r\nzweite Zeile \u2603\n\n");
    FakePasteboard pasteboard;
    pasteboard.withText(text);

    const ShelfItem item = only(pasteboard);
    expectInItsFolder(item, QStringLiteral("Grüße-Hello- x.txt"));
    EXPECT_EQ(item.displayName, QStringLiteral("Grüße-Hello- x.txt"));
    EXPECT_EQ(readFile(itemFile(item)), text.toUtf8().toStdString());
    EXPECT_EQ(item.byteSize, text.toUtf8().size());
    EXPECT_EQ(item.contentTypeIdentifier, QStringLiteral("text/plain"));
}

TEST_F(ContentItemsTest, BlankTextGivesNothingAndTextThatIsNotUnicodeIsRefusedAndSaidSo) {
    FakePasteboard blank, broken;
    blank.withText(QStringLiteral("  \n\t\r\n \u2029 "));
    broken.withText(QStringLiteral("half a pair: ") + QChar(0xD800));
    EXPECT_TRUE(drop(blank).empty());
    EXPECT_TRUE(log.warnings().isEmpty());
    EXPECT_TRUE(drop(broken).empty());
    EXPECT_EQ(log.warnings().size(), 1);
    EXPECT_TRUE(store.items().empty());
}

TEST_F(ContentItemsTest, AHundredMegabyteTextIsKeptWhole) {
    QString text(100 * 1024 * 1024, QLatin1Char('a'));
    text.replace(0, 5, QStringLiteral("Big: "));
    FakePasteboard pasteboard;
    pasteboard.withText(text);

    const ShelfItem waiting = only(pasteboard);
    EXPECT_TRUE(waiting.isPromised) << "written off the main thread, so the drop returns at once";
    finishBackgroundWork();
    const ShelfItem* item = onShelf(waiting.id);
    ASSERT_TRUE(item);
    EXPECT_FALSE(item->isPromised);
    EXPECT_EQ(std::filesystem::file_size(itemFile(*item)), 100u * 1024 * 1024);
    EXPECT_EQ(item->byteSize, 100 * 1024 * 1024);
}

TEST_F(ContentItemsTest, ALongTextOfferedAsBytesIsDecodedOffTheMainThreadWithTheUsersLineEnds) {
    QByteArray canonical = QByteArrayLiteral("Minutes: 3\r\n");
    while (canonical.size() < ContentItems::kLongText) canonical.append("line one\r\nline \xc3\xa4\r\n");
    FakePasteboard pasteboard;
    pasteboard.rawText = PlainText{canonical, false, true};

    const ShelfItem waiting = only(pasteboard);
    EXPECT_EQ(waiting.displayName, QStringLiteral("Minutes- 3.txt")) << "named by its first line";
    EXPECT_TRUE(waiting.isPromised);
    finishBackgroundWork();
    const ShelfItem* item = onShelf(waiting.id);
    ASSERT_TRUE(item);
    EXPECT_EQ(readFile(itemFile(*item)), QByteArray(canonical).replace("\r\n", "\n").toStdString());
}

TEST_F(ContentItemsTest, LineEndsAreMadeTheSystemsOwnAndNothingElseChanges) {
    const struct {
        QByteArray bytes;
        bool isLatin1, canonical;
        QString text;
    } rows[] = {
        {"a\r\nb\r\n", false, true, QStringLiteral("a\nb\n")},
        {"lone\rcarriage\r", false, true, QStringLiteral("lone\rcarriage\r")},
        {"\r\r\n\r\n\n", false, true, QStringLiteral("\r\n\n\n")},
        {"kept\r\nas is", false, false, QStringLiteral("kept\r\nas is")},
        {"caf\xe9\r\n", true, true, QStringLiteral("caf\u00e9\n")},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(PlainText({row.bytes, row.isLatin1, row.canonical}).decoded(), row.text)
            << row.bytes.toStdString();
    }
}

TEST_F(ContentItemsTest, AFileThatCannotBeWrittenLosesNothingAlreadyOnTheShelfAndIsLogged) {
    FakePasteboard first;
    first.withText(QStringLiteral("kept"));
    drop(first);

    {
        const testing::StagingAreaBlocked blocked;
        FakePasteboard second;
        second.withText(QStringLiteral("lost"));
        EXPECT_TRUE(drop(second).empty());
    }

    ASSERT_EQ(store.items().size(), 1u);
    EXPECT_EQ(store.items()[0].displayName, QStringLiteral("kept.txt"));
    EXPECT_TRUE(std::filesystem::exists(itemFile(store.items()[0])));
    EXPECT_EQ(log.warnings().size(), 1);
}

}  // namespace
}  // namespace mosswick
