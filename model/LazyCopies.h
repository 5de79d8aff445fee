#pragma once

#include "model/LazyChildren.h"

// Copies of items, made as they are seen, and so on below those that are folders. For items that nobody changes, as
// those of the browser's own trees are; they are kept as long as this is.
class LazyCopies : public LazyChildren
{
public:
    // A copy of the folder whose children are such copies.
    static KDRBookmarkPtr copyOf(const WayfoldBookmarkFolder &folder);

    explicit LazyCopies(std::vector<KDRBookmarkPtr> items);

    unsigned count() override { return unsigned(_items.size()); }
    KDRBookmarkPtr makeChild(unsigned index, const WayfoldBookmarkFolderPtr &folder) override;
    bool isFolder(unsigned index) override;
    bool hasFolders() override { return _hasFolders; }
    std::vector<unsigned> indexesOfMatches(const TextSearch &search) override;
    std::vector<unsigned> indexesOfWanted(const UUIDSearch &search) override;

private:
    std::vector<KDRBookmarkPtr> _items;
    bool _hasFolders;
};
