#include "core/OrderMerge.h"

#include <algorithm>
#include <utility>

namespace
{
constexpr int none = -1;

// The numbers that do not belong to a longest ascending row of them.
std::vector<std::size_t> outOfOrder(const std::vector<int> &numbers)
{
    if (std::is_sorted(numbers.begin(), numbers.end()))
        return {};
    // The last number of the best row of each length so far, and what stands before each number in its best row.
    std::vector<std::size_t> lastOfRow;
    std::vector<int> before(numbers.size(), none);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const auto row = std::lower_bound(lastOfRow.begin(), lastOfRow.end(), numbers[i],
                                          [&](std::size_t last, int number) { return numbers[last] < number; });
        if (row != lastOfRow.begin())
            before[i] = int(*(row - 1));
        if (row == lastOfRow.end())
            lastOfRow.push_back(i);
        else
            *row = i;
    }
    std::vector<char> isInOrder(numbers.size(), false);
    for (int i = int(lastOfRow.back()); i != none; i = before[std::size_t(i)])
        isInOrder[std::size_t(i)] = true;
    std::vector<std::size_t> others;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (!isInOrder[i])
            others.push_back(i);
    }
    return others;
}
} // namespace

OrderMerge::OrderMerge(int entryCount)
    : _placeInBase(std::size_t(entryCount), none)
    , _isOurs(std::size_t(entryCount), false)
    , _isMovedByUs(std::size_t(entryCount), false)
    , _isTheirs(std::size_t(entryCount), false)
    , _next(std::size_t(entryCount) + 1, none)
{}

std::vector<int> OrderMerge::merged(const std::vector<int> &base, const std::vector<int> &ours,
                                    const std::vector<int> &theirs)
{
    if (ours == theirs)
        return ours;
    for (std::size_t i = 0; i < base.size(); ++i)
        _placeInBase[std::size_t(base[i])] = int(i);
    for (const int entry : ours)
        _isOurs[std::size_t(entry)] = true;
    for (const int entry : movedIn(ours))
        _isMovedByUs[std::size_t(entry)] = true;
    for (const int entry : movedIn(theirs))
        _isTheirs[std::size_t(entry)] = !_isMovedByUs[std::size_t(entry)];
    for (const int entry : theirs) {
        if (!_isOurs[std::size_t(entry)])
            _isTheirs[std::size_t(entry)] = true;
    }

    const std::size_t beginning = _next.size() - 1;
    std::size_t last = beginning;
    for (const int entry : ours) {
        if (_isTheirs[std::size_t(entry)])
            continue;
        _next[last] = entry;
        last = std::size_t(entry);
    }
    _next[last] = none;
    std::size_t before = beginning;
    for (const int entry : theirs) {
        if (_isTheirs[std::size_t(entry)])
            _next[std::size_t(entry)] = std::exchange(_next[before], entry);
        // What we have moved stands elsewhere now.
        if (!_isMovedByUs[std::size_t(entry)])
            before = std::size_t(entry);
    }

    std::vector<int> merged;
    merged.reserve(ours.size() + theirs.size());
    for (int entry = _next[beginning]; entry != none; entry = _next[std::size_t(entry)])
        merged.push_back(entry);
    for (const std::vector<int> *const list : {&base, &ours, &theirs}) {
        for (const int entry : *list) {
            _placeInBase[std::size_t(entry)] = none;
            _isOurs[std::size_t(entry)] = _isMovedByUs[std::size_t(entry)] = _isTheirs[std::size_t(entry)] = false;
        }
    }
    return merged;
}

std::vector<int> OrderMerge::movedIn(const std::vector<int> &side) const
{
    std::vector<int> entries;
    std::vector<int> places;
    for (const int entry : side) {
        if (_placeInBase[std::size_t(entry)] == none)
            continue;
        entries.push_back(entry);
        places.push_back(_placeInBase[std::size_t(entry)]);
    }
    std::vector<int> moved;
    for (const std::size_t i : outOfOrder(places))
        moved.push_back(entries[i]);
    return moved;
}
