#include "FakeShortcutsPortal.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QMutex>
#include <QMutexLocker>

namespace {

// A shortcut as the portal reports it bound: its id and properties, a(sa{sv}) on the bus.
struct ReportedShortcut {
    QString id;
    QVariantMap properties;
};

QDBusArgument& operator<<(QDBusArgument& argument, const ReportedShortcut& shortcut) {
    argument.beginStructure();
    argument << shortcut.id << shortcut.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, ReportedShortcut& shortcut) {
    argument.beginStructure();
    argument >> shortcut.id >> shortcut.properties;
    argument.endStructure();
    return argument;
}

}  // namespace

Q_DECLARE_METATYPE(ReportedShortcut)

namespace mosswick::testing {

namespace {

const QString kService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kInterface = QStringLiteral("org.freedesktop.portal.GlobalShortcuts");

QString escapedSender(const QDBusMessage& message) {
    QString sender = message.service();
    return sender.remove(0, 1).replace(u'.', u'_');
}

}  // namespace

class FakeShortcutsPortalObject final : public QDBusVirtualObject {
public:
    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        const QString member = message.member();
        if (message.interface() == QLatin1String("org.freedesktop.DBus.Properties") && member == u"Get") {
            connection.send(message.createReply(QVariant::fromValue(QDBusVariant(uint(1)))));
            return true;
        }
        if (message.interface() == QLatin1String("org.freedesktop.portal.Session") && member == u"Close") {
            QMutexLocker lock(&mutex);
            closed << message.path();
            connection.send(message.createReply());
            return true;
        }
        if (message.interface() != kInterface) return false;
        const QList<QVariant> arguments = message.arguments();
        if (member == u"CreateSession" && arguments.size() == 1) {
            const QVariantMap options = qdbus_cast<QVariantMap>(arguments.at(0));
            const QString sender = escapedSender(message);
            const QString session =
                QStringLiteral("%1/session/%2/%3")
                    .arg(kPath, sender, options.value(QStringLiteral("session_handle_token")).toString());
            answer(message, connection, 0, {{QStringLiteral("session_handle"), session}});
            return true;
        }
        if (member == u"BindShortcuts" && arguments.size() == 4) {
            const QString session = arguments.at(0).value<QDBusObjectPath>().path();
            const QDBusArgument list = arguments.at(1).value<QDBusArgument>();
            std::vector<FakeShortcutsPortal::Shortcut> shortcuts;
            list.beginArray();
            while (!list.atEnd()) {
                QString id;
                QVariantMap properties;
                list.beginStructure();
                list >> id >> properties;
                list.endStructure();
                shortcuts.push_back(
                    {session, id, properties.value(QStringLiteral("preferred_trigger")).toString()});
            }
            list.endArray();
            uint response = 0;
            QList<ReportedShortcut> reported;
            {
                QMutexLocker lock(&mutex);
                response = bindResponse;
                if (response == 0 && !bindsNothing) {
                    bound.insert(bound.end(), shortcuts.begin(), shortcuts.end());
                    for (const auto& shortcut : shortcuts)
                        reported.append(
                            {shortcut.id,
                             {{QStringLiteral("trigger_description"), shortcut.preferredTrigger}}});
                }
            }
            answer(message, connection, response,
                   response == 0 ? QVariantMap{{QStringLiteral("shortcuts"), QVariant::fromValue(reported)}}
                                 : QVariantMap());
            return true;
        }
        return false;
    }

    // Replies with the request's handle, then answers the request, as the portal does.
    static void answer(const QDBusMessage& message, const QDBusConnection& connection, uint response,
                       const QVariantMap& results) {
        const QVariantMap options = qdbus_cast<QVariantMap>(message.arguments().constLast());
        const QString request =
            QStringLiteral("%1/request/%2/%3")
                .arg(kPath, escapedSender(message), options.value(QStringLiteral("handle_token")).toString());
        connection.send(message.createReply(QVariant::fromValue(QDBusObjectPath(request))));
        QDBusMessage signal = QDBusMessage::createSignal(
            request, QStringLiteral("org.freedesktop.portal.Request"), QStringLiteral("Response"));
        signal << response << results;
        connection.send(signal);
    }

    mutable QMutex mutex;
    uint bindResponse = 0;
    bool bindsNothing = false;
    std::vector<FakeShortcutsPortal::Shortcut> bound;
    QStringList closed;
};

FakeShortcutsPortal::FakeShortcutsPortal(const QString& busAddress)
    : connection_(QDBusConnection::connectToBus(busAddress, QStringLiteral("mosswick-fake-portal"))),
      object_(std::make_unique<FakeShortcutsPortalObject>()) {
    qDBusRegisterMetaType<ReportedShortcut>();
    qDBusRegisterMetaType<QList<ReportedShortcut>>();
    thread_.start();
    object_->moveToThread(&thread_);
    // Registered from the serving thread, where the object lives.
    QMetaObject::invokeMethod(
        object_.get(),
        [this] {
            ready_ = connection_.isConnected() && connection_.registerService(kService) &&
                     connection_.registerVirtualObject(kPath, object_.get(), QDBusConnection::SubPath);
        },
        Qt::BlockingQueuedConnection);
}

FakeShortcutsPortal::~FakeShortcutsPortal() {
    connection_.unregisterObject(kPath, QDBusConnection::UnregisterTree);
    connection_.unregisterService(kService);
    QDBusConnection::disconnectFromBus(QStringLiteral("mosswick-fake-portal"));
    thread_.quit();
    thread_.wait();
}

void FakeShortcutsPortal::answerBindingsWith(uint response) {
    QMutexLocker lock(&object_->mutex);
    object_->bindResponse = response;
}

void FakeShortcutsPortal::bindNothing() {
    QMutexLocker lock(&object_->mutex);
    object_->bindsNothing = true;
}

std::vector<FakeShortcutsPortal::Shortcut> FakeShortcutsPortal::boundShortcuts() const {
    QMutexLocker lock(&object_->mutex);
    return object_->bound;
}

QStringList FakeShortcutsPortal::closedSessions() const {
    QMutexLocker lock(&object_->mutex);
    return object_->closed;
}

void FakeShortcutsPortal::send(const char* member, const QString& session, const QString& id) {
    QDBusMessage signal = QDBusMessage::createSignal(kPath, kInterface, QString::fromLatin1(member));
    signal << QVariant::fromValue(QDBusObjectPath(session)) << id << qulonglong(1) << QVariantMap();
    connection_.send(signal);
}

}  // namespace mosswick::testing
