#pragma once

#include "model/LazyChildren.h"

class BookmarkRecords;

// The items of bookmark records: what a folder of them holds. Each is made when it is first asked for.
class BookmarkItems : public LazyChildren
{
public:
    // What the folder of that number holds.
    BookmarkItems(std::shared_ptr<const BookmarkRecords> records, unsigned folder);

    // The whole tree; its root is the first record, whatever that is called.
    static WayfoldBookmarkFolderPtr treeOf(const std::shared_ptr<const BookmarkRecords> &records);

    unsigned count() override { return unsigned(_numbers.size()); }
    KDRBookmarkPtr makeChild(unsigned index, const WayfoldBookmarkFolderPtr &folder) override;
    bool isFolder(unsigned index) override;
    bool hasFolders() override;
    std::vector<unsigned> indexesOfMatches(const TextSearch &search) override;
    std::vector<unsigned> indexesOfWanted(const UUIDSearch &search) override;

private:
    template <class Predicate>
    std::vector<unsigned> indexesOf(Predicate isOne) const;

    std::shared_ptr<const BookmarkRecords> _records;
    std::vector<unsigned> _numbers; // of the children themselves
};
