#include "platform/x11/X11DirectSaveReceiver.h"

#include <QMetaObject>
#include <QMimeData>

#include "model/Logging.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11DirectSaveWorker.h"

namespace mosswick {

std::unique_ptr<X11DirectSaveReceiver> X11DirectSaveReceiver::create(
    X11Connection& connection, std::chrono::milliseconds answerTimeout) {
    auto worker = X11DirectSaveWorker::start(connection.displayName(), answerTimeout);
    if (!worker) return nullptr;
    return std::unique_ptr<X11DirectSaveReceiver>(new X11DirectSaveReceiver(connection, std::move(worker)));
}

X11DirectSaveReceiver::X11DirectSaveReceiver(X11Connection& connection,
                                             std::shared_ptr<X11DirectSaveWorker> worker)
    : drops_(connection.atoms()), worker_(std::move(worker)) {}

X11DirectSaveReceiver::~X11DirectSaveReceiver() {
    // Before the context goes: no answer may be posted to it afterwards.
    worker_->stop();
}

std::shared_ptr<FilePromise> X11DirectSaveReceiver::promiseFor(const QMimeData& data) {
    const QStringList formats = data.formats();
    if (!formats.contains(QLatin1String("XdndDirectSave0"))) return nullptr;
    const std::optional<X11DropWatch::Drop> drop = drops_.takeLastDrop();
    if (!drop) {
        qCInfo(lcIngest) << "A drop offers a promised file, but its source is unknown";
        return nullptr;
    }
    return promiseFor(
        {drop->source, drop->time, formats.contains(QLatin1String("application/octet-stream"))});
}

std::shared_ptr<FilePromise> X11DirectSaveReceiver::promiseFor(const X11DirectSavePromise::Source& source) {
    QObject* context = &context_;
    auto post = [context](std::function<void()> task) {
        QMetaObject::invokeMethod(context, std::move(task), Qt::QueuedConnection);
    };
    return std::make_shared<X11DirectSavePromise>(worker_, post, source,
                                                  worker_->proposedName(source.window));
}

}  // namespace mosswick
