#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "../shelf/FakeDisplayEnvironment.h"
#include "../shelf/FakeShelfPanel.h"
#include "app/CommandLine.h"
#include "app/ShelfCommands.h"
#include "model/DefaultsStore.h"
#include "model/LocalPath.h"
#include "model/Preferences.h"
#include "model/ShelfStore.h"
#include "shelf/ShelfWindowController.h"
#include "support/ManualScheduler.h"
#include "support/TestFolders.h"

namespace mosswick {
namespace {

using testing::FakeDesktopMotionSetting;
using testing::FakeDisplayEnvironment;
using testing::FakeShelfPanel;
using testing::ManualScheduler;

class ShelfCommandsTest : public ::testing::Test {
protected:
    ShelfCommandsTest() {
        testing::clearAppData();
        environment.displayList = {Display{{0, 0, 1440, 900}, {0, 0, 1440, 875}}};
    }

    // Runs a command; the reply, once it came (the clock is run until nothing is left to do).
    std::optional<CommandReply> run(std::vector<QByteArray> arguments) {
        std::optional<CommandReply> reply;
        commands.run(arguments, [&reply](CommandReply r) {
            EXPECT_FALSE(reply) << "answered twice";
            reply = std::move(r);
        });
        clock.drain();
        return reply;
    }

