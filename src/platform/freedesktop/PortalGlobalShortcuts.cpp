#include "platform/freedesktop/PortalGlobalShortcuts.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QLoggingCategory>
#include <algorithm>

#include "platform/freedesktop/DesktopPortal.h"
#include "triggers/KeyCodeNames.h"
#include "triggers/KeyboardLayout.h"

Q_LOGGING_CATEGORY(lcPortal, "mosswick.portal", QtInfoMsg)

namespace {

// One entry of BindShortcuts' a(sa{sv}): a shortcut's id and its properties.
struct PortalShortcut {
    QString id;
    QVariantMap properties;
};

QDBusArgument& operator<<(QDBusArgument& argument, const PortalShortcut& shortcut) {
    argument.beginStructure();
    argument << shortcut.id << shortcut.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, PortalShortcut& shortcut) {
    argument.beginStructure();
    argument >> shortcut.id >> shortcut.properties;
    argument.endStructure();
    return argument;
}

}  // namespace

Q_DECLARE_METATYPE(PortalShortcut)

namespace mosswick {

namespace {

using DesktopPortal::kPath;
using DesktopPortal::kService;
const QString kInterface = QStringLiteral("org.freedesktop.portal.GlobalShortcuts");
const QString kRequestInterface = QStringLiteral("org.freedesktop.portal.Request");
const QString kSessionInterface = QStringLiteral("org.freedesktop.portal.Session");
constexpr qint32 kOtherFailure = 2;

// A session handle arrives as a string, though some portals send an object path.
QString pathText(const QVariant& value) {
    if (value.metaType() == QMetaType::fromType<QDBusObjectPath>())
        return value.value<QDBusObjectPath>().path();
    return value.toString();
}

bool listsShortcut(const QVariant& shortcuts, const QString& id) {
    if (!shortcuts.canConvert<QDBusArgument>()) return false;
    const QList<PortalShortcut> list = qdbus_cast<QList<PortalShortcut>>(shortcuts.value<QDBusArgument>());
    return std::any_of(list.begin(), list.end(),
                       [&id](const PortalShortcut& entry) { return entry.id == id; });
}

}  // namespace

bool PortalGlobalShortcuts::isAvailable(const QDBusConnection& bus) {
    if (!bus.isConnected()) return false;
    QDBusMessage get = QDBusMessage::createMethodCall(
        kService, kPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    get << kInterface << QStringLiteral("version");
    const QDBusMessage reply = bus.call(get, QDBus::Block, 1000);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) return false;
    return reply.arguments().constFirst().value<QDBusVariant>().variant().toUInt() >= 1;
}

PortalGlobalShortcuts::PortalGlobalShortcuts(const QDBusConnection& bus, const KeyboardLayout& layout)
    : bus_(bus), layout_(layout) {
    qDBusRegisterMetaType<PortalShortcut>();
    qDBusRegisterMetaType<QList<PortalShortcut>>();
    // Every request's answer, whatever its path: the path says which registration it is for.
    bus_.connect(kService, QString(), kRequestInterface, QStringLiteral("Response"), this,
                 SLOT(requestAnswered(QDBusMessage)));
    bus_.connect(kService, kPath, kInterface, QStringLiteral("Activated"), this,
                 SLOT(shortcutActivated(QDBusMessage)));
    bus_.connect(kService, kPath, kInterface, QStringLiteral("Deactivated"), this,
                 SLOT(shortcutDeactivated(QDBusMessage)));
}

PortalGlobalShortcuts::~PortalGlobalShortcuts() {
    for (const Binding& binding : bindings_)
        if (!binding.sessionPath.isEmpty()) closeSession(binding.sessionPath);
}

void PortalGlobalShortcuts::installHandler(EventHandler events, FailureHandler lateFailures) {
    events_ = std::move(events);
    lateFailures_ = std::move(lateFailures);
}

QString PortalGlobalShortcuts::preferredTrigger(const KeyCombo& combo) const {
    const QString key = KeyCodeNames::symbol(combo.keyCode, layout_).value_or(QString());
    if (key.isEmpty()) return {};
    QString trigger;
    if (combo.modifierFlags & KeyCombo::kControl) trigger += QStringLiteral("CTRL+");
    if (combo.modifierFlags & KeyCombo::kOption) trigger += QStringLiteral("ALT+");
    if (combo.modifierFlags & KeyCombo::kShift) trigger += QStringLiteral("SHIFT+");
    if (combo.modifierFlags & KeyCombo::kCommand) trigger += QStringLiteral("LOGO+");
    return trigger + key;
}

HotKeyService::Registration PortalGlobalShortcuts::registerHotKey(const KeyCombo& combo) {
    if (!bus_.isConnected()) return {std::nullopt, kOtherFailure};
    bindings_.push_back({++lastHandle_, preferredTrigger(combo), Stage::creatingSession, {}, {}});
    Binding& binding = bindings_.back();
    const QString token = nextToken();
    const QVariantMap options{{QStringLiteral("handle_token"), token},
                              {QStringLiteral("session_handle_token"), nextToken()}};
    call(binding, QStringLiteral("CreateSession"), {options}, token);
    return {binding.handle, 0};
}

void PortalGlobalShortcuts::unregisterHotKey(Handle handle) {
    for (const Binding& binding : bindings_)
        if (binding.handle == handle && !binding.sessionPath.isEmpty()) closeSession(binding.sessionPath);
    // A session still being created is closed when its answer comes and finds no registration.
    std::erase_if(bindings_, [handle](const Binding& binding) { return binding.handle == handle; });
    keyDown_ = false;
}

QString PortalGlobalShortcuts::nextToken() { return QStringLiteral("mosswick%1").arg(++lastToken_); }

QString PortalGlobalShortcuts::requestPathFor(const QString& token) const {
    QString sender = bus_.baseService();
    sender.remove(0, sender.startsWith(u':') ? 1 : 0).replace(u'.', u'_');
    return QStringLiteral("/org/freedesktop/portal/desktop/request/%1/%2").arg(sender, token);
}

void PortalGlobalShortcuts::call(Binding& binding, const QString& method, const QList<QVariant>& arguments,
                                 const QString& token) {
    binding.requestPath = requestPathFor(token);
    QDBusMessage message = QDBusMessage::createMethodCall(kService, kPath, kInterface, method);
    message.setArguments(arguments);
    auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(message), this);
    const Handle handle = binding.handle;
    const QString predicted = binding.requestPath;
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, handle, predicted](QDBusPendingCallWatcher* call) {
                call->deleteLater();
                const QDBusPendingReply<QDBusObjectPath> reply = *call;
                if (reply.isError()) {
                    qCInfo(lcPortal) << "the shortcuts portal refused:" << reply.error().message();
                    fail(handle, kOtherFailure);
                    return;
                }
                // Portals older than the handle_token convention answer on a path of their own choosing.
                // Unless the answer came first and the registration has moved on.
                for (Binding& entry : bindings_)
                    if (entry.handle == handle && entry.requestPath == predicted)
                        entry.requestPath = reply.value().path();
            });
}

