#include "browser/RunningInstance.h"

#include "platform/base/Log.h"

#include <QDataStream>
#include <QDir>
#include <QFileInfo>
#include <QLocalSocket>
#include <QStandardPaths>

namespace
{
constexpr int patience = 3000; // milliseconds

QString dataFolder()
{
    QString folder = QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
    QDir().mkpath(folder);
    return folder;
}
} // namespace

RunningInstance::RunningInstance()
    : _lock(QDir(dataFolder()).filePath(QStringLiteral("lock")))
    , _serverName(QDir(dataFolder()).filePath(QStringLiteral("socket")))
{
    _lock.setStaleLockTime(0); // held as long as its process lives
    _isFirst = _lock.tryLock(0);
    if (!_isFirst)
        return;
    QLocalServer::removeServer(_serverName);
    _server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&_server, &QLocalServer::newConnection, this, &RunningInstance::receive);
    if (!_server.listen(_serverName))
        qCWarning(logWayfold) << "No further pages can be opened from outside:" << _server.errorString();
}

bool RunningInstance::sendAddresses(const QStringList &addresses) const
{
    QLocalSocket socket;
    socket.connectToServer(_serverName);
    if (!socket.waitForConnected(patience))
        return false;
    QByteArray message;
    QDataStream stream(&message, QIODevice::WriteOnly);
    stream << addresses;
    socket.write(message);
    // The first process says that it has understood by closing the connection.
    return socket.waitForBytesWritten(patience) && socket.waitForDisconnected(patience);
}

void RunningInstance::receive()
{
    QLocalSocket *socket = _server.nextPendingConnection();
    connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
        QDataStream stream(socket);
        stream.startTransaction();
        QStringList addresses;
        stream >> addresses;
        if (!stream.commitTransaction())
            return;
        socket->disconnectFromServer();
        Q_EMIT addressesReceived(addresses);
    });
}
