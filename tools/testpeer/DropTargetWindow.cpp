#include "DropTargetWindow.h"

#include <QDropEvent>
#include <QImage>
#include <QJsonArray>
#include <QMimeData>
#include <QPainter>
#include <QUrl>

#include "DirectSaveReceiver.h"
#include "DropActionNames.h"
#include "SelectionDump.h"
#include "model/LocalPath.h"

namespace mosswick::testpeer {

namespace {

// What a Qt application sees of the same drop.
QJsonObject qtView(const QMimeData& data) {
    QJsonObject view{{QStringLiteral("formats"), QJsonArray::fromStringList(data.formats())}};
    QJsonArray urls;
    for (const QUrl& url : data.urls()) urls.append(QString::fromLatin1(url.toEncoded()));
    view[QStringLiteral("urls")] = urls;
    if (data.hasText()) view[QStringLiteral("text")] = data.text();
    if (data.hasImage()) {
        const QImage image = qvariant_cast<QImage>(data.imageData());
        view[QStringLiteral("image")] = QJsonArray{image.width(), image.height()};
    }
    return view;
}

}  // namespace

DropTargetWindow::DropTargetWindow(const PeerOptions& options, std::unique_ptr<SelectionReader> reader)
    : options_(options), reader_(std::move(reader)), report_(options.report, QStringLiteral("drops")) {
    setAcceptDrops(true);
}

void DropTargetWindow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), QColor(250, 228, 205));
    const QString label = options_.label.isEmpty() ? QStringLiteral("drop here") : options_.label;
    painter.drawText(rect(), Qt::AlignCenter, QStringLiteral("%1\n%2 drops").arg(label).arg(drops_));
}

bool DropTargetWindow::choose(QDropEvent* event) const {
    if (options_.accept == u"ignore") return false;
    const Qt::DropAction wanted = DropActionNames::action(options_.accept);
    event->setDropAction(event->possibleActions() & wanted ? wanted : event->proposedAction());
    return true;
}

void DropTargetWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (choose(event))
        event->accept();
    else
        event->ignore();
}

void DropTargetWindow::dragMoveEvent(QDragMoveEvent* event) {
    if (choose(event))
        event->accept();
    else
        event->ignore();
}

void DropTargetWindow::dropEvent(QDropEvent* event) {
    if (!choose(event)) {
        event->ignore();
        return;
    }
    const QJsonObject entry = record(*event);
    event->accept();
    ++drops_;
    update();
    report_.append(entry);
}

QJsonObject DropTargetWindow::record(const QDropEvent& event) {
    const DropTargetEvents::Offer& offer = events_.offer();
    const int timeoutMs = static_cast<int>(options_.readTimeoutSeconds * 1000);
    const XcbCalls::Atom selection = reader_->atom("XdndSelection");
    QJsonObject promise;
    if (options_.directSaveFolder && offer.targets.contains(reader_->atom("XdndDirectSave0")))
        promise =
            receivePromise(*reader_, offer, LocalPath::fromBytes(*options_.directSaveFolder), timeoutMs);
    QJsonObject entry =
        dumpSelection(*reader_, selection, offer.targets, offer.dropTime, timeoutMs, {"XdndDirectSave0"});
    if (!promise.isEmpty()) entry[QStringLiteral("promise")] = promise;
    entry[QStringLiteral("action")] = DropActionNames::name(event.dropAction());
    entry[QStringLiteral("source_window")] = static_cast<qint64>(offer.source);
    entry[QStringLiteral("position")] = QJsonArray{event.position().x(), event.position().y()};
    entry[QStringLiteral("qt")] = qtView(*event.mimeData());
    return entry;
}

}  // namespace mosswick::testpeer
