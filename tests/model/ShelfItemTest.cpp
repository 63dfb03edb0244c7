#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>

#include "model/FileBookmark.h"
#include "model/LocalPath.h"
#include "model/ShelfItem.h"
#include "model/ShelfSaveFile.h"
#include "ModelTestHelpers.h"

using namespace mosswick;
using mosswick::testing::freshFolder;
using mosswick::testing::writeFile;
namespace fs = std::filesystem;

namespace {

const char* const kId = "6F1C2B7E-2D6B-4E0A-8D2F-3C1B9A7E5D40";

// A record holding "id" and "displayName" plus `members`.
QJsonValue record(const std::string& members) {
    const std::string json =
        std::string(R"({"id": ")") + kId + R"(", "displayName": "Report.pdf")" + members + "}";
    return QJsonDocument::fromJson(QByteArray::fromStdString(json)).object();
}

QJsonValue object(const char* json) { return QJsonDocument::fromJson(json).object(); }

ShelfItem fullItem(const fs::path& origin, const fs::path& staged) {
    ShelfItem item;
    item.id = QUuid::createUuid();
    item.displayName = QStringLiteral(u"caf\uFFFD.txt");
    item.originURL = LocalPath::toUrl(origin);
    item.originBookmark = QByteArray("\x00\xff", 2);
    item.stagedURL = LocalPath::toUrl(staged);
    item.contentTypeIdentifier = QStringLiteral("text/plain");
    item.byteSize = (qint64(1) << 53) + 1;  // beyond what a double holds
    item.addedAt = Timestamp{785000000.25};
    item.webURL = QUrl("https://example.com/a?b=c");
    item.isPromised = true;
    item.batchID = QUuid::createUuid();
    return item;
}

}  // namespace

TEST(ShelfItemJson, MissingAndNullOptionalsTakeTheirDefaults) {
    for (const char* members : {"", R"(, "originURL": null, "originBookmark": null, "stagedURL": null,
            "contentTypeIdentifier": null, "byteSize": null, "addedAt": null, "webURL": null,
            "isPromised": null, "batchID": null, "unknownKey": [1])"}) {
        const Timestamp before = Timestamp::now();
        const auto item = ShelfItem::fromJson(record(members));
        ASSERT_TRUE(item) << members;
        EXPECT_EQ(uuidString(item->id), kId);
        EXPECT_EQ(item->displayName, "Report.pdf");
        EXPECT_FALSE(item->originURL || item->originBookmark || item->stagedURL || item->webURL ||
                     item->batchID);
        EXPECT_EQ(item->contentTypeIdentifier, "application/octet-stream");
        EXPECT_EQ(item->byteSize, 0);
        EXPECT_FALSE(item->isPromised);
        EXPECT_GE(item->addedAt, before);
        EXPECT_LE(item->addedAt, Timestamp::now());
    }
    EXPECT_EQ(
        ShelfItem::fromJson(object(R"({"id": "6f1c2b7e-2d6b-4e0a-8d2f-3c1b9a7e5d40", "displayName": ""})"))
            ->id,
        QUuid::fromString(QLatin1StringView(kId)));
}

TEST(ShelfItemJson, AWrongOrMissingValueFailsTheWholeItemAndSaysWhy) {
    std::vector<QJsonValue> refused;
    for (const char* members :
         {R"(, "byteSize": "12")", R"(, "byteSize": 12.5)", R"(, "byteSize": 9223372036854775808)",
          R"(, "byteSize": true)", R"(, "addedAt": "2024-01-01")", R"(, "isPromised": 1)",
          R"(, "originURL": "relative/path")", R"(, "originURL": "file:///a b")", R"(, "originURL": 5)",
          R"(, "originBookmark": "AAE")", R"(, "originBookmark": "A@==")", R"(, "stagedURL": "")",
          R"(, "webURL": {})", R"(, "webURL": "https://a/\ud800")", R"(, "batchID": "nope")",
          R"(, "batchID": "{0B3E5E38-7C0F-4B8A-9C55-7E6A7C7F0C11}")",
          R"(, "batchID": "0B3E5E387C0F4B8A9C557E6A7C7F0C11")", R"(, "contentTypeIdentifier": 3)"}) {
        refused.push_back(record(members));
    }
    for (const char* json : {R"({"id": "6F1C2B7E-2D6B-4E0A-8D2F-3C1B9A7E5D40"})",
                             R"({"id": null, "displayName": "a"})", R"({"id": "x", "displayName": "a"})",
                             R"({"id": "6F1C2B7E-2D6B-4E0A-8D2F-3C1B9A7E5D40", "displayName": 5})"}) {
        refused.push_back(object(json));
    }
    QJsonObject infinite = fullItem("/a", "/b").toJson();
    infinite.insert(QStringLiteral("addedAt"), std::numeric_limits<double>::infinity());
    refused.insert(refused.end(), {infinite, QStringLiteral("item")});

    const mosswick::testing::CategoryWarnings log("mosswick.store");
    for (const QJsonValue& json : refused)
        EXPECT_FALSE(ShelfItem::fromJson(json)) << QJsonDocument(json.toObject()).toJson().constData();
    EXPECT_EQ(log.warnings().size(), qsizetype(refused.size()));
    EXPECT_TRUE(log.warnings().front().contains("byteSize")) << log.warnings().front().toStdString();
}

TEST(ShelfItemJson, WritesOnlyWhatIsSetInTheSavedForms) {
    ShelfItem bare;
    bare.id = QUuid::fromString(QLatin1StringView(kId));
    EXPECT_EQ(bare.toJson().keys(), QStringList({"addedAt", "byteSize", "contentTypeIdentifier",
                                                 "displayName", "id", "isPromised"}));

    const ShelfItem item = fullItem("/home/u/caf\xe9.txt", "/staged/two\nlines");
    const QByteArray saved = ShelfSaveFile::encode({item});
    for (const QByteArray& expected : std::vector<QByteArray>{
             R"("byteSize": 9007199254740993)", R"("addedAt": 785000000.25)", R"("originBookmark": "AP8=")",
             R"("originURL": "file:///home/u/caf%E9.txt")", R"("stagedURL": "file:///staged/two%0Alines")",
             R"("isPromised": true)", "\"id\": \"" + uuidString(item.id).toLatin1() + '"'}) {
        EXPECT_TRUE(saved.contains(expected)) << expected.constData() << "\n" << saved.constData();
    }
    EXPECT_EQ(uuidString(item.id), uuidString(item.id).toUpper());
    const auto readBack = ShelfSaveFile::decode(saved);
    ASSERT_TRUE(readBack && readBack->size() == 1);
    EXPECT_EQ(readBack->front(), item);
}

TEST(ShelfItemJson, ABadElementDoesNotSpoilTheSavedArray) {
    const ShelfItem first = fullItem("/a", "/b"), second = fullItem("/c", "/d");
    QJsonArray array{first.toJson(), QJsonObject{{"id", "bad"}}, 5, second.toJson()};
    const auto items = ShelfSaveFile::decode(QJsonDocument(array).toJson());
    ASSERT_TRUE(items);
    EXPECT_EQ(*items, (std::vector<ShelfItem>{first, second}));
}

class ShelfItemFiles : public ::testing::Test {
protected:
    fs::path folder = freshFolder("item-files"), staged = freshFolder("item-staged") / "two\nlines.txt";
};

TEST_F(ShelfItemFiles, DragPrefersTheOriginalWhereverItWentAndPreviewTheCopy) {
    // A Latin-1 original and a staged copy with a newline in its name, read back as at a relaunch.
    const fs::path original = folder / "caf\xe9.txt";
    writeFile(original, "original");
    writeFile(staged, "copy");
    ShelfItem saved = fullItem(original, staged);
    saved.originBookmark = FileBookmark::create(original);
    const ShelfItem item = ShelfSaveFile::decode(ShelfSaveFile::encode({saved})).value().at(0);
    EXPECT_EQ(item.dragURL(), LocalPath::toUrl(original));
    EXPECT_EQ(item.previewURL(), LocalPath::toUrl(staged));
    EXPECT_FALSE(item.isDirectory());

    fs::rename(original, folder / "renamed.txt");
    writeFile(original, "a newcomer");  // whatever is at the old path wins over the bookmark
    EXPECT_EQ(item.dragURL(), item.originURL);
    fs::remove(original);
    EXPECT_EQ(item.dragURL(), LocalPath::toUrl(folder / "renamed.txt"));
    EXPECT_EQ(item.reachableOriginURL(), LocalPath::toUrl(folder / "renamed.txt"));

    fs::remove(folder / "renamed.txt");
    EXPECT_FALSE(item.reachableOriginURL());
    EXPECT_EQ(item.dragURL(), LocalPath::toUrl(staged));
    EXPECT_EQ(item.previewURL(), LocalPath::toUrl(staged));
    fs::remove(staged);
    EXPECT_FALSE(item.dragURL() || item.previewURL() || item.isDirectory());
}

TEST_F(ShelfItemFiles, AFolderFoundThroughItsBookmarkIsADirectoryUrl) {
    fs::create_directories(folder / "Album");
    ShelfItem item = fullItem(folder / "Album", staged);
    item.originBookmark = FileBookmark::create(folder / "Album/");
    fs::rename(folder / "Album", folder / "Album 2");
    EXPECT_EQ(item.dragURL()->toEncoded(), LocalPath::toUrl(folder / "Album 2").toEncoded() + '/');
    EXPECT_TRUE(item.isDirectory());
}
