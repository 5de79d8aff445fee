#include "benchmarks/ChildProcess.h"

#include "benchmarks/GeneratedFiles.h"

#include <QCoreApplication>
#include <QProcess>

namespace
{
using Values = std::vector<double>;
} // namespace

std::optional<double> ChildProcess::measure(const QString &name, const GeneratedFiles &files)
{
    const std::optional<Values> values = measureAll(name, files);
    return values && values->size() == 1 ? std::optional<double>(values->front()) : std::nullopt;
}

std::optional<std::vector<double>> ChildProcess::measureAll(const QString &name, const GeneratedFiles &files)
{
    QProcess child;
    child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    child.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--child"), name, QStringLiteral("--entries"),
                                                          QString::number(files.entries()), files.folder()});
    if (!child.waitForFinished(600'000) || child.exitStatus() != QProcess::NormalExit || child.exitCode() != 0)
        return {};
    Values values;
    for (const QByteArray &line : child.readAllStandardOutput().split('\n')) {
        if (!line.isEmpty())
            values.push_back(line.toDouble());
    }
    return values;
}
