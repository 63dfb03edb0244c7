#pragma once

#include <QDBusConnection>
#include <QString>
#include <QStringList>
#include <QThread>
#include <memory>
#include <vector>

namespace mosswick::testing {

class FakeShortcutsPortalObject;

// The GlobalShortcuts portal as a desktop would run it, reduced to what a client sees: sessions,
// bindings answered with a chosen response code, and Activated/Deactivated sent on demand. It
// serves from a thread of its own, so the client may block on it.
class FakeShortcutsPortal {
public:
    struct Shortcut {
        QString session;
        QString id;
        QString preferredTrigger;
    };

    explicit FakeShortcutsPortal(const QString& busAddress);
    ~FakeShortcutsPortal();

    bool isReady() const { return ready_; }
    // The response code of the bindings to come: 0 accepted, 1 cancelled by the user.
    void answerBindingsWith(uint response);
    // Answers bindings with success and an empty list, as KDE's portal does for a program
    // outside a sandbox.
    void bindNothing();

    std::vector<Shortcut> boundShortcuts() const;
    QStringList closedSessions() const;

    void activate(const QString& session, const QString& id) { send("Activated", session, id); }
    void deactivate(const QString& session, const QString& id) { send("Deactivated", session, id); }

private:
    void send(const char* member, const QString& session, const QString& id);

    QDBusConnection connection_;
    QThread thread_;
    std::unique_ptr<FakeShortcutsPortalObject> object_;
    bool ready_ = false;
};

}  // namespace mosswick::testing
