#pragma once

#include "benchmarks/EventWork.h"

#include <optional>

// How long a user waits, in milliseconds: from the press of a button until what was asked for is done. And the longest
// time in which nothing else could be done.
class UserWait
{
public:
    void begin() { _watch.emplace(); }
    // Called when the press has been handled.
    void until(const std::function<bool()> &isDone)
    {
        EventWork work;
        held = _watch->milliseconds();
        work.until(isDone);
        whole = _watch->milliseconds();
        held = std::max(held, work.longest());
    }

    double whole = 0;
    double held = 0;

private:
    std::optional<Stopwatch> _watch;
};
