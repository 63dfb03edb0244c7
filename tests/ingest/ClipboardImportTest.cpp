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

TEST_F(ClipboardImportTest, AnEmptyClipboardBeepsAndTouchesNothing) {
    FakePasteboard first;
    first.withText(QStringLiteral("on the shelf before"));
    drop(first);

    EXPECT_FALSE(import());
    EXPECT_EQ(beeps, 1);
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

TEST_F(ClipboardImportTest, StyledTextAlonePassesTheCheckYieldsNothingAndBeeps) {
    clipboard.offeredTypes = {QStringLiteral("text/rtf")};
    EXPECT_TRUE(ClipboardImport::clipboardHasSomethingToAdd(clipboard));
    EXPECT_FALSE(import());
    EXPECT_EQ(beeps, 1);
    EXPECT_EQ(summons, 0);
    EXPECT_TRUE(store.items().empty());
}

TEST_F(ClipboardImportTest, TypesAreRecognisedWhateverTheirSpelling) {
    clipboard.offeredTypes = {QStringLiteral("TEXT/PLAIN; charset=UTF-8")};
    clipboard.withText(QStringLiteral("copied words"));
    EXPECT_TRUE(import());
    ASSERT_EQ(store.items().size(), 1u);
    EXPECT_EQ(store.items()[0].displayName, QStringLiteral("copied words.txt"));

    clipboard.offeredTypes = {QStringLiteral("application/x-something-else")};
    EXPECT_FALSE(ClipboardImport::clipboardHasSomethingToAdd(clipboard));
}

}  // namespace
}  // namespace mosswick