void PortalGlobalShortcuts::bind(Binding& binding) {
    binding.stage = Stage::binding;
    QVariantMap properties{{QStringLiteral("description"), QStringLiteral("Toggle the shelf")}};
    if (!binding.trigger.isEmpty()) properties.insert(QStringLiteral("preferred_trigger"), binding.trigger);
    const QList<PortalShortcut> shortcuts{{kShortcutId, properties}};
    const QString token = nextToken();
    call(binding, QStringLiteral("BindShortcuts"),
         {QVariant::fromValue(QDBusObjectPath(binding.sessionPath)), QVariant::fromValue(shortcuts),
          QString(), QVariantMap{{QStringLiteral("handle_token"), token}}},
         token);
}

void PortalGlobalShortcuts::requestAnswered(const QDBusMessage& message) {
    const QList<QVariant> arguments = message.arguments();
    if (arguments.size() < 2) return;
    const uint response = arguments.at(0).toUInt();
    const QVariantMap results = qdbus_cast<QVariantMap>(arguments.at(1));
    Binding* binding = bindingForRequest(message.path());
    if (!binding) {
        // The registration went away while its session was being made: don't leave it open.
        const QString session = pathText(results.value(QStringLiteral("session_handle")));
        if (response == 0 && !session.isEmpty() && !bindingForSession(session)) closeSession(session);
        return;
    }
    binding->requestPath.clear();
    if (response != 0) {
        fail(binding->handle, static_cast<qint32>(response));
        return;
    }
    if (binding->stage == Stage::creatingSession) {
        binding->sessionPath = pathText(results.value(QStringLiteral("session_handle")));
        if (binding->sessionPath.isEmpty()) {
            fail(binding->handle, kOtherFailure);
            return;
        }
        bind(*binding);
        return;
    }
    // A desktop may answer "done" having bound nothing (KDE's portal, for a program outside a
    // sandbox): the key would never arrive, so that is a refusal too.
    if (!listsShortcut(results.value(QStringLiteral("shortcuts")), kShortcutId)) {
        qCInfo(lcPortal) << "the shortcuts portal bound nothing";
        fail(binding->handle, kBoundNothing);
        return;
    }
    binding->stage = Stage::bound;
}

void PortalGlobalShortcuts::shortcutActivated(const QDBusMessage& message) {
    const QList<QVariant> arguments = message.arguments();
    if (arguments.size() < 2 || arguments.at(1).toString() != kShortcutId) return;
    if (!bindingForSession(pathText(arguments.at(0)))) return;
    // Some desktops repeat Activated while the key is held; the first is the press.
    if (keyDown_) return;
    keyDown_ = true;
    if (events_) events_(Event::pressed);
}

void PortalGlobalShortcuts::shortcutDeactivated(const QDBusMessage& message) {
    const QList<QVariant> arguments = message.arguments();
    if (arguments.size() < 2 || arguments.at(1).toString() != kShortcutId) return;
    if (!bindingForSession(pathText(arguments.at(0))) || !keyDown_) return;
    keyDown_ = false;
    if (events_) events_(Event::released);
}

void PortalGlobalShortcuts::fail(Handle handle, qint32 status) {
    for (const Binding& binding : bindings_)
        if (binding.handle == handle && !binding.sessionPath.isEmpty()) closeSession(binding.sessionPath);
    const auto before = bindings_.size();
    std::erase_if(bindings_, [handle](const Binding& binding) { return binding.handle == handle; });
    if (bindings_.size() != before && lateFailures_) lateFailures_(handle, status);
}

void PortalGlobalShortcuts::closeSession(const QString& sessionPath) {
    bus_.asyncCall(
        QDBusMessage::createMethodCall(kService, sessionPath, kSessionInterface, QStringLiteral("Close")));
}

PortalGlobalShortcuts::Binding* PortalGlobalShortcuts::bindingForRequest(const QString& path) {
    for (Binding& binding : bindings_)
        if (!binding.requestPath.isEmpty() && binding.requestPath == path) return &binding;
    return nullptr;
}

PortalGlobalShortcuts::Binding* PortalGlobalShortcuts::bindingForSession(const QString& path) {
    for (Binding& binding : bindings_)
        if (!binding.sessionPath.isEmpty() && binding.sessionPath == path) return &binding;
    return nullptr;
}

}  // namespace mosswick
