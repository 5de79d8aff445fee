#pragma once

#include <vector>

// Puts two new orders of a list together, as the lines of a text are: what one side has added or moved stands where
// that side has it, after what stands before it there; what both have moved stands where we have it.
class OrderMerge
{
public:
    // The entries are numbers from 0 to `entryCount` - 1.
    explicit OrderMerge(int entryCount);

    // All that is in ours or in theirs; none of the three has an entry twice. What only they have comes before what
    // only we have where both stand at the same place.
    std::vector<int> merged(const std::vector<int> &base, const std::vector<int> &ours, const std::vector<int> &theirs);

private:
    std::vector<int> movedIn(const std::vector<int> &side) const;

    // By entry, and as empty as at first between two calls.
    std::vector<int> _placeInBase;
    std::vector<char> _isOurs;
    std::vector<char> _isMovedByUs;
    std::vector<char> _isTheirs; // whether their place counts
    std::vector<int> _next;
};
