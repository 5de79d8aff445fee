#pragma once

// When to try again what has failed: a second later, then less and less often, down to about once in a minute.
class Retries
{
public:
    // Something has failed, and is owed from now on.
    void begin();
    // It has been made good.
    void end() { _isOwed = false; }
    bool isOwed() const { return _isOwed; }
    // Called once a second: whether to try again now. Never while nothing is owed.
    bool isDue();

private:
    bool _isOwed = false;
    int _secondsBetweenTries = 1;
    int _secondsToNextTry = 1;
};
