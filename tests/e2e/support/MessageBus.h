#pragma once

#include <QProcess>
#include <QString>

// A session's message bus, with the services of the desktop that are asked for on it, in the home that there is now.
// Whatever it has started ends with it, and with the test.
//
//     const TemporaryHome home;
//     const MessageBus bus; // $DBUS_SESSION_BUS_ADDRESS
class MessageBus
{
public:
    MessageBus();
    ~MessageBus();

    // Where the bus can be reached; empty when it could not be started.
    QByteArray address() const { return _address; }
    // Of the process that has the name on the bus; 0 when none has.
    static qint64 processOf(const QString &name);

private:
    QProcess _daemon;
    QByteArray _address;
    QByteArray _oldAddress;
};
