#pragma once

#include <QLocalServer>
#include <QStringList>
#include <functional>
#include <memory>

namespace mosswick {

// One Mosswick per user session. The first process listens on an owner-only local socket in
// $XDG_RUNTIME_DIR; a later launch hands its arguments to it and exits. Holding the socket is
// the lock: a socket left by a crashed process is noticed (nobody answers) and taken over.
class SingleInstance {
public:
    using MessageHandler = std::function<void(const QStringList& arguments)>;

    // The running instance's socket path for this user.
    static QString socketPath();

    // Nothing when another instance runs: it was handed `arguments` and this process should
    // exit. Otherwise the new primary, which calls `onMessage` for each later launch.
    static std::unique_ptr<SingleInstance> claim(const QStringList& arguments, MessageHandler onMessage,
                                                 const QString& path = socketPath());

private:
    explicit SingleInstance(MessageHandler onMessage);
    void accept();

    QLocalServer server_;
    MessageHandler onMessage_;
};

}  // namespace mosswick
