#include "benchmarks/Figures.h"

#include "benchmarks/Stopwatch.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <cstdio>

void Figures::add(const QString &name, double value, const QString &unit, const QString &peer)
{
    _figures.push_back({name, value, unit, peer});
}

void Figures::print() const
{
    if (Stopwatch::countsProcessorTime())
        std::printf("times are processor times\n");
    std::printf("%-34s %14s %-6s %s\n", "figure", "value", "unit", "ratio to its peer");
    for (const Figure &figure : _figures) {
        std::printf("%-34s %14.3f %-6s", qPrintable(figure.name), figure.value, qPrintable(figure.unit));
        const auto peer = std::find_if(_figures.begin(), _figures.end(),
                                       [&](const Figure &other) { return other.name == figure.peer; });
        if (peer != _figures.end() && peer->value > 0)
            std::printf(" %.3f of %s", figure.value / peer->value, qPrintable(peer->name));
        std::printf("\n");
    }
}

bool Figures::writeJson(const QString &path) const
{
    QJsonObject object;
    for (const Figure &figure : _figures)
        object.insert(figure.name, figure.value);
    QFile file(path);
    const QByteArray text = QJsonDocument(object).toJson();
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size();
}

double Figures::medianMilliseconds(const std::function<void()> &work, int runs, const std::function<void()> &before)
{
    std::vector<double> times;
    for (int run = -1; run < runs; ++run) {
        if (before)
            before();
        const double time = milliseconds(work);
        if (run >= 0)
            times.push_back(time);
    }
    return median(times);
}

double Figures::milliseconds(const std::function<void()> &work)
{
    const Stopwatch watch;
    work();
    return watch.milliseconds();
}

double Figures::median(std::vector<double> values)
{
    const auto middle = values.begin() + std::ptrdiff_t(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}
