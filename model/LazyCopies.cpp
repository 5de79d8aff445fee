#include "model/LazyCopies.h"

#include "model/UUIDSearch.h"
#include "model/WayfoldBookmarkFolder.h"

#include <algorithm>

KDRBookmarkPtr LazyCopies::copyOf(const WayfoldBookmarkFolder &folder)
{
    if (folder.lazyChildren() && folder.lazyChildren()->copies())
        return folder.copy();
    WayfoldBookmarkFolderPtr copy = folder.copyWithoutChildren();
    if (!folder.isEmpty())
        copy->setLazyChildren(std::make_shared<LazyCopies>(folder.children()));
    return copy;
}

LazyCopies::LazyCopies(std::vector<KDRBookmarkPtr> items)
    : _items(std::move(items))
    , _hasFolders(std::any_of(_items.begin(), _items.end(), [](const auto &item) { return item->isFolder(); }))
{}

KDRBookmarkPtr LazyCopies::makeChild(unsigned index, const WayfoldBookmarkFolderPtr &folder)
{
    const WayfoldBookmarkFolderPtr original = WayfoldBookmarkFolder::fromItem(_items[index]);
    KDRBookmarkPtr copy = original ? copyOf(*original) : _items[index]->copy();
    copy->setParent(folder);
    return copy;
}

bool LazyCopies::isFolder(unsigned index)
{
    return _items[index]->isFolder();
}

std::vector<unsigned> LazyCopies::indexesOfMatches(const TextSearch &search)
{
    std::vector<unsigned> indexes;
    for (unsigned index = 0; index < _items.size(); ++index) {
        if (_items[index]->isFolder() || _items[index]->matches(search))
            indexes.push_back(index);
    }
    return indexes;
}

std::vector<unsigned> LazyCopies::indexesOfWanted(const UUIDSearch &search)
{
    std::vector<unsigned> indexes;
    for (unsigned index = 0; index < _items.size(); ++index) {
        // A copy has the identifier of its item; what a folder holds is found in the copy.
        if (_items[index]->isFolder() || search.isWanted(_items[index]->uuid()))
            indexes.push_back(index);
    }
    return indexes;
}
