#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>
#include <functional>

namespace mosswick {

// What the updater (app/Updater.h) needs of the platform, below the application layer so that
// backends can provide it.

// Fetches one address over HTTPS. Refuses a redirect to plain HTTP and stops reading past
// `maxBytes` (both an error). `done` is called once, on the main thread, unless the transport
// is destroyed first.
class UpdateTransport {
public:
    struct Result {
        QByteArray body;
        QString error;  // empty on success
    };
    virtual ~UpdateTransport() = default;
    virtual void fetch(const QUrl& url, qint64 maxBytes, std::function<void(Result)> done) = 0;
};

// The self-installed copy that an update replaces.
class UpdateInstallation {
public:
    virtual ~UpdateInstallation() = default;
    // Unpacks the verified archive beside the installed copy and swaps it in, keeping the old
    // copy until the new one has started. The error, for the user; empty on success.
    virtual QString install(const QByteArray& archive) = 0;
    // Starts the new copy and quits this one.
    virtual void restart() = 0;
};

}  // namespace mosswick
