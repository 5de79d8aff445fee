#pragma once

#include <QString>
#include <functional>
#include <vector>

// What it takes to search while typing: ten words, letter by letter, each begun in the unfiltered list. One of them is
// in nearly every entry and one in none.
class Typing
{
public:
    // `search` filters by a text, and `clear` shows everything again.
    Typing(const std::function<void(const QString &text)> &search, const std::function<void()> &clear);

    // In milliseconds, over the letters, of each of which the median of seven runs is taken.
    double worst() const;
    double median() const;

private:
    std::vector<double> _letters;
};
