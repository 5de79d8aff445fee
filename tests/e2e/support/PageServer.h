#pragma once

#include <QByteArray>
#include <QHash>
#include <QMutex>
#include <QObject>
#include <QSet>
#include <QString>

class QTcpServer;
class QTcpSocket;

// A small web of its own: pages by host name and path, served over HTTP from a free port of the loopback interface.
//
//     PageServer web;
//     web.setPage("news.site.localhost", "/", "<title>News</title>...");
//     qputenv("QTWEBENGINE_CHROMIUM_FLAGS", web.browserFlags());
//
// With these flags every address that a browser asks for, whatever its host, leads here, and none to the network; and
// a page that has been loaded minds a click at once, even if it has not been drawn yet. A
// host or path without a page of its own gets a plain page that tells its address. The server lives on the main thread;
// pages may be set, and requests counted, from any.
class PageServer : public QObject
{
    Q_OBJECT

public:
    explicit PageServer(QObject *parent = nullptr);

    quint16 port() const;
    QByteArray browserFlags() const;

    void setPage(const QString &host, const QString &path, const QByteArray &html);
    void setFile(const QString &host, const QString &path, const QByteArray &contentType, const QByteArray &contents);
    // How often a page was asked for so far.
    int requests(const QString &host, const QString &path) const;
    // Keeps everyone who asks for the page waiting, until `release`.
    void hold(const QString &host, const QString &path);
    void release(const QString &host, const QString &path);

private:
    struct File
    {
        QByteArray contentType;
        QByteArray contents;
    };

    void accept();
    void read(QTcpSocket *socket);
    void answer(QTcpSocket *socket, const QString &host, const QString &path);
    File fileFor(const QString &host, const QString &path) const;

    QTcpServer *_server;
    mutable QMutex _lock;        // for all below
    QHash<QString, File> _files; // by host and path
    QHash<QString, int> _requests;
    QSet<QString> _held;
    QMultiHash<QString, QTcpSocket *> _waiting;
};
