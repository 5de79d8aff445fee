#pragma once

#include <QLocalServer>
#include <QLockFile>
#include <QObject>
#include <QStringList>

// Keeps the browser to one process a home directory: a second one hands its addresses to the first and goes.
class RunningInstance : public QObject
{
    Q_OBJECT

public:
    RunningInstance();

    bool isFirst() const { return _isFirst; }
    // Hands the addresses to the first process, none for a new window. False when it does not answer.
    bool sendAddresses(const QStringList &addresses) const;

Q_SIGNALS:
    void addressesReceived(const QStringList &addresses);

private:
    void receive();

    QLockFile _lock;
    QString _serverName;
    QLocalServer _server;
    bool _isFirst;
};
