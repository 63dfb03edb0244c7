#include "DragSourceWindow.h"

#include <QApplication>
#include <QDrag>
#include <QMouseEvent>
#include <QPainter>

#include "DropActionNames.h"
#include "PayloadMimeData.h"

namespace mosswick::testpeer {

namespace {

QList<std::pair<QByteArray, QByteArray>> servedAsIs(const Payload& payload) {
    QList<std::pair<QByteArray, QByteArray>> targets;
    if (const QByteArray* link = payload.find(QStringLiteral("text/x-moz-url")))
        targets.append({"text/x-moz-url", *link});
    return targets;
}

std::optional<DirectSavePromise::Terms> promiseTerms(const PeerOptions& options) {
    if (!options.promiseName) return std::nullopt;
    return DirectSavePromise::Terms{
        *options.promiseName,   options.promiseData,   options.promiseFailure,     options.promiseLateSeconds,
        options.promiseOwnName, options.promisePieces, options.promisePieceDelayMs};
}

}  // namespace

DragSourceWindow::DragSourceWindow(const PeerOptions& options, Payload payload)
    : options_(options),
      payload_(std::move(payload)),
      events_(servedAsIs(payload_)),
      report_(options.report, QStringLiteral("drags")) {
    events_.onFinished = [this](const DragSourceEvents::Finished& finished) {
        if (!dragging_) return;
        finished_ = finished;
        if (!inExec_) report();
    };
    finishWait_.setSingleShot(true);
    connect(&finishWait_, &QTimer::timeout, this, &DragSourceWindow::report);
}

void DragSourceWindow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), QColor(205, 228, 250));
    painter.drawText(rect(), Qt::AlignCenter,
                     options_.label.isEmpty() ? QStringLiteral("drag me") : options_.label);
}

void DragSourceWindow::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && !dragging_) pressedAt_ = event->position().toPoint();
}

void DragSourceWindow::mouseReleaseEvent(QMouseEvent*) { pressedAt_.reset(); }

void DragSourceWindow::mouseMoveEvent(QMouseEvent* event) {
    if (!pressedAt_ || !(event->buttons() & Qt::LeftButton)) return;
    const QPoint moved = event->position().toPoint() - *pressedAt_;
    if (moved.manhattanLength() < QApplication::startDragDistance()) return;
    pressedAt_.reset();
    startDrag();
}

void DragSourceWindow::startDrag() {
    dragging_ = true;
    finished_.reset();
    promise_.reset();
    if (auto terms = promiseTerms(options_)) promise_.emplace(std::move(*terms));
    auto* drag = new QDrag(this);
    std::function<QByteArray()> keep;
    if (promise_) keep = [this] { return promise_->keep(); };
    drag->setMimeData(new PayloadMimeData(payload_, keep));
    // The drag selection has its owner once the drag runs: the proposed name goes on that window.
    if (promise_) QTimer::singleShot(0, this, [this] { promise_->propose(); });
    inExec_ = true;
    dragResult_ = drag->exec(DropActionNames::actions(options_.actions), Qt::CopyAction);
    inExec_ = false;
    // exec() returns once the drop is sent; the target may still be reading (a promise may take
    // long) before it says it has finished. Without a target there is no finish to wait for.
    if (finished_ || dragResult_ == Qt::IgnoreAction)
        report();
    else
        finishWait_.start(
            static_cast<int>((options_.finishTimeoutSeconds + options_.promiseLateSeconds) * 1000));
}

void DragSourceWindow::report() {
    const auto& finished = finished_;
    finishWait_.stop();
    dragging_ = false;
    QJsonObject entry{{QStringLiteral("exec_action"), DropActionNames::name(dragResult_)},
                      {QStringLiteral("finished"), finished.has_value()},
                      {QStringLiteral("accepted"), finished && finished->accepted},
                      {QStringLiteral("action"),
                       finished && finished->accepted ? finished->action : QStringLiteral("none")}};
    if (finished) entry[QStringLiteral("target_window")] = static_cast<qint64>(finished->target);
    if (promise_ && !promise_->outcome().isEmpty()) entry[QStringLiteral("promise")] = promise_->outcome();
    report_.append(entry);
    if (options_.stay) return;
    // A file still being written is finished first.
    const auto quit = [] { QTimer::singleShot(0, qApp, &QCoreApplication::quit); };
    if (promise_)
        promise_->whenWritten(quit);
    else
        quit();
}

}  // namespace mosswick::testpeer
