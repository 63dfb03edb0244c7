#pragma once

#include <QObject>
#include <memory>

class QSocketNotifier;

namespace mosswick {

// Turns SIGTERM, SIGINT and SIGHUP into an orderly QCoreApplication::quit(), so the quit sequence (the
// shelf saved, the key released) runs when the session ends or the user presses Ctrl+C. The
// handler only writes a byte to a pipe; the event loop does the rest.
class UnixSignalQuit : public QObject {
    Q_OBJECT

public:
    explicit UnixSignalQuit(QObject* parent = nullptr);
    ~UnixSignalQuit() override;

private:
    std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace mosswick
