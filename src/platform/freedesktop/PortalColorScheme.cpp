#include "platform/freedesktop/PortalColorScheme.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include "platform/freedesktop/DesktopPortal.h"

namespace mosswick {

namespace {

const QString kNamespace = QStringLiteral("org.freedesktop.appearance");
const QString kKey = QStringLiteral("color-scheme");
const QString kReadOne = QStringLiteral("ReadOne");
const QString kRead = QStringLiteral("Read");

}  // namespace

PortalColorScheme::PortalColorScheme(const QDBusConnection& bus) : bus_(bus) {
    if (!bus_.isConnected()) return;
    bus_.connect(DesktopPortal::kService, DesktopPortal::kPath, DesktopPortal::kSettingsInterface,
                 QStringLiteral("SettingChanged"), this, SLOT(settingChanged(QDBusMessage)));
    ask(kReadOne);
}

PortalColorScheme::~PortalColorScheme() = default;

void PortalColorScheme::ask(const QString& method) {
    QDBusMessage call = QDBusMessage::createMethodCall(DesktopPortal::kService, DesktopPortal::kPath,
                                                       DesktopPortal::kSettingsInterface, method);
    call << kNamespace << kKey;
    auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(call, 2000), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, method] {
        watcher->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *watcher;
        if (reply.isValid())
            take(reply.value().variant());
        else if (method == kReadOne)  // portals older than version 2 know only Read
            ask(kRead);
    });
}

void PortalColorScheme::settingChanged(const QDBusMessage& message) {
    const QVariantList arguments = message.arguments();
    if (arguments.size() != 3 || arguments[0].toString() != kNamespace || arguments[1].toString() != kKey)
        return;
    take(arguments[2]);
}

void PortalColorScheme::take(const QVariant& value) {
    const QVariant plain = DesktopPortal::plainSettingValue(value);
    bool ok = false;
    const uint code = plain.toUInt(&ok);
    Scheme scheme = Scheme::noPreference;
    if (ok && code == 1) scheme = Scheme::dark;
    if (ok && code == 2) scheme = Scheme::light;
    if (scheme == scheme_) return;
    scheme_ = scheme;
    if (changed_) changed_();
}

}  // namespace mosswick
