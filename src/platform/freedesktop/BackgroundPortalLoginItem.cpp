#include "platform/freedesktop/BackgroundPortalLoginItem.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QFile>

#include "model/DefaultsStore.h"
#include "platform/freedesktop/DesktopPortal.h"

namespace mosswick {

namespace {
const QString kInterface = QStringLiteral("org.freedesktop.portal.Background");
const QString kRequestInterface = QStringLiteral("org.freedesktop.portal.Request");
}  // namespace

BackgroundPortalLoginItem::BackgroundPortalLoginItem(QDBusConnection bus, DefaultsStore& store,
                                                     QStringList commandLine)
    : bus_(std::move(bus)), store_(store), commandLine_(std::move(commandLine)) {
    bus_.connect(DesktopPortal::kService, QString(), kRequestInterface, QStringLiteral("Response"), this,
                 SLOT(requestAnswered(QDBusMessage)));
}

bool BackgroundPortalLoginItem::isSandboxed() { return QFile::exists(QStringLiteral("/.flatpak-info")); }

bool BackgroundPortalLoginItem::isEnabled() const {
    const std::optional<DefaultsValue> stored = store_.value(kStoredKey);
    const bool* on = stored ? std::get_if<bool>(&*stored) : nullptr;
    return on && *on;
}

QString BackgroundPortalLoginItem::setEnabled(bool enabled) {
    if (!bus_.isConnected()) return QStringLiteral("there is no session bus to reach the desktop's portal");
    const QString token = QStringLiteral("mosswick_login_%1").arg(++lastToken_);
    // The answer comes on a path made of our bus name and the token, known before asking.
    QString sender = bus_.baseService();
    sender.remove(0, 1).replace(QLatin1Char('.'), QLatin1Char('_'));
    pendingRequest_ = QStringLiteral("%1/request/%2/%3").arg(DesktopPortal::kPath, sender, token);
    wanted_ = enabled;

    QDBusMessage call = QDBusMessage::createMethodCall(DesktopPortal::kService, DesktopPortal::kPath,
                                                       kInterface, QStringLiteral("RequestBackground"));
    call << QString()
         << QVariantMap{{QStringLiteral("handle_token"), token},
                        {QStringLiteral("reason"), QStringLiteral("Start Mosswick when you log in.")},
                        {QStringLiteral("autostart"), enabled},
                        {QStringLiteral("commandline"), commandLine_},
                        {QStringLiteral("dbus-activatable"), false}};
    auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, token](QDBusPendingCallWatcher* done) {
        done->deleteLater();
        const QDBusPendingReply<QDBusObjectPath> reply = *done;
        if (!pendingRequest_.endsWith(token)) return;  // a later request took over
        if (reply.isError()) {
            qWarning("Mosswick: the Background portal did not take the login item request: %s",
                     qPrintable(reply.error().message()));
            pendingRequest_.clear();
            refused_ = true;
            onChange();
        } else if (reply.value().path() != pendingRequest_) {
            // Portals older than the handle_token convention answer on a path of their own.
            pendingRequest_ = reply.value().path();
        }
    });
    return {};
}

void BackgroundPortalLoginItem::requestAnswered(const QDBusMessage& message) {
    if (pendingRequest_.isEmpty() || message.path() != pendingRequest_) return;
    pendingRequest_.clear();
    const QList<QVariant> arguments = message.arguments();
    const uint response = arguments.value(0).toUInt();
    const QVariantMap results = qdbus_cast<QVariantMap>(arguments.value(1));
    // 0: answered; 1: the user said no; 2: something else went wrong. Turning it off is never
    // refused in effect: whatever the answer, nothing will start us.
    const bool autostart = response == 0 && results.value(QStringLiteral("autostart")).toBool();
    refused_ = wanted_ && !autostart;
    store_.setValue(kStoredKey, wanted_ && autostart);
    onChange();
}

}  // namespace mosswick