    ManualScheduler clock;
    MemoryDefaultsStore defaults;
    Preferences preferences{defaults};
    ShelfStore store{preferences, clock, testing::freshFolder("commands") / "shelf.json"};
    FakeDisplayEnvironment environment;
    FakeDesktopMotionSetting desktopMotion;
    ShelfWindowController controller{{preferences, store, clock, environment, desktopMotion,
                                      [](const ScreenRect&) { return std::make_unique<FakeShelfPanel>(); }}};
    int quits = 0;
    bool savedAtQuit = false;
    ShelfCommands commands{{store, controller, IngestServices{clock, preferences, store}, {}, {}, [this] {
                                ++quits;
                                savedAtQuit = !store.hasPendingSave();
                            }}};
};

TEST_F(ShelfCommandsTest, AddPutsTheReadablePathsOnAsOneBatchASliceAtATime) {
    preferences.setMaximumItemCount(1000);
    const auto folder = testing::freshFolder("add");
    std::vector<QByteArray> arguments{"add", "--"};
    for (int i = 0; i < 300; ++i) {
        const auto file = folder / std::string("f").append(std::to_string(i));
        testing::writeFile(file, "x");
        arguments.push_back(LocalPath::bytes(file));
    }
    const QByteArray notUtf8 = LocalPath::bytes(folder / "caf\xe9");
    testing::writeFile(LocalPath::fromBytes(notUtf8), "latin");
    arguments.push_back(notUtf8);
    const QByteArray missing = LocalPath::bytes(folder / "gone");
    arguments.insert(arguments.begin() + 5, missing);

    std::optional<CommandReply> reply;
    commands.run(arguments, [&reply](CommandReply r) { reply = std::move(r); });
    EXPECT_FALSE(reply) << "more than a slice's paths were taken in one turn";
    EXPECT_TRUE(store.items().empty()) << "the batch goes on whole, at its end";
    clock.drain();
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->exitCode, int(CommandLine::ExitCode::partly));
    EXPECT_EQ(reply->err,
              QByteArray("mosswick: cannot add ").append(missing).append(": No such file or directory\n"));
    ASSERT_EQ(store.items().size(), 301u);
    std::set<std::optional<QUuid>> batches;
    for (const ShelfItem& item : store.items()) batches.insert(item.batchID);
    EXPECT_EQ(batches.size(), 1u);
    EXPECT_TRUE(*batches.begin());
    const auto withOddName =
        std::find_if(store.items().begin(), store.items().end(), [&](const ShelfItem& item) {
            return item.originURL && LocalPath::fromUrl(*item.originURL) == LocalPath::fromBytes(notUtf8);
        });
    EXPECT_NE(withOddName, store.items().end()) << "the name's bytes were changed on the way";
}

TEST_F(ShelfCommandsTest, OnePathOfSeveralIsNoStackAndNonePutsNothingOn) {
    const auto folder = testing::freshFolder("one");
    testing::writeFile(folder / "kept", "x");
    auto reply = run({"add", "--", LocalPath::bytes(folder / "kept"), LocalPath::bytes(folder / "gone")});
    ASSERT_TRUE(reply);
    ASSERT_EQ(store.items().size(), 1u);
    EXPECT_FALSE(store.items().front().batchID);

    reply = run({"add", "--", LocalPath::bytes(folder / "gone")});
    EXPECT_EQ(reply->exitCode, int(CommandLine::ExitCode::partly));
    EXPECT_EQ(store.items().size(), 1u);

    // Past the shelf's limit the paths are left off, and the caller learns of it.
    preferences.setMaximumItemCount(2);
    testing::writeFile(folder / "b", "x");
    testing::writeFile(folder / "c", "x");
    reply = run({"add", "--", LocalPath::bytes(folder / "b"), LocalPath::bytes(folder / "c"),
                 LocalPath::bytes(folder / "kept")});
    EXPECT_EQ(reply->exitCode, int(CommandLine::ExitCode::partly));
    EXPECT_EQ(reply->err,
              QByteArray("mosswick: the shelf keeps at most 2 items (see its settings): the last 1 "
                         "paths were left off\n"));
    ASSERT_EQ(store.items().size(), 2u);
    EXPECT_EQ(store.items()[0].displayName, QStringLiteral("b"));
    EXPECT_EQ(store.items()[1].displayName, QStringLiteral("c"));
}

TEST_F(ShelfCommandsTest, ListJsonHasEveryFieldWithItsTypeAndExactPathBytes) {
    const auto folder = testing::freshFolder("list");
    const auto odd = folder / "caf\xe9";
    testing::writeFile(odd, "x");
    ShelfItem file;
    file.id = QUuid::createUuid();
    file.displayName = QStringLiteral("caf\uFFFD");
    file.stagedURL = LocalPath::toUrl(odd);
    file.originURL = LocalPath::toUrl(odd);
    file.byteSize = 1;
    file.batchID = QUuid::createUuid();
    ShelfItem link;
    link.id = QUuid::createUuid();
    link.displayName = QStringLiteral("Example");
    link.webURL = QUrl(QStringLiteral("https://example.org/a b"));
    link.originURL = LocalPath::toUrl(folder / "gone");  // not reachable: null
    store.add({file, link});

    const auto reply = run({"list", "--json"});
    ASSERT_TRUE(reply);
    const QJsonArray items = QJsonDocument::fromJson(reply->out).array();
    ASSERT_EQ(items.size(), 2);
    // The schema: every key always present, with one type (or null where the design allows none).
    const std::pair<const char*, std::vector<QJsonValue::Type>> schema[] = {
        {"id", {QJsonValue::String}},
        {"name", {QJsonValue::String}},
        {"kind", {QJsonValue::String}},
        {"contentType", {QJsonValue::String}},
        {"size", {QJsonValue::Double}},
        {"stagedPath", {QJsonValue::String, QJsonValue::Null}},
        {"originalPath", {QJsonValue::String, QJsonValue::Null}},
        {"webURL", {QJsonValue::String, QJsonValue::Null}},
        {"batchID", {QJsonValue::String, QJsonValue::Null}},
        {"addedAt", {QJsonValue::String}},
    };
    for (const QJsonValue& value : items) {
        const QJsonObject item = value.toObject();
        for (const auto& [key, types] : schema) {
            ASSERT_TRUE(item.contains(QLatin1String(key))) << key;
            EXPECT_NE(std::find(types.begin(), types.end(), item[QLatin1String(key)].type()), types.end())
                << key;
        }
        EXPECT_TRUE(QDateTime::fromString(item["addedAt"].toString(), Qt::ISODateWithMs).isValid());
    }
    const QJsonObject first = items[0].toObject(), second = items[1].toObject();
    EXPECT_EQ(first["kind"].toString(), QStringLiteral("file"));
    EXPECT_EQ(QByteArray::fromBase64(first["stagedPathBase64"].toString().toLatin1()), LocalPath::bytes(odd));
    EXPECT_EQ(QByteArray::fromBase64(first["originalPathBase64"].toString().toLatin1()),
              LocalPath::bytes(odd));
    EXPECT_EQ(first["batchID"].toString(), uuidString(*file.batchID));
    EXPECT_EQ(second["kind"].toString(), QStringLiteral("link"));
    EXPECT_EQ(second["webURL"].toString(), QStringLiteral("https://example.org/a%20b"));
    EXPECT_TRUE(second["originalPath"].isNull());
    EXPECT_FALSE(second.contains(QStringLiteral("stagedPathBase64")));

    // The plain listing: the path's bytes as they are, one line an item.
    const auto plain = run({"list"});
    EXPECT_EQ(
        plain->out.split('\n').front(),
        uuidString(file.id).toUtf8().append("\tcaf\xef\xbf\xbd\tfile\t1\t").append(LocalPath::bytes(odd)));
}

TEST_F(ShelfCommandsTest, RepliesSayWhatCouldNotBeDone) {
    ShelfItem item;
    item.id = QUuid::createUuid();
    item.displayName = QStringLiteral("a");
    store.add({item});
    const QByteArray known = uuidString(item.id).toUtf8(), unknown = uuidString(QUuid::createUuid()).toUtf8();
    struct Case {
        std::vector<QByteArray> arguments;
        int exitCode;
        QByteArray err;
    };
    const Case cases[] = {
        {{"restore"}, 1, "mosswick: nothing to restore\n"},
        {{"remove", known, unknown},
         1,
         QByteArray("mosswick: no item with ID ").append(unknown).append(" on the shelf\n")},
        {{"restore"}, 0, ""},  // the removal above
        {{"frob"}, 2, "mosswick: unknown command \"frob\" (see mosswick --help)\n"},
        {{"clear"}, 0, ""},
        {{"restore"}, 0, ""},
    };
    for (const Case& c : cases) {
        const auto reply = run(c.arguments);
        ASSERT_TRUE(reply);
        EXPECT_EQ(reply->exitCode, c.exitCode) << c.arguments.front().constData();
        EXPECT_EQ(reply->err, c.err);
    }
    ASSERT_EQ(store.items().size(), 1u);
    EXPECT_EQ(store.items().front().id, item.id);

    // Quit answers with the shelf already written, then ends the application.
    store.add({ShelfItem{.id = QUuid::createUuid(), .displayName = QStringLiteral("b")}});
    ASSERT_TRUE(store.hasPendingSave());
    EXPECT_EQ(run({"quit"})->exitCode, 0);
    EXPECT_EQ(quits, 1);
    EXPECT_TRUE(savedAtQuit);
}

TEST_F(ShelfCommandsTest, WhatReadsTheShelfWaitsForTheSavedItemsAndAnAddGoesOnTopOfThem) {
    const auto folder = testing::freshFolder("saved");
    testing::writeFile(folder / "saved", "x");
    testing::writeFile(folder / "added", "x");
    const ShelfItem saved{.id = QUuid::createUuid(),
                          .displayName = QStringLiteral("saved"),
                          .originURL = LocalPath::toUrl(folder / "saved")};
    ShelfSaveFile(store.saveFile().path()).write({saved}, 1);  // read when the clock first runs

    clock.holdBackgroundWork(true);
    std::vector<std::pair<QByteArray, CommandReply>> replies;
    for (const QByteArray& verb : {QByteArray("list"), QByteArray("remove")}) {
        std::vector<QByteArray> arguments{verb};
        if (verb == "remove") arguments.push_back(uuidString(saved.id).toUtf8());
        commands.run(arguments,
                     [&replies, verb](CommandReply r) { replies.emplace_back(verb, std::move(r)); });
    }
    ASSERT_TRUE(run({"add", "--", LocalPath::bytes(folder / "added")}));
    EXPECT_TRUE(replies.empty()) << "answered from a part of the shelf";

    clock.holdBackgroundWork(false);
    clock.drain();
    ASSERT_EQ(replies.size(), 2u);
    EXPECT_EQ(replies[0].first, "list");
    const QList<QByteArray> lines = replies[0].second.out.split('\n');
    ASSERT_EQ(lines.size(), 3);  // two items and the end of the last line
    EXPECT_TRUE(lines[0].contains("\tadded\t")) << lines[0].constData();
    EXPECT_TRUE(lines[1].contains("\tsaved\t")) << lines[1].constData();
    EXPECT_EQ(replies[1].first, "remove");
    EXPECT_EQ(replies[1].second.exitCode, 0) << replies[1].second.err.constData();
    ASSERT_EQ(store.items().size(), 1u);
    EXPECT_EQ(store.items().front().displayName, QStringLiteral("added"));
}

}  // namespace
}  // namespace mosswick
