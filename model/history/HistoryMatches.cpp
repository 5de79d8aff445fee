#include "model/history/HistoryMatches.h"

#include "model/TextSearch.h"
#include "model/WayfoldBookmarkFolder.h"

HistoryMatches::HistoryMatches(WayfoldBookmarkFolder &history, const TextSearch &search)
    : _folder(history.matches(search) ? history.copy() : nullptr)
    , _first(_folder ? 1 : 0)
    , _entries(HistoryItems::ofFolder(history)->copiesOfMatches(search))
{}

unsigned HistoryMatches::count()
{
    return _first + _entries->count();
}

KDRBookmarkPtr HistoryMatches::makeChild(unsigned index, const WayfoldBookmarkFolderPtr &folder)
{
    if (index >= _first)
        return _entries->makeChild(index - _first, folder);
    _folder->setParent(folder);
    return _folder;
}

bool HistoryMatches::isFolder(unsigned index)
{
    return index < _first;
}

std::vector<unsigned> HistoryMatches::indexesOfMatches(const TextSearch &search)
{
    return behindFolder(_entries->indexesOfMatches(search));
}

std::vector<unsigned> HistoryMatches::indexesOfWanted(const UUIDSearch &search)
{
    return behindFolder(_entries->indexesOfWanted(search));
}

// The indexes of entries as the folder counts them, with the folder's own in front, which has to be asked itself.
std::vector<unsigned> HistoryMatches::behindFolder(std::vector<unsigned> indexes) const
{
    for (unsigned &index : indexes)
        index += _first;
    if (_folder)
        indexes.insert(indexes.begin(), 0);
    return indexes;
}
