#pragma once

#include "browser/ProcessLock.h"

#include <QLocalServer>
#include <QStringList>
#include <QTemporaryDir>
#include <chrono>
#include <functional>
#include <optional>

class QDeadlineTimer;
class QLocalSocket;

// Keeps the browser to one process a data folder: two would write over each other's files. A second process hands its
// addresses to the first and goes.
class RunningInstance : public QObject
{
    Q_OBJECT

public:
    enum Outcome {
        First,      // it is this process, from now on and for as long as this lives
        HandedOver, // the first process has taken the addresses
        NoAnswer,   // there is a first process, but it has not taken them
    };
    // Opens the addresses, a new window for none. False when it cannot do so any more.
    using Receiver = std::function<bool(const QStringList &addresses)>;

    RunningInstance();

    // Finds out which it is. Waits for a first process that does not answer, or that is about to end, in whose place
    // this one then comes. May be asked again.
    Outcome settle(const QStringList &addresses, std::chrono::milliseconds patience = std::chrono::milliseconds(3000));
    // Gets what other processes hand over to this one.
    void setReceiver(Receiver receiver) { _receiver = std::move(receiver); }

private:
    QString socketPath();
    void listen();
    void greet();
    void receive(QLocalSocket *socket);
    bool handOver(const QStringList &addresses, const QDeadlineTimer &deadline) const;

    QString _dataFolder;
    ProcessLock _lock; // its text is the socket's path
    std::optional<QTemporaryDir> _ownFolder;
    QLocalServer _server;
    Receiver _receiver;
};
