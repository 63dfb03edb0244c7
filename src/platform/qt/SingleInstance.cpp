#include "platform/qt/SingleInstance.h"

#include <QDataStream>
#include <QDir>
#include <QLocalSocket>
#include <QStandardPaths>

namespace mosswick {

namespace {
constexpr int kAnswerTimeoutMs = 1000;

bool handOver(const QString& path, const QStringList& arguments) {
    QLocalSocket socket;
    socket.connectToServer(path);
    if (!socket.waitForConnected(kAnswerTimeoutMs)) return false;
    QByteArray message;
    QDataStream stream(&message, QIODevice::WriteOnly);
    stream << arguments;
    socket.write(message);
    socket.flush();
    // The primary closes the connection once it has read the message.
    socket.waitForDisconnected(kAnswerTimeoutMs);
    return true;
}
}  // namespace

QString SingleInstance::socketPath() {
    QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (folder.isEmpty()) folder = QDir::tempPath();
    return folder + QStringLiteral("/mosswick.socket");
}

SingleInstance::SingleInstance(MessageHandler onMessage) : onMessage_(std::move(onMessage)) {
    server_.setSocketOptions(QLocalServer::UserAccessOption);
    QObject::connect(&server_, &QLocalServer::newConnection, &server_, [this] { accept(); });
}

std::unique_ptr<SingleInstance> SingleInstance::claim(const QStringList& arguments, MessageHandler onMessage,
                                                      const QString& path) {
    if (handOver(path, arguments)) return nullptr;
    std::unique_ptr<SingleInstance> instance(new SingleInstance(std::move(onMessage)));
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
            QStringList arguments;
            stream >> arguments;
            if (!stream.commitTransaction()) return;  // the rest is still on its way
            socket->disconnectFromServer();
            if (onMessage_) onMessage_(arguments);
        });
    }
}

}  // namespace mosswick
