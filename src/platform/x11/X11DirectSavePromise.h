#pragma once

#include <functional>
#include <memory>

#include "ingest/FilePromise.h"

namespace mosswick {

class X11DirectSaveWorker;

// One file a drag source offers through X Direct Save, received by the worker; the answer is
// handed to the reader on the main thread.
class X11DirectSavePromise final : public FilePromise {
public:
    // Runs a task on the main thread (dropped if the receiver is gone by then).
    using PostToMain = std::function<void(std::function<void()>)>;

    struct Source {
        quint32 window = 0;       // the drag source's window
        quint32 time = 0;         // the drop's server time
        bool offersData = false;  // application/octet-stream is on offer
    };

    X11DirectSavePromise(std::shared_ptr<X11DirectSaveWorker> worker, PostToMain post, Source source,
                         QByteArray proposedName);

    // The type the proposed name tells, if any.
    QStringList fileTypes() const override;
    std::vector<QByteArray> fileNames() const override;
    // The first call only: a source writes its file once.
    void receive(const Destination& destination, Reader reader) override;

private:
    std::shared_ptr<X11DirectSaveWorker> worker_;
    PostToMain post_;
    Source source_;
    QByteArray proposedName_;
    bool asked_ = false;
};

}  // namespace mosswick
