#pragma once

#include <QByteArray>
#include <QList>
#include <QLocalServer>
#include <functional>
#include <memory>
#include <optional>

namespace mosswick {

// One Mosswick per user session. The first process listens on an owner-only local socket in
// $XDG_RUNTIME_DIR; a later launch, or a command from the shell, hands its arguments to it and
// prints its answer. Holding the socket is the lock: a socket left by a crashed process is noticed
// (nobody answers) and taken over.
//
// On the wire, both ways a QDataStream: the request is the arguments as byte arrays (paths are
// bytes); the answer is the exit code and what to print on standard output and standard error.
// The running instance closes the connection after answering.
class SingleInstance {
public:
    using Arguments = QList<QByteArray>;
    struct Answer {
        int exitCode = 0;
        QByteArray out;
        QByteArray err;
    };
    using Respond = std::function<void(Answer)>;
    using RequestHandler = std::function<void(const Arguments& arguments, Respond respond)>;

    // The running instance's socket path for this user.
    static QString socketPath();

    // Asks the running instance; nothing when none answers within `connectTimeoutMs`. Then waits
    // up to `answerTimeoutMs` for the answer (a hung instance gives an exit code of -1).
    static std::optional<Answer> request(const Arguments& arguments, const QString& path = socketPath(),
                                         int connectTimeoutMs = 1000, int answerTimeoutMs = 60000);

    // Nothing when another instance runs: it was handed `arguments` and this process should
    // exit. Otherwise the new primary, which calls `onRequest` for each later request (from the
    // event loop, so not before it runs).
    static std::unique_ptr<SingleInstance> claim(const Arguments& arguments, RequestHandler onRequest,
                                                 const QString& path = socketPath());

private:
    explicit SingleInstance(RequestHandler onRequest);
    void accept();

    QLocalServer server_;
    RequestHandler onRequest_;
};

}  // namespace mosswick
