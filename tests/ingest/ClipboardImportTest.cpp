// Adding the clipboard's contents: what is added, and when the beep is all there is.
#include "ingest/ClipboardImport.h"
#include "support/IngestFixture.h"

namespace mosswick {
namespace {

using testing::FakePasteboard;

class ClipboardImportTest : public testing::IngestTest {
protected:
    bool import() {
        return ClipboardImport::addContentsOfClipboard(
            {[this] { return std::make_unique<FakePasteboard>(clipboard); }, [this] { ++beeps; },
             [this] { ++summons; }, services});
    }

    FakePasteboard clipboard;
    int beeps = 0;
    int summons = 0;
};

TEST_F(ClipboardImportTest, WhenNothingCanBeAddedItBeepsAndTouchesNothing) {
    FakePasteboard first;
    first.withText(QStringLiteral("on the shelf before"));
    drop(first);

    // Nothing of use on offer; then styled text, which passes the check and yields nothing here.
    for (const QStringList& offered : {QStringList(), QStringList{QStringLiteral("text/rtf")}}) {
        clipboard.offeredTypes = offered;
        EXPECT_FALSE(import()) << offered.join(' ').toStdString();
    }
    EXPECT_EQ(beeps, 2);
    EXPECT_EQ(summons, 0);
    EXPECT_EQ(store.items().size(), 1u);
}

TEST_F(ClipboardImportTest, CopiedFilesGoOnTopInOrderAsOneBatchAndTheShelfComesUp) {
    const auto folder = testing::freshFolder("copied");
    testing::writeFile(folder / "one.txt", "1");
    testing::writeFile(folder / "two.txt", "2");
    FakePasteboard first;
    first.withText(QStringLiteral("older"));
    drop(first);
    clipboard.offeredTypes = {QStringLiteral("x-special/gnome-copied-files")};
    clipboard.withFile(folder / "one.txt").withFile(folder / "two.txt");

    EXPECT_TRUE(import());
    EXPECT_EQ(beeps, 0);
    EXPECT_EQ(summons, 1);
    ASSERT_EQ(store.items().size(), 3u);
    EXPECT_EQ(store.items()[0].displayName, QStringLiteral("one.txt"));
    EXPECT_EQ(store.items()[1].displayName, QStringLiteral("two.txt"));
    ASSERT_TRUE(store.items()[0].batchID);
    EXPECT_EQ(store.items()[0].batchID, store.items()[1].batchID);
}

}  // namespace
}  // namespace mosswick
