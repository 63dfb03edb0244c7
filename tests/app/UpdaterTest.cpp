#include <gtest/gtest.h>
#include <sodium.h>

#include <map>

#include "app/UpdateFeed.h"
#include "app/UpdateSignature.h"
#include "app/Updater.h"
#include "support/ManualScheduler.h"

namespace mosswick {
namespace {

using testing::ManualScheduler;

UpdateVersion version(const char* text) { return *UpdateVersion::parse(QString::fromLatin1(text)); }

TEST(UpdateVersion, ComparesAsReleaseNumbers) {
    // Each pair: the first comes before the second.
    const std::pair<const char*, const char*> ordered[] = {
        {"1.9", "1.10"},        {"1.2.9", "1.10.0"},           {"0.9.9", "1"},
        {"1.0-rc.1", "1.0"},    {"1.0-beta.2", "1.0-beta.10"}, {"1.0-alpha", "1.0-alpha.1"},
        {"1.0-1", "1.0-alpha"}, {"1.0-alpha", "1.0-beta"},     {"2.0-alpha", "2.0.1"},
    };
    for (const auto& [earlier, later] : ordered) {
        EXPECT_LT(version(earlier), version(later)) << earlier << " < " << later;
        EXPECT_GT(version(later), version(earlier)) << later << " > " << earlier;
    }
    EXPECT_EQ(version("1.2"), version("1.2.0"));
    EXPECT_EQ(version("1.02").toString(), QStringLiteral("1.2"));

    for (const char* bad : {"", "1.", ".1", "v1.0", "1.0 ", "1..0", "1.0-", "1.0-be ta", "1.x", "9999999999"})
        EXPECT_FALSE(UpdateVersion::parse(QString::fromLatin1(bad))) << bad;
}

QByteArray feedWith(const QString& releases) {
    return QStringLiteral("{\"releases\": [%1]}").arg(releases).toUtf8();
}

QString release(const char* v, const char* url = "https://up.example/a.tar.gz", qint64 size = 10,
                const QByteArray& signature = QByteArray(64, 's'), const char* arch = nullptr) {
    QString entry =
        QStringLiteral("{\"version\": \"%1\", \"url\": \"%2\", \"size\": %3, \"signature\": \"%4\"")
            .arg(QLatin1String(v), QLatin1String(url))
            .arg(size)
            .arg(QString::fromLatin1(signature.toBase64()));
    if (arch) entry += QStringLiteral(", \"arch\": \"%1\"").arg(QLatin1String(arch));
    return entry + u'}';
}

TEST(UpdateFeed, PicksTheNewestLaterReleaseForThisMachine) {
    const UpdateVersion current = version("1.9");
    const auto picked = [&](const QByteArray& feed) -> std::optional<QString> {
        auto result = UpdateFeed::newest(feed, current, QStringLiteral("x86_64"));
        EXPECT_TRUE(std::holds_alternative<std::optional<UpdateOffer>>(result));
        const auto* offer = std::get_if<std::optional<UpdateOffer>>(&result);
        return offer && *offer ? std::optional((*offer)->version.toString()) : std::nullopt;
    };
    EXPECT_EQ(picked(feedWith(release("1.10") + u',' + release("1.9.5") + u',' + release("1.8"))), u"1.10");
    EXPECT_EQ(
        picked(feedWith(release("2.0", "https://up.example/b", 10, QByteArray(64, 's'), "aarch64") + u',' +
                        release("1.11", "https://up.example/c", 10, QByteArray(64, 's'), "x86_64"))),
        u"1.11");
    // Only older and equal releases: a downgrade is never offered.
    EXPECT_EQ(picked(feedWith(release("1.8") + u',' + release("1.9") + u',' + release("1.9-rc.1"))),
              std::nullopt);
    EXPECT_EQ(picked(feedWith(QString())), std::nullopt);
}

TEST(UpdateFeed, RefusesAFeedThatCannotBeTrusted) {
    const std::pair<QByteArray, const char*> cases[] = {
        {"not json", "it is not a JSON object"},
        {"{\"releases\": {}}", "it lists no releases"},
        {feedWith(QStringLiteral("1")), "a release is not an object"},
        {feedWith(release("one")), "a release has no valid version"},
        {feedWith(release("2.0", "http://up.example/a.tar.gz")),
         "an archive is not offered over HTTPS (release 2.0)"},
        {feedWith(release("2.0", "https://")), "an archive has no valid address (release 2.0)"},
        {feedWith(release("2.0", "https://up.example/a", 0)), "an archive has no valid size (release 2.0)"},
        {feedWith(release("2.0", "https://up.example/a", UpdateFeed::kLargestArchive + 1)),
         "an archive is too large (release 2.0)"},
        {feedWith(release("2.0", "https://up.example/a", 10, QByteArray(63, 's'))),
         "an archive has no valid signature (release 2.0)"},
        {QByteArray(UpdateFeed::kLongestFeed + 1, ' '), "it is too long"},
    };
    for (const auto& [feed, reason] : cases) {
        auto result = UpdateFeed::newest(feed, version("1.0"), QStringLiteral("x86_64"));
        const auto* invalid = std::get_if<UpdateFeed::Invalid>(&result);
        ASSERT_TRUE(invalid) << reason;
        EXPECT_EQ(invalid->reason, QString::fromLatin1(reason));
    }
}

struct KeyPair {
    QByteArray publicKey = QByteArray(crypto_sign_PUBLICKEYBYTES, 0);
    QByteArray secretKey = QByteArray(crypto_sign_SECRETKEYBYTES, 0);
    KeyPair() {
        EXPECT_GE(sodium_init(), 0);
        crypto_sign_keypair(reinterpret_cast<unsigned char*>(publicKey.data()),
                            reinterpret_cast<unsigned char*>(secretKey.data()));
    }
    QByteArray sign(const QByteArray& data) const {
        QByteArray signature(crypto_sign_BYTES, 0);
        crypto_sign_detached(reinterpret_cast<unsigned char*>(signature.data()), nullptr,
                             reinterpret_cast<const unsigned char*>(data.constData()), data.size(),
                             reinterpret_cast<const unsigned char*>(secretKey.constData()));
        return signature;
    }
};

TEST(UpdateSignature, AcceptsOnlyTheWholeArchiveSignedByOurKey) {
    const KeyPair ours, theirs;
    const QByteArray archive("the new Mosswick");
    QByteArray flipped = ours.sign(archive);
    flipped[5] = char(flipped[5] ^ 1);
    EXPECT_TRUE(UpdateSignature::verify(archive, ours.sign(archive), ours.publicKey));
    EXPECT_FALSE(UpdateSignature::verify(archive, flipped, ours.publicKey));
    EXPECT_FALSE(UpdateSignature::verify(archive, theirs.sign(archive), ours.publicKey));
    EXPECT_FALSE(UpdateSignature::verify(archive.left(10), ours.sign(archive), ours.publicKey));
    EXPECT_FALSE(UpdateSignature::verify(archive, {}, ours.publicKey));
    EXPECT_FALSE(UpdateSignature::verify(archive, ours.sign(archive), ours.publicKey.left(31)));
}

// A server that answers each address from a table on a later turn, or never.
class FakeServer final : public UpdateTransport {
public:
    explicit FakeServer(Scheduler& clock) : clock_(clock) {}
    void fetch(const QUrl& url, qint64 maxBytes, std::function<void(Result)> done) override {
        asked.push_back(url.toString());
        const auto found = pages.find(url.toString());
        if (found == pages.end()) return;  // hangs
        Result result = found->second;
        if (result.body.size() > maxBytes)
            result = {{}, QStringLiteral("the download is larger than announced.")};
        answers_.push_back(clock_.after(0, [done, result] { done(result); }));
    }
    std::map<QString, Result> pages;
    std::vector<QString> asked;

private:
    Scheduler& clock_;
    std::vector<ScheduledTask> answers_;
};

class FakeInstallation final : public UpdateInstallation {
public:
    QString install(const QByteArray& archive) override {
        installed.push_back(archive);
        return error;
    }
    void restart() override { ++restarts; }
    std::vector<QByteArray> installed;
    QString error;
    int restarts = 0;
};

TEST(Updater, InstallsOnlyAVerifiedLaterReleaseAndSaysWhatHappened) {
    const KeyPair ours, theirs;
    const QByteArray archive(1000, 'a');
    const QString feedUrl = QStringLiteral("https://up.example/feed.json");
    const QString archiveUrl = QStringLiteral("https://up.example/mosswick-2.0.tar.gz");
    const auto feedOffering = [&](const QByteArray& signature, qint64 size = 1000) {
        return feedWith(release("2.0", "https://up.example/mosswick-2.0.tar.gz", size, signature));
    };
    using Outcome = UpdateResult::Outcome;
    struct Case {
        const char* name;
        std::map<QString, UpdateTransport::Result> pages;
        Outcome outcome;
        QString message;
        QString installError = {};
    };
    const Case cases[] = {
        {"good",
         {{feedUrl, {feedOffering(ours.sign(archive)), {}}}, {archiveUrl, {archive, {}}}},
         Outcome::updated,
         "Mosswick was updated to 2.0 and restarts now."},
        {"up to date",
         {{feedUrl, {feedWith(release("1.0")), {}}}},
         Outcome::upToDate,
         "Mosswick 1.0 is up to date."},
        {"other key",
         {{feedUrl, {feedOffering(theirs.sign(archive)), {}}}, {archiveUrl, {archive, {}}}},
         Outcome::failed,
         "Couldn't update Mosswick: the download of 2.0 is not signed with this app's key; nothing was "
         "changed."},
        {"tampered",
         {{feedUrl, {feedOffering(ours.sign(archive)), {}}}, {archiveUrl, {QByteArray(1000, 'b'), {}}}},
         Outcome::failed,
         "Couldn't update Mosswick: the download of 2.0 is not signed with this app's key; nothing was "
         "changed."},
        {"truncated",
         {{feedUrl, {feedOffering(ours.sign(archive)), {}}}, {archiveUrl, {archive.left(600), {}}}},
         Outcome::failed,
         "Couldn't update Mosswick: the download of 2.0 was cut short (600 of 1000 bytes)."},
        {"oversized",
         {{feedUrl, {feedOffering(ours.sign(archive), 999), {}}}, {archiveUrl, {archive, {}}}},
         Outcome::failed,
         "Couldn't update Mosswick: the download is larger than announced."},
        {"invalid feed",
         {{feedUrl, {"<html>", {}}}},
         Outcome::failed,
         "Couldn't update Mosswick: the update feed is not valid: it is not a JSON object."},
        {"plain http",
         {{feedUrl, {{}, QStringLiteral("the update server redirected to plain HTTP.")}}},
         Outcome::failed,
         "Couldn't update Mosswick: the update server redirected to plain HTTP."},
        {"hangs on the archive",
         {{feedUrl, {feedOffering(ours.sign(archive)), {}}}},
         Outcome::failed,
         "Couldn't update Mosswick: the update server up.example did not answer in time."},
        {"install fails",
         {{feedUrl, {feedOffering(ours.sign(archive)), {}}}, {archiveUrl, {archive, {}}}},
         Outcome::failed,
         "Couldn't update Mosswick: the disk is full.",
         "the disk is full."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ManualScheduler clock;
        FakeServer server(clock);
        server.pages = c.pages;
        FakeInstallation installation;
        installation.error = c.installError;
        Updater updater({QUrl(feedUrl), ours.publicKey, version("1.0"), QStringLiteral("x86_64")}, server,
                        installation, clock);
        std::vector<UpdateResult> heard;
        updater.checkForUpdates([&](UpdateResult r) { heard.push_back(r); });
        updater.checkForUpdates([&](UpdateResult r) { heard.push_back(r); });  // joins the first
        clock.advance(Updater::kArchiveTimeout + 1);
        ASSERT_EQ(heard.size(), 2u);
        EXPECT_EQ(heard[0].outcome, c.outcome);
        EXPECT_EQ(heard[0].message, c.message);
        EXPECT_EQ(heard[1].message, c.message);
        EXPECT_EQ(server.asked.front(), feedUrl);
        // Nothing is touched unless the archive was verified, and only then does it restart.
        const bool verified = c.outcome == Outcome::updated || !c.installError.isEmpty();
        EXPECT_EQ(installation.installed,
                  verified ? std::vector<QByteArray>{archive} : std::vector<QByteArray>{});
        EXPECT_EQ(installation.restarts, c.outcome == Outcome::updated ? 1 : 0);

        // A further check ends the same way; after an update, until the restart, without asking
        // the server or installing again (that would put the new copy where the old one is kept).
        heard.clear();
        const std::size_t asked = server.asked.size(), installs = installation.installed.size();
        updater.checkForUpdates([&](UpdateResult r) { heard.push_back(r); });
        clock.advance(Updater::kArchiveTimeout + 1);
        ASSERT_EQ(heard.size(), 1u);
        EXPECT_EQ(heard[0].message, c.message);
        if (c.outcome == Outcome::updated) {
            EXPECT_EQ(server.asked.size(), asked);
            EXPECT_EQ(installation.installed.size(), installs);
            EXPECT_EQ(installation.restarts, 1);
        }
    }
}

TEST(Updater, ChecksByItselfAtMostOnceADayWhileAllowed) {
    ManualScheduler clock;
    FakeServer server(clock);  // hangs: each check ends by its time limit
    FakeInstallation installation;
    Updater updater({QUrl(QStringLiteral("https://up.example/feed")), QByteArray(32, 'k'), version("1.0"),
                     QStringLiteral("x86_64")},
                    server, installation, clock);
    updater.setAutomaticallyChecksForUpdates(true);
    clock.advance(Updater::kFirstCheckDelay - 1);
    EXPECT_TRUE(server.asked.empty()) << "not on start-up's critical path";
    clock.advance(1);
    EXPECT_EQ(server.asked.size(), 1u);
    clock.advance(Updater::kCheckInterval);
    EXPECT_EQ(server.asked.size(), 2u);
    updater.setAutomaticallyChecksForUpdates(false);
    clock.advance(3 * Updater::kCheckInterval);
    EXPECT_EQ(server.asked.size(), 2u);
}

}  // namespace
}  // namespace mosswick
