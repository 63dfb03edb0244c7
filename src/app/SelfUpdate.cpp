#include "app/SelfUpdate.h"

#include <QSslCertificate>
#include <QSysInfo>

#include "app/BuildSettings.h"
#include "app/Updater.h"
#include "model/Preferences.h"
#include "platform/qt/ArchiveInstallation.h"
#include "platform/qt/QtUpdateTransport.h"

namespace mosswick {

struct SelfUpdate::Parts {
    std::unique_ptr<ArchiveInstallation> installation;
    std::unique_ptr<QtUpdateTransport> transport;
    std::unique_ptr<Updater> updater;
    QMetaObject::Connection following;
};

std::unique_ptr<SelfUpdate> SelfUpdate::forThisCopy(Scheduler& scheduler, Preferences& preferences) {
    const QUrl feed(QString::fromUtf8(BuildSettings::updateFeed()));
    const QByteArray key = QByteArray::fromBase64(BuildSettings::updatePublicKey());
    if (feed.scheme() != QLatin1String("https") || key.size() != 32) return nullptr;
    auto parts = std::make_unique<Parts>();
    parts->installation = ArchiveInstallation::ofThisProcess();
    if (!parts->installation) return nullptr;
    parts->installation->removePreviousCopy();  // this is the new copy, up and running
    const QString authorities = QString::fromLocal8Bit(BuildSettings::extraUpdateAuthorities());
    parts->transport = std::make_unique<QtUpdateTransport>(
        authorities.isEmpty() ? QList<QSslCertificate>() : QSslCertificate::fromPath(authorities));
    parts->updater = std::make_unique<Updater>(
        Updater::Configuration{feed, key,
                               *UpdateVersion::parse(QString::fromLatin1(BuildSettings::version())),
                               QSysInfo::currentCpuArchitecture() == QLatin1String("x86_64")
                                   ? QStringLiteral("x86_64")
                                   : QSysInfo::currentCpuArchitecture()},
        *parts->transport, *parts->installation, scheduler);
    Updater* updater = parts->updater.get();
    updater->setAutomaticallyChecksForUpdates(preferences.checkForUpdatesAutomatically());
    parts->following =
        QObject::connect(&preferences, &Preferences::changed, [updater, &preferences](Preference p) {
            if (p == Preference::checkForUpdatesAutomatically)
                updater->setAutomaticallyChecksForUpdates(preferences.checkForUpdatesAutomatically());
        });
    Updater::setCurrent(updater);
    return std::unique_ptr<SelfUpdate>(new SelfUpdate(std::move(parts)));
}

SelfUpdate::SelfUpdate(std::unique_ptr<Parts> parts) : parts_(std::move(parts)) {}

SelfUpdate::~SelfUpdate() {
    Updater::setCurrent(nullptr);
    QObject::disconnect(parts_->following);
}

}  // namespace mosswick
