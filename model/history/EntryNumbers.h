#pragma once

#include <memory>
#include <vector>

// Some of the entries of a history, by their numbers: a part of a list that is shared with others, so that sorting a
// hundred thousand entries into thousands of folders does not take as many pieces of memory.
class EntryNumbers
{
public:
    EntryNumbers() = default;
    explicit EntryNumbers(std::vector<unsigned> numbers)
        : EntryNumbers(std::make_shared<const std::vector<unsigned>>(std::move(numbers)))
    {}
    explicit EntryNumbers(const std::shared_ptr<const std::vector<unsigned>> &list)
        : EntryNumbers(list, 0, unsigned(list->size()))
    {}
    // Those from place `first` to before place `last`.
    EntryNumbers(const std::shared_ptr<const std::vector<unsigned>> &list, unsigned first, unsigned last)
        : _list(list)
        , _first(list->data() + first)
        , _last(list->data() + last)
    {}

    const unsigned *begin() const { return _first; }
    const unsigned *end() const { return _last; }
    unsigned size() const { return unsigned(_last - _first); }
    bool empty() const { return _first == _last; }
    unsigned operator[](unsigned place) const { return _first[place]; }

private:
    std::shared_ptr<const std::vector<unsigned>> _list;
    const unsigned *_first = nullptr;
    const unsigned *_last = nullptr;
};
