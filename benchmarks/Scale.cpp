#include "benchmarks/Scale.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <cstdio>
#include <vector>

namespace
{
const std::vector<int> sizes = {1'000, 10'000, 100'000, 1'000'000};
constexpr int largestWithPeers = 100'000;

// Empty when it failed.
QJsonObject figuresAt(int size)
{
    const QTemporaryDir folder;
    const QString json = folder.filePath(QStringLiteral("figures.json"));
    QStringList arguments = {QStringLiteral("--entries"), QString::number(size), QStringLiteral("--json"), json};
    if (size > largestWithPeers)
        arguments.append(QStringLiteral("--no-peers"));
    QProcess bench;
    bench.setStandardOutputFile(QProcess::nullDevice());
    bench.start(QCoreApplication::applicationFilePath(), arguments);
    if (!bench.waitForFinished(-1) || bench.exitCode() != 0) {
        std::fprintf(stderr, "\n%s", bench.readAllStandardError().constData());
        return {};
    }
    QFile file(json);
    return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object() : QJsonObject();
}

void printFigure(const QString &name, const std::vector<QJsonObject> &columns)
{
    std::printf("%-30s", qPrintable(name));
    for (const QJsonObject &column : columns) {
        if (column.contains(name))
            std::printf(" %13.3f", column.value(name).toDouble());
        else
            std::printf(" %13s", "-");
    }
    std::printf("\n");
}
} // namespace

bool Scale::print()
{
    std::vector<QJsonObject> columns;
    bool complete = true;
    std::printf("%-30s", "visits in the history");
    for (const int size : sizes) {
        columns.push_back(figuresAt(size));
        complete = complete && !columns.back().isEmpty();
        std::printf(" %13d", size);
        std::fflush(stdout);
    }
    std::printf("\n");
    for (const QString &name : columns.front().keys())
        printFigure(name, columns);
    std::printf("Others are left out at %d: they take minutes there.\n", sizes.back());
    return complete;
}
