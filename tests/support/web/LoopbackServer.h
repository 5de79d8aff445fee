#pragma once

#include "platform/base/Url.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QObject>
#include <QString>

class QTcpServer;
class QTcpSocket;
class TestCertificate;

// A web server on a free port of the loopback interface that answers just what it is told to, byte by byte. It works in
// the event loop of whoever asks.
class LoopbackServer : public QObject
{
    Q_OBJECT

public:
    enum class After { Close, KeepOpen }; // what happens to the connection

    // Over http.
    LoopbackServer();
    // Over https.
    explicit LoopbackServer(const TestCertificate &certificate);

    Url address(const QString &path) const;
    // Whoever asks for the path gets these bytes; whoever asks for another one gets nothing, and waits.
    void setAnswer(const QString &path, const QByteArray &bytes, After after = After::Close);
    // To all who have asked for the path and got nothing.
    void answerLate(const QString &path, const QByteArray &bytes);

    // What was asked so far, each with its headers.
    QList<QByteArray> requests() const { return _requests; }
    // How much of the answers has been taken.
    qint64 bytesTaken() const { return _bytesTaken; }

    static QByteArray response(const QByteArray &body, const QByteArray &status = "200 OK");
    static QByteArray redirection(const QByteArray &location, const QByteArray &status = "302 Found");

private:
    struct Answer
    {
        QByteArray bytes;
        After after = After::KeepOpen;
    };

    LoopbackServer(QTcpServer *server, const QString &scheme);

    void accept();
    void read(QTcpSocket *socket);
    static void write(QTcpSocket *socket, const Answer &answer);

    QTcpServer *_server;
    QString _scheme;
    QHash<QString, Answer> _answers; // by path
    QMultiHash<QString, QTcpSocket *> _waiting;
    QList<QByteArray> _requests;
    qint64 _bytesTaken = 0;
};
