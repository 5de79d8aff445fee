#include "tests/e2e/support/MessageBus.h"

#include "tests/e2e/support/Tool.h"

#include <QDeadlineTimer>
#include <QRegularExpression>
#include <QThread>
#include <csignal>
#include <sys/prctl.h>
#include <unistd.h>

namespace
{
const char variable[] = "DBUS_SESSION_BUS_ADDRESS";
}

// What the bus starts belongs to its group of processes, of which it is the first.
MessageBus::MessageBus() : _oldAddress(qgetenv(variable))
{
    _daemon.setStandardInputFile(QProcess::nullDevice());
    _daemon.setStandardErrorFile(QProcess::nullDevice());
    _daemon.setChildProcessModifier([] {
        ::setpgid(0, 0);
        ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    });
    _daemon.start(QStringLiteral("dbus-daemon"),
                  {QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--print-address")});
    while (!_daemon.canReadLine() && _daemon.waitForReadyRead())
        ;
    _address = _daemon.readLine().trimmed();
    qputenv(variable, _address);
}

MessageBus::~MessageBus()
{
    qputenv(variable, _oldAddress);
    const auto group = pid_t(_daemon.processId());
    if (group == 0)
        return;
    ::kill(-group, SIGTERM);
    _daemon.waitForFinished(10000);
    for (const QDeadlineTimer deadline(10000); ::kill(-group, 0) == 0 && !deadline.hasExpired();)
        QThread::msleep(20);
    ::kill(-group, SIGKILL);
}

qint64 MessageBus::processOf(const QString &name)
{
    const auto answer = Tool::run(QStringLiteral("dbus-send"),
                                  {QStringLiteral("--session"), QStringLiteral("--dest=org.freedesktop.DBus"),
                                   QStringLiteral("--print-reply"), QStringLiteral("/org/freedesktop/DBus"),
                                   QStringLiteral("org.freedesktop.DBus.GetConnectionUnixProcessID"),
                                   QStringLiteral("string:") + name});
    static const QRegularExpression number(QStringLiteral("uint32 (\\d+)"));
    return number.match(QString::fromUtf8(answer.value_or(QByteArray()))).captured(1).toLongLong();
}
