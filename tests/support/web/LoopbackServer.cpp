#include "tests/support/web/LoopbackServer.h"

#include "tests/support/web/TestCertificate.h"

#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <QTcpServer>
#include <QTcpSocket>

namespace
{
QTcpServer *secureServer(const TestCertificate &certificate)
{
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setLocalCertificate(QSslCertificate(certificate.certificate()));
    configuration.setPrivateKey(QSslKey(certificate.key(), QSsl::Rsa));
    auto *server = new QSslServer;
    server->setSslConfiguration(configuration);
    return server;
}
} // namespace

LoopbackServer::LoopbackServer() : LoopbackServer(new QTcpServer, QStringLiteral("http")) {}

LoopbackServer::LoopbackServer(const TestCertificate &certificate)
    : LoopbackServer(secureServer(certificate), QStringLiteral("https"))
{}

LoopbackServer::LoopbackServer(QTcpServer *server, const QString &scheme) : _server(server), _scheme(scheme)
{
    _server->setParent(this);
    connect(_server, &QTcpServer::pendingConnectionAvailable, this, &LoopbackServer::accept);
    if (!_server->listen(QHostAddress::LocalHost))
        qFatal("cannot listen on the loopback interface");
}

Url LoopbackServer::address(const QString &path) const
{
    return Url::URLWithString(QStringLiteral("%1://127.0.0.1:%2%3").arg(_scheme).arg(_server->serverPort()).arg(path));
}

void LoopbackServer::setAnswer(const QString &path, const QByteArray &bytes, After after)
{
    _answers.insert(path, {bytes, after});
}

void LoopbackServer::answerLate(const QString &path, const QByteArray &bytes)
{
    const QList<QTcpSocket *> sockets = _waiting.values(path);
    _waiting.remove(path);
    for (QTcpSocket *socket : sockets)
        write(socket, {bytes, After::Close});
}

QByteArray LoopbackServer::response(const QByteArray &body, const QByteArray &status)
{
    return "HTTP/1.1 " + status + "\r\nContent-Length: " + QByteArray::number(body.size()) +
           "\r\nConnection: close\r\n\r\n" + body;
}

QByteArray LoopbackServer::redirection(const QByteArray &location, const QByteArray &status)
{
    return "HTTP/1.1 " + status + "\r\nLocation: " + location + "\r\nContent-Length: 0\r\nConnection: close\r\n\r\n";
}

void LoopbackServer::accept()
{
    while (QTcpSocket *socket = _server->nextPendingConnection()) {
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(socket); });
        connect(socket, &QTcpSocket::bytesWritten, this, [this](qint64 bytes) { _bytesTaken += bytes; });
        connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
            _waiting.removeIf([socket](auto waiting) { return waiting.value() == socket; });
            socket->deleteLater();
        });
        read(socket);
    }
}

void LoopbackServer::read(QTcpSocket *socket)
{
    if (!socket->peek(16384).contains("\r\n\r\n"))
        return;
    const QByteArray request = socket->readAll();
    _requests.append(request);
    const QString path = QString::fromUtf8(request.split(' ').value(1));
    if (_answers.contains(path))
        write(socket, _answers.value(path));
    else
        _waiting.insert(path, socket);
}

void LoopbackServer::write(QTcpSocket *socket, const Answer &answer)
{
    socket->write(answer.bytes);
    if (answer.after == After::Close)
        socket->disconnectFromHost();
}
