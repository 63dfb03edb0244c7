#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>
#include <functional>
#include <optional>

#include "app/UpdateVersion.h"
#include "settings/UpdateServices.h"
#include "model/Scheduler.h"

namespace mosswick {

// What a check ended in, for the menu's and the settings' answer.
struct UpdateResult {
    enum class Outcome { upToDate, updated, failed };
    Outcome outcome = Outcome::failed;
    QString message;  // a sentence for the user
};

// Keeps a self-installed Mosswick up to date: reads the feed of versions, downloads a later
// release, checks its Ed25519 signature against the key built into the app before anything is
// touched, installs it and restarts. Exists only in a self-installed copy: never in a
// distribution's package (its package manager updates it) and never under the test switch.
class Updater {
public:
    struct Configuration {
        QUrl feed;             // https
        QByteArray publicKey;  // 32 bytes, Ed25519
        UpdateVersion current;
        QString arch;  // the feed's name for this machine (uname -m)
    };
    using Done = std::function<void(UpdateResult)>;

    // How long the server has for the feed, and for the archive.
    static constexpr double kFeedTimeout = 30;
    static constexpr double kArchiveTimeout = 600;
    static constexpr double kCheckInterval = 24 * 60 * 60;
    // The first automatic check waits this long after start-up, off its critical path.
    static constexpr double kFirstCheckDelay = 5 * 60;

    Updater(Configuration configuration, UpdateTransport& transport, UpdateInstallation& installation,
            Scheduler& scheduler);

    // The process's updater, or nothing (a package install, the test switch, no build-time key).
    static Updater* current();
    static void setCurrent(Updater* updater);

    // A check the user asked for; `done` hears how it ended. A check already running is joined.
    void checkForUpdates(Done done);
    bool isChecking() const { return !waiting_.empty(); }

    bool automaticallyChecksForUpdates() const { return automatic_; }
    // At most once a day; the first one a few minutes after this is turned on.
    void setAutomaticallyChecksForUpdates(bool on);

    // The update server's host name, for the settings' hint.
    QString serverName() const { return configuration_.feed.host(); }

private:
    void fetch(const QUrl& url, qint64 maxBytes, double timeout, std::function<void(QByteArray)> next);
    void feedArrived(const QByteArray& feed);
    void finish(UpdateResult result);
    void scheduleAutomaticCheck(double delay);

    Configuration configuration_;
    UpdateTransport& transport_;
    UpdateInstallation& installation_;
    Scheduler& scheduler_;
    std::vector<Done> waiting_;
    ScheduledTask timeout_;
    ScheduledTask nextAutomaticCheck_;
    int attempt_ = 0;  // tells a late answer from the current one
    // The version installed and waiting for the restart: installing again would replace the old
    // copy kept aside (mosswick.old) with the new one.
    std::optional<UpdateVersion> installed_;
    bool automatic_ = false;
};

}  // namespace mosswick
