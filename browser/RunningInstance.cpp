#include "browser/RunningInstance.h"

#include "platform/base/Log.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLocalSocket>
#include <QStandardPaths>
#include <QThread>
#include <sys/un.h>

// The first process says that it is awake, the second sends its addresses as a JSON array, the first says that it has
// taken them; one line each. To one that is not awake nothing is sent, or it would open the pages whenever it wakes up.
namespace
{
constexpr char readyLine[] = "ready\n";
constexpr char takenLine[] = "taken\n";
constexpr qint64 longestMessage = qint64(16) * 1024 * 1024; // bytes
constexpr unsigned long rest = 50;                          // milliseconds between two attempts

QString makeDataFolder()
{
    QString folder = QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
    QDir().mkpath(folder);
    return folder;
}

bool isShortEnough(const QString &path)
{
    return QFile::encodeName(path).size() < qsizetype(sizeof(sockaddr_un::sun_path));
}

bool hasLine(QLocalSocket &socket, const char *line, const QDeadlineTimer &deadline)
{
    while (!socket.canReadLine()) {
        if (!socket.waitForReadyRead(int(deadline.remainingTime())))
            return false;
    }
    return socket.readLine() == line;
}
} // namespace

RunningInstance::RunningInstance()
    : _dataFolder(makeDataFolder())
    , _lock(QDir(_dataFolder).filePath(QStringLiteral("lock")))
{
    connect(&_server, &QLocalServer::newConnection, this, &RunningInstance::greet);
}

RunningInstance::Outcome RunningInstance::settle(const QStringList &addresses, std::chrono::milliseconds patience)
{
    const QDeadlineTimer deadline(patience);
    while (true) {
        const ProcessLock::Result result = _lock.tryLock();
        if (result == ProcessLock::Impossible)
            qCWarning(logWayfold) << "Nothing keeps a second browser from using the files in" << _dataFolder;
        if (result == ProcessLock::Locked)
            listen();
        if (result != ProcessLock::HeldByAnother)
            return First;
        if (handOver(addresses, deadline))
            return HandedOver;
        if (deadline.hasExpired())
            return NoAnswer;
        QThread::msleep(rest);
    }
}

// In a folder that nobody else may look into; its name has to be short.
QString RunningInstance::socketPath()
{
    const QByteArray hash =
        QCryptographicHash::hash(QDir(_dataFolder).canonicalPath().toUtf8(), QCryptographicHash::Sha1).toHex().left(16);
    const QString name = QStringLiteral("/wayfold-browser-") + QString::fromLatin1(hash);
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation); // null when not our own
    if (!folder.isEmpty() && isShortEnough(folder + name))
        return folder + name;
    _ownFolder.emplace(QStringLiteral("/tmp/wayfold-XXXXXX"));
    return _ownFolder->path() + name;
}

void RunningInstance::listen()
{
    const QString path = socketPath();
    QLocalServer::removeServer(path); // left by a process that was killed
    if (_server.listen(path))
        _lock.setText(QFile::encodeName(path));
    else
        qCWarning(logWayfold) << "No further pages can be opened from outside:" << _server.errorString();
}

bool RunningInstance::handOver(const QStringList &addresses, const QDeadlineTimer &deadline) const
{
    QLocalSocket socket;
    socket.connectToServer(QFile::decodeName(_lock.text()));
    if (!socket.waitForConnected(int(deadline.remainingTime())) || !hasLine(socket, readyLine, deadline))
        return false;
    socket.write(QJsonDocument(QJsonArray::fromStringList(addresses)).toJson(QJsonDocument::Compact) + '\n');
    return hasLine(socket, takenLine, deadline);
}

void RunningInstance::greet()
{
    while (QLocalSocket *socket = _server.nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { receive(socket); });
        socket->write(readyLine);
    }
}

void RunningInstance::receive(QLocalSocket *socket)
{
    if (!socket->canReadLine() && socket->bytesAvailable() < longestMessage)
        return;
    const QJsonDocument message = QJsonDocument::fromJson(socket->readLine(longestMessage));
    if (message.isArray() && _receiver && _receiver(message.toVariant().toStringList()))
        socket->write(takenLine);
    socket->disconnectFromServer();
}
