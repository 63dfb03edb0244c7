#pragma once

#include <QByteArray>
#include <QObject>
#include <chrono>
#include <memory>

#include "platform/x11/X11DirectSavePromise.h"
#include "platform/x11/X11DropWatch.h"

class QMimeData;

namespace mosswick {

class X11Connection;
class X11DirectSaveWorker;

// Files promised through X Direct Save (archive managers, browsers' images): for a drop that
// offers XdndDirectSave0, a promise that asks the source for the file during the drop and
// receives the answer off the main thread. Main thread only.
class X11DirectSaveReceiver {
public:
    static constexpr std::chrono::milliseconds kAnswerTimeout{60'000};

    // Null when the display cannot be reached. The exchanges run on a connection of their own to
    // the display of `connection` (the main thread's), whose atoms note Qt's drops.
    static std::unique_ptr<X11DirectSaveReceiver> create(
        X11Connection& connection, std::chrono::milliseconds answerTimeout = kAnswerTimeout);
    ~X11DirectSaveReceiver();
    X11DirectSaveReceiver(const X11DirectSaveReceiver&) = delete;
    X11DirectSaveReceiver& operator=(const X11DirectSaveReceiver&) = delete;

    // During a drop: the promise it offers, or null (no XdndDirectSave0, or no drop seen on X11).
    std::shared_ptr<FilePromise> promiseFor(const QMimeData& data);
    // The promise of a known drag source.
    std::shared_ptr<FilePromise> promiseFor(const X11DirectSavePromise::Source& source);

private:
    X11DirectSaveReceiver(X11Connection& connection, std::shared_ptr<X11DirectSaveWorker> worker);

    X11DropWatch drops_;
    // Answers are delivered through it; they die with it.
    QObject context_;
    std::shared_ptr<X11DirectSaveWorker> worker_;
};

}  // namespace mosswick
