#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTimer>
#include <functional>

namespace mosswick::testing {

// Runs the event loop until `done` holds or `timeoutMs` pass; `pump` is called on every turn for
// clients that live outside Qt's loop. Returns whether `done` came to hold.
inline bool waitUntil(const std::function<bool()>& done, int timeoutMs = 5000,
                      const std::function<void()>& pump = {}) {
    QDeadlineTimer deadline(timeoutMs);
    QTimer wakeUp;  // so the loop comes round even when only the other clients have news
    wakeUp.start(2);
    for (;;) {
        if (pump) pump();
        if (done()) return true;
        if (deadline.hasExpired()) return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

// Keeps the event loop running for a while, for checks that something does not happen.
inline void keepRunning(int ms, const std::function<void()>& pump = {}) {
    waitUntil([] { return false; }, ms, pump);
}

}  // namespace mosswick::testing
