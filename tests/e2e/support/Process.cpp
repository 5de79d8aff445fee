#include "tests/e2e/support/Process.h"

#include "tests/e2e/support/Stage.h"

#include <QDeadlineTimer>
#include <csignal>

Process::Process(const QString &program, const QStringList &arguments, const QProcessEnvironment &environment)
{
    _process.setStandardInputFile(QProcess::nullDevice());
    _process.setProcessChannelMode(QProcess::MergedChannels);
    _process.setProcessEnvironment(environment);
    _process.start(program, arguments);
}

Process::~Process()
{
    send(SIGCONT);
    _process.terminate();
    if (!_process.waitForFinished(10000))
        _process.kill();
    _process.waitForFinished();
}

int Process::exitCode() const
{
    const bool hasEnded = _process.state() == QProcess::NotRunning && _process.exitStatus() == QProcess::NormalExit;
    return hasEnded ? _process.exitCode() : -1;
}

void Process::send(int signal) const
{
    if (_process.processId() > 0)
        ::kill(pid_t(_process.processId()), signal);
}

QByteArray Process::output()
{
    _output += _process.readAll();
    return _output;
}

bool Process::writes(const QByteArray &text)
{
    const QDeadlineTimer deadline(Stage::patience);
    while (!output().contains(text)) {
        if (!_process.waitForReadyRead(int(deadline.remainingTime())))
            return output().contains(text);
    }
    return true;
}
