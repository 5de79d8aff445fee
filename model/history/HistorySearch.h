#pragma once

#include "model/TextSearch.h"
#include "model/history/HistoryItems.h"

// A search of the browser's history that is made again whenever the history has changed: it remembers of each entry
// whether it was found, and looks only at those that are new. It is given the whole history each time.
class HistorySearch
{
public:
    explicit HistorySearch(const QString &text) : _search(text) {}

    const QString &text() const { return _search.text(); }
    // Copies of the entries that are found, in order.
    std::shared_ptr<HistoryItems> copiesOfMatches(HistoryItems &history);

private:
    TextSearch _search;
    std::weak_ptr<const void> _texts; // of the records that it knows
    std::vector<bool> _isFound;       // by serial number
};
