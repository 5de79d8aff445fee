#pragma once

#include <QByteArray>
#include <QProcess>
#include <QStringList>

// Another program that runs beside the test, and ends with this.
class Process
{
public:
    Process(const QString &program, const QStringList &arguments,
            const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment());
    ~Process();

    qint64 id() const { return _process.processId(); }
    // -1 while it runs, and when it has crashed.
    int exitCode() const;
    void send(int signal) const;
    // What it has written so far, errors and all.
    QByteArray output();
    // Waits until it has written that; for the thread in which it was made. False when it has not in good time.
    bool writes(const QByteArray &text);

private:
    QProcess _process;
    QByteArray _output;
};
