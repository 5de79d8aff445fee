#include "core/Retries.h"

#include <algorithm>

namespace
{
constexpr int mostSecondsBetweenTries = 64;
}

void Retries::begin()
{
    _isOwed = true;
    _secondsBetweenTries = 1;
    _secondsToNextTry = 1;
}

bool Retries::isDue()
{
    if (!_isOwed || --_secondsToNextTry > 0)
        return false;
    _secondsBetweenTries = std::min(_secondsBetweenTries * 2, mostSecondsBetweenTries);
    _secondsToNextTry = _secondsBetweenTries;
    return true;
}
