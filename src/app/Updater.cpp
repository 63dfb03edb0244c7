#include "app/Updater.h"

#include <QLoggingCategory>
#include <variant>

#include "app/UpdateFeed.h"
#include "app/UpdateSignature.h"

namespace mosswick {

namespace {
Q_LOGGING_CATEGORY(lcUpdates, "mosswick.updates", QtInfoMsg)

Updater* currentUpdater = nullptr;

QString failure(const QString& why) { return QStringLiteral("Couldn't update Mosswick: %1").arg(why); }

QString updatedTo(const UpdateVersion& version) {
    return QStringLiteral("Mosswick was updated to %1 and restarts now.").arg(version.toString());
}
}  // namespace

Updater::Updater(Configuration configuration, UpdateTransport& transport, UpdateInstallation& installation,
                 Scheduler& scheduler)
    : configuration_(std::move(configuration)),
      transport_(transport),
      installation_(installation),
      scheduler_(scheduler) {}

Updater* Updater::current() { return currentUpdater; }

void Updater::setCurrent(Updater* updater) { currentUpdater = updater; }

void Updater::checkForUpdates(Done done) {
    waiting_.push_back(std::move(done));
    if (waiting_.size() > 1) return;
    if (installed_) {
        finish({UpdateResult::Outcome::updated, updatedTo(*installed_)});
        return;
    }
    fetch(configuration_.feed, UpdateFeed::kLongestFeed, kFeedTimeout,
          [this](const QByteArray& feed) { feedArrived(feed); });
}

void Updater::fetch(const QUrl& url, qint64 maxBytes, double timeout, std::function<void(QByteArray)> next) {
    const int attempt = ++attempt_;
    timeout_ = scheduler_.after(timeout, [this] {
        ++attempt_;  // whatever still arrives is too late
        finish({UpdateResult::Outcome::failed,
                failure(QStringLiteral("the update server %1 did not answer in time.").arg(serverName()))});
    });
    transport_.fetch(url, maxBytes, [this, attempt, next = std::move(next)](UpdateTransport::Result result) {
        if (attempt != attempt_) return;
        timeout_.cancel();
        if (!result.error.isEmpty()) {
            finish({UpdateResult::Outcome::failed, failure(result.error)});
            return;
        }
        next(result.body);
    });
}

void Updater::feedArrived(const QByteArray& feed) {
    auto newest = UpdateFeed::newest(feed, configuration_.current, configuration_.arch);
    if (const auto* invalid = std::get_if<UpdateFeed::Invalid>(&newest)) {
        finish({UpdateResult::Outcome::failed,
                failure(QStringLiteral("the update feed is not valid: %1.").arg(invalid->reason))});
        return;
    }
    const std::optional<UpdateOffer> offer = std::get<std::optional<UpdateOffer>>(newest);
    if (!offer) {
        finish({UpdateResult::Outcome::upToDate,
                QStringLiteral("Mosswick %1 is up to date.").arg(configuration_.current.toString())});
        return;
    }
    fetch(offer->archive, offer->size, kArchiveTimeout, [this, offer](const QByteArray& archive) {
        if (archive.size() != offer->size) {
            finish({UpdateResult::Outcome::failed,
                    failure(QStringLiteral("the download of %1 was cut short (%2 of %3 bytes).")
                                .arg(offer->version.toString())
                                .arg(archive.size())
                                .arg(offer->size))});
            return;
        }
        if (!UpdateSignature::verify(archive, offer->signature, configuration_.publicKey)) {
            finish({UpdateResult::Outcome::failed,
                    failure(QStringLiteral("the download of %1 is not signed with this app's key; nothing "
                                           "was changed.")
                                .arg(offer->version.toString()))});
            return;
        }
        if (const QString error = installation_.install(archive); !error.isEmpty()) {
            finish({UpdateResult::Outcome::failed, failure(error)});
            return;
        }
        installed_ = offer->version;
        finish({UpdateResult::Outcome::updated, updatedTo(offer->version)});
        installation_.restart();
    });
}

void Updater::finish(UpdateResult result) {
    timeout_.cancel();
    // Every outcome is logged: an automatic check has nobody else to tell.
    if (result.outcome == UpdateResult::Outcome::failed)
        qCWarning(lcUpdates).noquote() << result.message;
    else
        qCInfo(lcUpdates).noquote() << result.message;
    std::vector<Done> waiting = std::exchange(waiting_, {});
    for (const Done& done : waiting)
        if (done) done(result);
}

void Updater::setAutomaticallyChecksForUpdates(bool on) {
    if (on == automatic_) return;
    automatic_ = on;
    if (on)
        scheduleAutomaticCheck(kFirstCheckDelay);
    else
        nextAutomaticCheck_.cancel();
}

void Updater::scheduleAutomaticCheck(double delay) {
    nextAutomaticCheck_ = scheduler_.after(delay, [this] {
        scheduleAutomaticCheck(kCheckInterval);
        checkForUpdates({});
    });
}

}  // namespace mosswick
