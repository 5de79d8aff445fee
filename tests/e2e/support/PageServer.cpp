#include "tests/e2e/support/PageServer.h"

#include <QMutexLocker>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>

PageServer::PageServer(QObject *parent) : QObject(parent), _server(new QTcpServer(this))
{
    if (!_server->listen(QHostAddress::LocalHost))
        qFatal("cannot listen on the loopback interface");
    connect(_server, &QTcpServer::newConnection, this, &PageServer::accept);
}

quint16 PageServer::port() const
{
    return _server->serverPort();
}

QByteArray PageServer::browserFlags() const
{
    return "--allow-pre-commit-input --host-resolver-rules=\"MAP * 127.0.0.1:" + QByteArray::number(port()) + '"';
}

void PageServer::setPage(const QString &host, const QString &path, const QByteArray &html)
{
    setFile(host, path, "text/html; charset=utf-8", html);
}

void PageServer::setFile(const QString &host, const QString &path, const QByteArray &contentType,
                         const QByteArray &contents)
{
    const QMutexLocker locker(&_lock);
    _files.insert(host + path, {contentType, contents});
}

int PageServer::requests(const QString &host, const QString &path) const
{
    const QMutexLocker locker(&_lock);
    return _requests.value(host + path);
}

void PageServer::hold(const QString &host, const QString &path)
{
    const QMutexLocker locker(&_lock);
    _held.insert(host + path);
}

void PageServer::release(const QString &host, const QString &path)
{
    QMetaObject::invokeMethod(this, [this, host, path] {
        QList<QTcpSocket *> sockets;
        {
            const QMutexLocker locker(&_lock);
            _held.remove(host + path);
            sockets = _waiting.values(host + path);
            _waiting.remove(host + path);
        }
        for (QTcpSocket *socket : sockets)
            answer(socket, host, path);
    });
}

void PageServer::accept()
{
    while (QTcpSocket *socket = _server->nextPendingConnection()) {
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(socket); });
        connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
            const QMutexLocker locker(&_lock);
            _waiting.removeIf([socket](auto waiting) { return waiting.value() == socket; });
            socket->deleteLater();
        });
    }
}

void PageServer::read(QTcpSocket *socket)
{
    if (!socket->peek(16384).contains("\r\n\r\n"))
        return;
    const QList<QByteArray> lines = socket->readAll().split('\n');
    const QList<QByteArray> request = lines.first().trimmed().split(' ');
    QString host;
    for (const QByteArray &line : lines) {
        if (line.toLower().startsWith("host:"))
            host = QString::fromLatin1(line.mid(5).trimmed().split(':').first());
    }
    const QString path = QString::fromUtf8(request.value(1)).section(QLatin1Char('?'), 0, 0);
    {
        const QMutexLocker locker(&_lock);
        ++_requests[host + path];
        if (_held.contains(host + path)) {
            _waiting.insert(host + path, socket);
            return;
        }
    }
    answer(socket, host, path);
}

void PageServer::answer(QTcpSocket *socket, const QString &host, const QString &path)
{
    const File file = fileFor(host, path);
    const QByteArray status = file.contentType.isEmpty() ? "404 Not Found" : "200 OK";
    socket->write("HTTP/1.1 " + status + "\r\nContent-Type: " + file.contentType +
                  "\r\nContent-Length: " + QByteArray::number(file.contents.size()) +
                  "\r\nCache-Control: no-store\r\nConnection: close\r\n\r\n" + file.contents);
    socket->disconnectFromHost();
}

PageServer::File PageServer::fileFor(const QString &host, const QString &path) const
{
    const QMutexLocker locker(&_lock);
    const auto found = _files.constFind(host + path);
    if (found != _files.constEnd())
        return *found;
    if (path == QLatin1String("/favicon.ico"))
        return {};
    const QString address = (host + path).toHtmlEscaped();
    return {"text/html; charset=utf-8",
            QStringLiteral("<!doctype html><title>%1</title><h1>%1</h1>").arg(address).toUtf8()};
}
