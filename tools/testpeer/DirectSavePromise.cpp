#include "DirectSavePromise.h"

#include <QEventLoop>
#include <QTimer>
#include <QUrl>
#include <cstdio>
#include <xcb/xcb.h>

#include "model/AtomicFile.h"
#include "model/LocalPath.h"

namespace mosswick::testpeer {

namespace {
const QByteArray kProperty = "XdndDirectSave0";

// The target names this machine in the URI; the path is ours only when it is this machine.
std::optional<std::filesystem::path> localPath(const QByteArray& uri) {
    QUrl url = QUrl::fromEncoded(uri.trimmed());
    if (url.host() == QString::fromLatin1(XcbCalls::hostName())) url.setHost(QString());
    return LocalPath::fromUrl(url);
}
}  // namespace

void DirectSavePromise::propose() {
    xcb_connection_t* connection = XcbCalls::qtConnection();
    if (!connection) return;
    window_ = XcbCalls::selectionOwner(connection, XcbCalls::atom(connection, "XdndSelection"));
    XcbCalls::setProperty(connection, window_, XcbCalls::atom(connection, kProperty),
                          XcbCalls::atom(connection, "text/plain"), 8, terms_.name);
    xcb_flush(connection);
}

QByteArray DirectSavePromise::keep() {
    outcome_ = {};
    xcb_connection_t* connection = XcbCalls::qtConnection();
    if (!connection || !window_) return answer("E", QStringLiteral("no drag window"));
    const auto written = XcbCalls::property(connection, window_, XcbCalls::atom(connection, kProperty));
    const QByteArray uri = written ? written->bytes : QByteArray();
    outcome_[QStringLiteral("uri")] = QString::fromLatin1(uri);
    if (terms_.failure) return answer(QByteArray(1, *terms_.failure), QStringLiteral("failing as asked"));
    auto path = localPath(uri);
    if (!path) return answer("E", QStringLiteral("the target left no local file URI"));
    if (terms_.ownName) path = path->parent_path() / LocalPath::fromBytes(*terms_.ownName);
    if (terms_.lateSeconds > 0) {
        // Late, but the window keeps answering meanwhile.
        QEventLoop wait;
        QTimer::singleShot(static_cast<int>(terms_.lateSeconds * 1000), &wait, &QEventLoop::quit);
        wait.exec();
    }
    if (terms_.pieces > 1) {
        // Like a browser: the file is made, the answer given, and the bytes follow.
        writer_ = std::make_unique<PieceWriter>(*path, terms_.data, terms_.pieces, terms_.pieceDelayMs);
        if (!writer_->problem().empty()) return answer("E", QString::fromStdString(writer_->problem()));
        outcome_[QStringLiteral("written")] = QString::fromLatin1(LocalPath::toUrl(*path).toEncoded());
        return answer("S");
    }
    if (const std::string error = AtomicFile::write(*path, terms_.data, 0644); !error.empty())
        return answer("E", QString::fromStdString(error));
    outcome_[QStringLiteral("written")] = QString::fromLatin1(LocalPath::toUrl(*path).toEncoded());
    return answer("S");
}

void DirectSavePromise::whenWritten(std::function<void()> then) {
    if (writer_)
        writer_->whenFinished(std::move(then));
    else if (then)
        then();
}

QByteArray DirectSavePromise::answer(const QByteArray& reply, const QString& error) {
    outcome_[QStringLiteral("reply")] = QString::fromLatin1(reply);
    if (!error.isEmpty()) {
        outcome_[QStringLiteral("error")] = error;
        std::fprintf(stderr, "promise: %s\n", qPrintable(error));
    }
    return reply;
}

}  // namespace mosswick::testpeer
