// Files a drag source delivers after the drop: the placeholder, and what becomes of it.
#include "model/ItemStaging.h"
#include "model/LocalPath.h"
#include "support/FakeFilePromise.h"
#include "support/IngestFixture.h"

namespace mosswick {
namespace {

namespace fs = std::filesystem;
using testing::FakeFilePromise;
using testing::FakePasteboard;

class PromisedItemsTest : public testing::IngestTest {
protected:
    ShelfItem dropPromise(const std::shared_ptr<FakeFilePromise>& promise) {
        FakePasteboard pasteboard;
        pasteboard.withPromise(promise);
        auto items = drop(pasteboard);
        EXPECT_EQ(items.size(), 1u);
        return items.empty() ? ShelfItem{} : items.front();
    }
    static std::shared_ptr<FakeFilePromise> promise(QStringList types, std::vector<QByteArray> names) {
        return std::make_shared<FakeFilePromise>(std::move(types), std::move(names));
    }
};

TEST_F(PromisedItemsTest, APlaceholderStandsInAtOnceAndTheArrivedFileCompletesIt) {
    auto offered = promise({QStringLiteral("application/pdf")}, {"Invoice.pdf"});
    const ShelfItem placeholder = dropPromise(offered);
    EXPECT_TRUE(placeholder.isPromised);
    EXPECT_EQ(placeholder.displayName, QStringLiteral("Invoice.pdf"));
    EXPECT_EQ(placeholder.contentTypeIdentifier, QStringLiteral("application/pdf"));
    EXPECT_EQ(placeholder.byteSize, 0);
    EXPECT_FALSE(placeholder.stagedURL || placeholder.originURL);
    ASSERT_TRUE(offered->destination());
    EXPECT_EQ(offered->destination()->folder, ItemStaging::itemFolder(placeholder.id));
    EXPECT_EQ(offered->destination()->fileName, "Invoice.pdf");

    offered->deliver(offered->write("%PDF-1.4 a small invoice"));
    EXPECT_TRUE(updates.empty()) << "measured off the main thread first";
    finishBackgroundWork();

    ASSERT_EQ(updates.size(), 1u);
    const ShelfItem* arrived = onShelf(placeholder.id);
    ASSERT_TRUE(arrived);
    EXPECT_FALSE(arrived->isPromised);
    EXPECT_EQ(arrived->displayName, QStringLiteral("Invoice.pdf"));
    EXPECT_EQ(itemFile(*arrived), ItemStaging::itemFolder(placeholder.id) / "Invoice.pdf");
    EXPECT_EQ(arrived->byteSize, 24);
    EXPECT_EQ(arrived->contentTypeIdentifier, QStringLiteral("application/pdf"));
}

TEST_F(PromisedItemsTest, AFileDeliveredUnderTheSourcesOwnNameIsShownByThatName) {
    auto offered = promise({}, {"entry"});
    const ShelfItem placeholder = dropPromise(offered);
    offered->deliver(offered->write("hello", "README.md"));
    finishBackgroundWork();
    ASSERT_TRUE(onShelf(placeholder.id));
    EXPECT_EQ(onShelf(placeholder.id)->displayName, QStringLiteral("README.md"));
    EXPECT_EQ(onShelf(placeholder.id)->contentTypeIdentifier, QStringLiteral("text/markdown"));
}

TEST_F(PromisedItemsTest, AFailedPromiseLeavesTheShelfWithoutAWayBack) {
    auto offered = promise({}, {"photo.jpg"});
    const ShelfItem placeholder = dropPromise(offered);
    ASSERT_TRUE(onShelf(placeholder.id));
    offered->fail(QStringLiteral("the source gave up"));
    EXPECT_FALSE(onShelf(placeholder.id));
    EXPECT_TRUE(store.removalHistory().empty());
    EXPECT_FALSE(fs::exists(ItemStaging::itemFolder(placeholder.id)));
    ASSERT_EQ(log.warnings().size(), 1);
    EXPECT_TRUE(log.warnings()[0].contains(QLatin1String("the source gave up")));
}

TEST_F(PromisedItemsTest, NamelessPromisesAreCalledIncomingWithTheTypesExtension) {
    EXPECT_EQ(dropPromise(promise({QStringLiteral("application/pdf")}, {})).displayName,
              QStringLiteral("Incoming.pdf"));
    EXPECT_EQ(dropPromise(promise({}, {})).displayName, QStringLiteral("Incoming"));
    const ShelfItem unknown = dropPromise(promise({QStringLiteral("application/x-no-such-type")}, {""}));
    EXPECT_EQ(unknown.displayName, QStringLiteral("Incoming"));
    EXPECT_EQ(unknown.contentTypeIdentifier, QStringLiteral("application/octet-stream"));
}

TEST_F(PromisedItemsTest, WithNowhereToReceiveTheFileThePlaceholderStaysAndItIsLogged) {
    auto offered = promise({}, {"kept waiting.txt"});
    ShelfItem placeholder;
    {
        const testing::StagingAreaBlocked blocked;
        placeholder = dropPromise(offered);
    }

    EXPECT_FALSE(offered->wasAsked());
    ASSERT_TRUE(onShelf(placeholder.id));
    EXPECT_TRUE(onShelf(placeholder.id)->isPromised);
    EXPECT_EQ(log.warnings().size(), 1);
}

}  // namespace
}  // namespace mosswick
