#pragma once

// Runs from its making on: by the clock on the wall, or by the processor time of this process when the environment
// says WAYFOLD_BENCH_CLOCK=cpu, for figures from a machine that is busy with other things.
class Stopwatch
{
public:
    double milliseconds() const { return now() - _start; }
    static bool countsProcessorTime();

private:
    static double now();

    double _start = now();
};
