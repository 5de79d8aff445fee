#pragma once

#include "model/KDRBookmark.h"

#include <memory>
#include <vector>

class TextSearch;
class UUIDSearch;

// Children that a folder does not hold yet. The folder asks for each when somebody first looks at it, and keeps it from
// then on; so a folder of 100,000 costs no more than those of its rows that are seen.
//
//     folder->setLazyChildren(std::make_shared<SomeChildren>(...));
//     folder->childCount();    // asks count()
//     folder->childAtIndex(7); // asks makeChild(7, folder), once
//
// Whoever changes the folder (adds, removes, sorts) has all of them made first.
class LazyChildren
{
public:
    virtual ~LazyChildren() = default;

    // Always the same.
    virtual unsigned count() = 0;
    // Whether count() is 0, where that is easier to tell.
    virtual bool isEmpty() { return count() == 0; }
    // Never none; it has a parent. Empty folders among them go with removeEmptySubfolders() only once they are made.
    virtual KDRBookmarkPtr makeChild(unsigned index, const WayfoldBookmarkFolderPtr &folder) = 0;
    virtual bool isFolder(unsigned index) = 0;
    // Whether there may be folders among them; false is of use to whoever would ask for each.
    virtual bool hasFolders() { return true; }

    // Ascending: the leaves that the search finds, and the folders in which it may find something.
    virtual std::vector<unsigned> indexesOfMatches(const TextSearch &search) = 0;
    // Ascending: the leaves whose identifier is looked for, and the folders that hold such. A folder that was not made
    // yet has no identifier itself.
    virtual std::vector<unsigned> indexesOfWanted(const UUIDSearch &search) = 0;
    // The children of a copy of the folder, which are copies of these; none: the folder has to copy them one by one.
    virtual std::shared_ptr<LazyChildren> copies() { return nullptr; }
};
