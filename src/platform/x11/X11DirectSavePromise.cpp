#include "platform/x11/X11DirectSavePromise.h"

#include <QMimeDatabase>

#include "model/ShelfItem.h"
#include "platform/x11/X11DirectSaveWorker.h"

namespace mosswick {

X11DirectSavePromise::X11DirectSavePromise(std::shared_ptr<X11DirectSaveWorker> worker, PostToMain post,
                                           Source source, QByteArray proposedName)
    : worker_(std::move(worker)),
      post_(std::move(post)),
      source_(source),
      proposedName_(std::move(proposedName)) {}

QStringList X11DirectSavePromise::fileTypes() const {
    if (proposedName_.isEmpty()) return {};
    const QMimeType type =
        QMimeDatabase().mimeTypeForFile(QString::fromUtf8(proposedName_), QMimeDatabase::MatchExtension);
    if (!type.isValid() || type.isDefault()) return {};
    return {type.name()};
}

std::vector<QByteArray> X11DirectSavePromise::fileNames() const {
    if (proposedName_.isEmpty()) return {};
    return {proposedName_};
}

void X11DirectSavePromise::receive(const Destination& destination, Reader reader) {
    if (asked_ || !reader) return;
    asked_ = true;
    X11DirectSaveWorker::Exchange exchange;
    exchange.source = source_.window;
    exchange.time = source_.time;
    exchange.wantsData = source_.offersData;
    exchange.destination = destination;
    exchange.done = [post = post_, reader = std::move(reader)](const Delivery& delivery) {
        post([reader, delivery] { reader(delivery); });
    };
    worker_->begin(std::move(exchange));
}

}  // namespace mosswick
