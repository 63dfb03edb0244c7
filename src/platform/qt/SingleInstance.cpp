#include "platform/qt/SingleInstance.h"

#include <QDataStream>
#include <QDeadlineTimer>
#include <QDir>
#include <QLocalSocket>
#include <QPointer>
#include <QStandardPaths>

namespace mosswick {

namespace {
constexpr int kWriteTimeoutMs = 1000;

void sendAnswer(QLocalSocket* socket, const SingleInstance::Answer& answer) {
    QByteArray message;
    QDataStream stream(&message, QIODevice::WriteOnly);
    stream << qint32(answer.exitCode) << answer.out << answer.err;
    socket->write(message);
    socket->flush();
    socket->disconnectFromServer();  // sends what is left, then closes
}
}  // namespace

QString SingleInstance::socketPath() {
    QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (folder.isEmpty()) folder = QDir::tempPath();
    return folder + QStringLiteral("/mosswick.socket");
}

std::optional<SingleInstance::Answer> SingleInstance::request(const Arguments& arguments, const QString& path,
                                                              int connectTimeoutMs, int answerTimeoutMs) {
    QLocalSocket socket;
    socket.connectToServer(path);
    if (!socket.waitForConnected(connectTimeoutMs)) return std::nullopt;
    QByteArray message;
    QDataStream out(&message, QIODevice::WriteOnly);
    out << arguments;
    socket.write(message);
    while (socket.bytesToWrite() > 0 && socket.waitForBytesWritten(kWriteTimeoutMs)) {
    }

    Answer answer;
    answer.exitCode = -1;
    QDataStream in(&socket);
    const QDeadlineTimer deadline(answerTimeoutMs);
    while (!deadline.hasExpired()) {
        in.startTransaction();
        qint32 exitCode = 0;
        in >> exitCode >> answer.out >> answer.err;
        if (in.commitTransaction()) {
            answer.exitCode = exitCode;
            break;
        }
        if (socket.state() != QLocalSocket::ConnectedState && socket.bytesAvailable() == 0) break;
        socket.waitForReadyRead(int(std::min<qint64>(deadline.remainingTime(), 1000)));
    }
    return answer;
}

SingleInstance::SingleInstance(RequestHandler onRequest) : onRequest_(std::move(onRequest)) {
    server_.setSocketOptions(QLocalServer::UserAccessOption);
    QObject::connect(&server_, &QLocalServer::newConnection, &server_, [this] { accept(); });
}

std::unique_ptr<SingleInstance> SingleInstance::claim(const Arguments& arguments, RequestHandler onRequest,
                                                      const QString& path) {
    if (request(arguments, path, 1000, 5000)) return nullptr;
    std::unique_ptr<SingleInstance> instance(new SingleInstance(std::move(onRequest)));
    QLocalServer::removeServer(path);  // nobody answered: a stale socket from a crash
    if (!instance->server_.listen(path)) {
        qWarning("Mosswick: cannot listen on %s: %s; a second launch will start a second shelf",
                 qPrintable(path), qPrintable(instance->server_.errorString()));
    }
    return instance;
}

void SingleInstance::accept() {
    while (QLocalSocket* socket = server_.nextPendingConnection()) {
        QObject::connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        QObject::connect(socket, &QLocalSocket::readyRead, socket, [this, socket] {
            QDataStream stream(socket);
            stream.startTransaction();
            Arguments arguments;
            stream >> arguments;
            if (!stream.commitTransaction()) return;  // the rest is still on its way
            // The answer may come on a later turn; by then the asker may have gone.
            QPointer<QLocalSocket> asker(socket);
            Respond respond = [asker](Answer answer) {
                if (asker && asker->state() == QLocalSocket::ConnectedState) sendAnswer(asker, answer);
            };
            if (onRequest_)
                onRequest_(arguments, std::move(respond));
            else
                respond({});
        });
    }
}

}  // namespace mosswick
