#pragma once

#include "benchmarks/Stopwatch.h"

#include <QCoreApplication>
#include <QThread>
#include <algorithm>
#include <functional>

// Runs the event loop until a condition holds, and counts what it works, not what it waits. In milliseconds.
class EventWork
{
public:
    void until(const std::function<bool()> &holds)
    {
        while (!holds()) {
            const Stopwatch watch;
            QCoreApplication::processEvents();
            const double passed = watch.milliseconds();
            _total += passed;
            _longest = std::max(_longest, passed);
            QThread::usleep(50);
        }
    }

    double total() const { return _total; }
    double longest() const { return _longest; }

private:
    double _total = 0;
    double _longest = 0;
};
