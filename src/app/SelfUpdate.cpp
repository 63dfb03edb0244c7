#include "app/SelfUpdate.h"

#include <QSysInfo>

#include "app/Updater.h"
#include "model/Preferences.h"
#include "platform/qt/ArchiveInstallation.h"
#include "platform/qt/QtUpdateTransport.h"

namespace mosswick {

struct SelfUpdate::Parts {
    std::unique_ptr<ArchiveInstallation> installation;
    QtUpdateTransport transport;
    std::unique_ptr<Updater> updater;
    QMetaObject::Connection following;
};

std::unique_ptr<SelfUpdate> SelfUpdate::forThisCopy(Scheduler& scheduler, Preferences& preferences) {
    const QUrl feed(QStringLiteral(MOSSWICK_UPDATE_FEED));
    const QByteArray key = QByteArray::fromBase64(MOSSWICK_UPDATE_PUBLIC_KEY);
    if (feed.scheme() != QLatin1String("https") || key.size() != 32) return nullptr;
    auto parts = std::make_unique<Parts>();
    parts->installation = ArchiveInstallation::ofThisProcess();
    if (!parts->installation) return nullptr;
    parts->installation->removePreviousCopy();  // this is the new copy, up and running
    parts->updater = std::make_unique<Updater>(
        Updater::Configuration{feed, key, *UpdateVersion::parse(QStringLiteral(MOSSWICK_VERSION)),
                               QSysInfo::currentCpuArchitecture() == QLatin1String("x86_64")
                                   ? QStringLiteral("x86_64")
                                   : QSysInfo::currentCpuArchitecture()},
        parts->transport, *parts->installation, scheduler);
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
