#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <sys/types.h>

namespace mosswick::testing {

// A private X server for one test: started on a free display number of its own choosing, stopped
// when the object goes. isRunning() is false when Xvfb is missing or did not come up.
class XvfbServer {
public:
    XvfbServer();
    ~XvfbServer();
    XvfbServer(const XvfbServer&) = delete;
    XvfbServer& operator=(const XvfbServer&) = delete;

    bool isRunning() const { return pid_ > 0; }
    // Why it is not running, for the skip message.
    const QString& problem() const { return problem_; }
    // ":N"
    const QByteArray& displayName() const { return displayName_; }

    // Runs xdotool against this server and waits for it; false when it failed.
    bool xdotool(const QStringList& arguments) const;

private:
    void stop();

    pid_t pid_ = -1;
    QByteArray displayName_;
    QString problem_;
};

}  // namespace mosswick::testing
