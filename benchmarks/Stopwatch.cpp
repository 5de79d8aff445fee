#include "benchmarks/Stopwatch.h"

#include <QByteArray>
#include <ctime>

bool Stopwatch::countsProcessorTime()
{
    static const bool counts = qgetenv("WAYFOLD_BENCH_CLOCK") == "cpu";
    return counts;
}

double Stopwatch::now()
{
    timespec time = {};
    clock_gettime(countsProcessorTime() ? CLOCK_PROCESS_CPUTIME_ID : CLOCK_MONOTONIC, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}
