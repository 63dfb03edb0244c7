#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <vector>

#include "triggers/HotKeyService.h"

class QDBusMessage;
class QDBusPendingCallWatcher;

namespace mosswick {

class KeyboardLayout;

// The global shortcut through the desktop's GlobalShortcuts portal, for Wayland sessions where an
// X11 grab only sees keys while one of Mosswick's own windows has the focus. Each registration is
// a portal session holding one shortcut, with the combo as its preferred trigger; the desktop may
// let the user pick another. The portal answers later, so registerHotKey() hands out a handle at
// once and a refusal arrives through the late-failure handler, with the portal's response code
// as its status (1 cancelled by the user, 2 otherwise), or kBoundNothing when the desktop
// answered without binding the shortcut. Activated and Deactivated are the key going down and up.
class PortalGlobalShortcuts final : public QObject, public HotKeyService {
    Q_OBJECT

public:
    static inline const QString kShortcutId = QStringLiteral("toggle-shelf");
    // The late refusal's status when the desktop said yes but bound no shortcut: the portal
    // cannot hold the key for this program at all.
    static constexpr qint32 kBoundNothing = 3;
    // The portal's response code when the user turned the binding down.
    static constexpr qint32 kCancelledByUser = 1;

    // Whether the desktop offers the portal on `bus`; asks it, waiting up to a second.
    static bool isAvailable(const QDBusConnection& bus);

    PortalGlobalShortcuts(const QDBusConnection& bus, const KeyboardLayout& layout);
    ~PortalGlobalShortcuts() override;

    void installHandler(EventHandler events, FailureHandler lateFailures) override;
    Registration registerHotKey(const KeyCombo& combo) override;
    void unregisterHotKey(Handle handle) override;

    // The trigger a combo is proposed as, in the desktop shortcut notation ("CTRL+ALT+space");
    // empty when the key has no name there.
    QString preferredTrigger(const KeyCombo& combo) const;

private slots:
    void requestAnswered(const QDBusMessage& message);
    void shortcutActivated(const QDBusMessage& message);
    void shortcutDeactivated(const QDBusMessage& message);

private:
    enum class Stage { creatingSession, binding, bound };
    struct Binding {
        Handle handle;
        QString trigger;
        Stage stage;
        QString requestPath;
        QString sessionPath;
    };

    QString nextToken();
    QString requestPathFor(const QString& token) const;
    void call(Binding& binding, const QString& method, const QList<QVariant>& arguments,
              const QString& token);
    void bind(Binding& binding);
    void fail(Handle handle, qint32 status);
    void closeSession(const QString& sessionPath);
    Binding* bindingForRequest(const QString& path);
    Binding* bindingForSession(const QString& path);

    QDBusConnection bus_;
    const KeyboardLayout& layout_;
    EventHandler events_;
    FailureHandler lateFailures_;
    std::vector<Binding> bindings_;
    Handle lastHandle_ = 0;
    int lastToken_ = 0;
    bool keyDown_ = false;
};

}  // namespace mosswick
