#include "model/JsonDefaultsStore.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <limits>
#include <sys/stat.h>

#include "DefaultsValueAssertions.h"
#include "ModelTestHelpers.h"

namespace mosswick {
namespace {

using testing::sameValue;
namespace fs = std::filesystem;

struct SettingsWarnings : testing::CategoryWarnings {
    SettingsWarnings() : CategoryWarnings("mosswick.settings") {}
};

class JsonDefaultsStoreTest : public ::testing::Test {
protected:
    void SetUp() override {
        const char* name = ::testing::UnitTest::GetInstance()->current_test_info()->name();
        folder = testing::freshFolder(name) / "Mosswick";
        file = folder / "settings.json";
    }
    QJsonObject fileObject() const {
        return QJsonDocument::fromJson(QByteArray::fromStdString(testing::readFile(file))).object();
    }

    fs::path folder;
    fs::path file;
};

TEST_F(JsonDefaultsStoreTest, EveryValueTypeSurvivesARestart) {
    const qint64 largest = std::numeric_limits<qint64>::max(), smallest = std::numeric_limits<qint64>::min();
    const QString text = QStringLiteral("Grüße, 日本 🙂 \"quoted\"\n");
    const QByteArray blob("\0\xff\x80{\"data\"}", 11);
    const std::tuple<const char*, DefaultsValue, DefaultsValue> rows[] = {
        {"false", false, false},
        {"largest", largest, largest},
        {"smallest", smallest, smallest},
        {"fraction", 0.1, 0.1},
        {"beyond integers", 1e300, 1e300},
        {"whole double", 2.0, qint64(2)},  // JSON itself does not tell 2.0 from 2
        {"text", text, text},
        {"list", QStringList{"org.gnome.Nautilus", text, ""}, QStringList{"org.gnome.Nautilus", text, ""}},
        {"empty list", QStringList(), QStringList()},
        {"blob", blob, blob},
        {"empty blob", QByteArray(), QByteArray()},
    };
    JsonDefaultsStore store(file);
    for (const auto& [key, stored, read] : rows) store.setValue(key, stored);

    const JsonDefaultsStore reopened(file);
    for (const auto& [key, stored, read] : rows) {
        EXPECT_TRUE(sameValue(store.value(key), read)) << key << " as set";
        EXPECT_TRUE(sameValue(reopened.value(key), read)) << key << " after a restart";
    }
    // Other tools see JSON's own types and a blob as {"data": base64}.
    const QJsonObject json = fileObject();
    EXPECT_TRUE(json["false"].isBool());
    EXPECT_EQ(json["largest"].toInteger(), largest);
    EXPECT_EQ(json["list"].toArray().size(), 3);
    EXPECT_EQ(json["blob"].toObject(), QJsonObject({{"data", "AP+AeyJkYXRhIn0="}}));
}

TEST_F(JsonDefaultsStoreTest, MissingFileIsEmptyAndOnlyCreatedByAWrite) {
    JsonDefaultsStore store(file);
    EXPECT_FALSE(store.value("position"));
    EXPECT_FALSE(fs::exists(folder));

    store.setValue("position", QStringLiteral("leftTop"));
    struct stat info {};
    ASSERT_EQ(::stat(folder.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0700u);
    ASSERT_EQ(::stat(file.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0077, 0u);
}

TEST_F(JsonDefaultsStoreTest, CorruptFileReadsAsEmptyAndIsKeptAsideBeforeTheFirstWrite) {
    const std::string contents[] = {
        R"({"position": "leftTop",)",  // cut short
        R"(["position", "leftTop"])",  // not an object
        R"({"position": "leftTop"} {})",
        std::string("\x00\xff\xfe garbage", 11),
    };
    // Each file kept aside earlier must survive the next one being kept aside.
    const std::string aside[] = {"settings.json.corrupt", "settings.json.corrupt.2",
                                 "settings.json.corrupt.3", "settings.json.corrupt.4"};
    for (size_t i = 0; i < std::size(contents); ++i) {
        SCOPED_TRACE(contents[i]);
        testing::writeFile(file, contents[i]);
        SettingsWarnings log;

        JsonDefaultsStore store(file);
        EXPECT_FALSE(store.value("position"));
        EXPECT_FALSE(log.warnings().isEmpty());
        EXPECT_EQ(testing::readFile(file), contents[i]) << "reading alone changes nothing";

        store.setValue("size", QStringLiteral("standard"));
        for (size_t j = 0; j <= i; ++j) EXPECT_EQ(testing::readFile(folder / aside[j]), contents[j]);
        EXPECT_TRUE(sameValue(JsonDefaultsStore(file).value("size"), QStringLiteral("standard")));
    }
}

TEST_F(JsonDefaultsStoreTest, MembersOfUnknownTypesAreSkippedButStayInTheFile) {
    const QByteArray original = R"({"position": "leftTop", "hideWhenEmpty": false,
        "nested": {"a": [1, {"b": null}]}, "mixed": ["a", 1], "lists": [["a"]], "nothing": null,
        "noData": {"bytes": "aGk="}, "extras": {"data": "aGk=", "type": "text/plain"},
        "notBase64": {"data": "not base64!"}, "notText": {"data": 5}})";
    testing::writeFile(file, original.toStdString());
    const QJsonObject before = QJsonDocument::fromJson(original).object();
    const QStringList unknown{"nested", "mixed",  "lists",     "nothing",
                              "noData", "extras", "notBase64", "notText"};

    JsonDefaultsStore store(file);
    for (const auto& key : unknown) EXPECT_FALSE(store.value(key)) << key.toStdString();
    store.setValue("size", QStringLiteral("standard"));
    store.remove("hideWhenEmpty");

    const QJsonObject after = fileObject();
    for (const auto& key : unknown) EXPECT_EQ(after[key], before[key]) << key.toStdString();
    EXPECT_EQ(after.keys().size(), unknown.size() + 2);
    EXPECT_EQ(JsonDefaultsStore::parse(original).keys(), QStringList({"hideWhenEmpty", "position"}));
}

TEST_F(JsonDefaultsStoreTest, WritesLeaveNoTemporaryFilesBehind) {
    JsonDefaultsStore store(file);
    for (int i = 0; i < 5; ++i) store.setValue("maximumItemCount", qint64(i));
    store.remove("maximumItemCount");
    std::vector<fs::path> entries(fs::directory_iterator(folder), fs::directory_iterator{});
    EXPECT_EQ(entries, std::vector<fs::path>{file});
}

TEST_F(JsonDefaultsStoreTest, FailedWriteIsLoggedAndTheValueStaysForTheSession) {
    testing::writeFile(folder, "a file where the folder should be");
    SettingsWarnings log;

    JsonDefaultsStore store(file);
    store.setValue("size", QStringLiteral("standard"));
    EXPECT_FALSE(log.warnings().isEmpty());
    EXPECT_TRUE(sameValue(store.value("size"), QStringLiteral("standard")));
}

TEST_F(JsonDefaultsStoreTest, SymbolicLinkToTheFileSurvivesAWrite) {
    const fs::path real = folder.parent_path() / "dotfiles" / "settings.json";
    testing::writeFile(real, R"({"position": "leftTop"})");
    fs::create_directories(folder);
    fs::create_symlink(real, file);

    JsonDefaultsStore(file).setValue("size", QStringLiteral("standard"));

    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_TRUE(sameValue(JsonDefaultsStore(real).value("size"), QStringLiteral("standard")));
    EXPECT_TRUE(sameValue(JsonDefaultsStore(real).value("position"), QStringLiteral("leftTop")));
}

}  // namespace
}  // namespace mosswick
