#pragma once

#include <QElapsedTimer>
#include <algorithm>

// How long to wait before trying again: a second, then twice as long each time, at most a minute. After a while in
// which nothing had to be tried it is a second again.
class GrowingPause
{
public:
    static constexpr int first = 1000; // milliseconds, as the others
    static constexpr int longest = 60'000;
    static constexpr int quietTime = 180'000;

    // Milliseconds.
    int next()
    {
        const bool isNew = !_last.isValid() || _last.elapsed() > quietTime;
        _pause = isNew ? first : std::min(2 * _pause, longest);
        _last.start();
        return _pause;
    }

private:
    QElapsedTimer _last;
    int _pause = first;
};
