#pragma once

#include <QObject>
#include <QSocketNotifier>

// Tells when the process is asked to end (by SIGTERM, SIGINT or SIGHUP, as at the end of a session), so that it can end
// as it does for its user. One a process.
class TerminationSignals : public QObject
{
    Q_OBJECT

public:
    TerminationSignals();

Q_SIGNALS:
    void received();

private:
    QSocketNotifier _notifier;
};
