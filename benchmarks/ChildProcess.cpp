#include "benchmarks/ChildProcess.h"

#include "benchmarks/ContactsBench.h"
#include "benchmarks/GeneratedFiles.h"
#include "benchmarks/MemoryBench.h"
#include "benchmarks/StartBench.h"

#include <QCoreApplication>
#include <QProcess>
#include <cstdio>

std::optional<double> ChildProcess::measure(const QString &name, const GeneratedFiles &files)
{
    QProcess child;
    child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    child.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--child"), name, QStringLiteral("--entries"),
                                                          QString::number(files.entries()), files.folder()});
    if (!child.waitForFinished(600'000) || child.exitStatus() != QProcess::NormalExit || child.exitCode() != 0)
        return {};
    return child.readAllStandardOutput().trimmed().toDouble();
}

int ChildProcess::run(const QString &name, const GeneratedFiles &files)
{
    std::optional<double> answer;
    if (name == QLatin1String("grouped"))
        answer = MemoryBench::bytesPerEntry(files, false);
    else if (name == QLatin1String("filtered"))
        answer = MemoryBench::bytesPerEntry(files, true);
    else if (name == QLatin1String("contacts"))
        answer = ContactsBench::bytesPerCard(files.folder(), files.entries());
    else if (name == QLatin1String("start"))
        answer = StartBench::startMilliseconds(files);
    if (!answer)
        return 1;
    std::printf("%.6f\n", *answer);
    return 0;
}
