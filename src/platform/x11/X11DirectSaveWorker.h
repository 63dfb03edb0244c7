#pragma once

#include <QByteArray>
#include <QtGlobal>
#include <atomic>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <thread>

#include "ingest/FilePromise.h"

struct xcb_connection_t;

namespace mosswick {

// X Direct Save exchanges on a connection of their own, answered on a thread of their own: the
// receiver writes a file:// URI into the source window's XdndDirectSave0 property and converts
// XdndSelection to XdndDirectSave0 at the drop's time; the source writes the file and answers
// "S", or "F" (then, where it offers application/octet-stream, the receiver writes those bytes
// itself) or "E". A source that is slow, dead or silent never holds up the main thread: the
// answer is awaited here, for a while, after which a file that did arrive is still taken.
//
// Some sources (browsers) answer "S" as they begin to write: the file is handed on only once it
// is complete, that is once nobody holds it open for writing any more (watched with inotify, so
// nothing wakes while nothing arrives), or where that cannot be told, once it has stopped changing
// for a moment.
class X11DirectSaveWorker {
public:
    struct Exchange {
        quint32 source = 0;  // the drag source's window, which holds XdndDirectSave0
        quint32 time = 0;    // the drop's server time
        // The source offers application/octet-stream: the bytes to write after an "F".
        bool wantsData = false;
        FilePromise::Destination destination;
        // Called once, on the worker's thread.
        std::function<void(const FilePromise::Delivery&)> done;
    };

    // How long a file that cannot be told complete (no lease on its file system) has to stay
    // unchanged to count as complete. A file still open for writing, or not there yet after "S",
    // is waited for as long as a source's answer, counted from the folder's last change.
    static constexpr std::chrono::milliseconds kSettleTime{800};

    // Null when the display cannot be reached.
    static std::shared_ptr<X11DirectSaveWorker> start(const QByteArray& displayName,
                                                      std::chrono::milliseconds answerTimeout);
    ~X11DirectSaveWorker();
    X11DirectSaveWorker(const X11DirectSaveWorker&) = delete;
    X11DirectSaveWorker& operator=(const X11DirectSaveWorker&) = delete;

    // Ends the thread; exchanges still open are dropped unanswered.
    void stop();

    // The name the source proposes in its XdndDirectSave0 property (asks the server, not the
    // source).
    QByteArray proposedName(quint32 source);

    // Asks the source for the file and returns once the server has passed the request on, so it
    // reaches the source before the drop is finished.
    void begin(Exchange exchange);

private:
    struct Pending;
    enum class Settled { waiting, done };

    X11DirectSaveWorker(xcb_connection_t* connection, std::chrono::milliseconds answerTimeout);
    void run();
    // One event of the connection (an xcb_generic_event_t, which cannot be declared here).
    void handle(const void* event);
    QByteArray takeProperty(quint32 window, quint32 property, quint32* type);
    void settleDue();
    void readFileEvents();
    // Hands the finished exchanges on; called without the lock.
    void finish(std::vector<std::pair<std::unique_ptr<Pending>, FilePromise::Delivery>>& finished);
    // Ends the exchange's watch of its folder; with the lock held.
    void unwatch(Pending& pending);
    std::optional<FilePromise::Delivery> settle(Pending& pending, bool dueNow);
    int msUntilNextDeadline();
    void wake();

    xcb_connection_t* connection_;
    std::chrono::milliseconds answerTimeout_;
    quint32 root_ = 0;
    quint32 selection_ = 0;
    quint32 directSave_ = 0;
    quint32 textPlain_ = 0;
    quint32 octetStream_ = 0;
    quint32 incremental_ = 0;
    quint32 answerProperty_ = 0;
    quint32 dataProperty_ = 0;
    QByteArray host_;
    int wakeRead_ = -1;
    int wakeWrite_ = -1;
    int fileEvents_ = -1;  // inotify, watching the folders of files still being written

    std::mutex mutex_;
    std::map<quint32, std::unique_ptr<Pending>> pending_;  // by the requesting window
    std::atomic<bool> stopping_ = false;
    std::thread thread_;
};

}  // namespace mosswick
