#include "lists/SavedDepth.h"

#include "model/WayfoldBookmarkFolder.h"
#include "platform/files/PropertyList.h"

#include <algorithm>

namespace
{
// A folder's dictionary and the list of its children; any other item's dictionary and the one with its title.
constexpr int levelsOfAnItem = 2;

using Folders = std::vector<const WayfoldBookmarkFolder *>;

// The members of a group are looked up anew.
void appendSavedFolder(const KDRBookmark &item, Folders &folders)
{
    if (item.type() == KDRBookmark::FolderType && item.canBePersistent())
        folders.push_back(static_cast<const WayfoldBookmarkFolder *>(&item));
}

int levelsDownTo(const WayfoldBookmarkFolder &folder)
{
    int levels = levelsOfAnItem;
    for (WayfoldBookmarkFolderPtr above = folder.parent(); above; above = above->parent())
        levels += levelsOfAnItem;
    return levels;
}

// Of the item alone, with what is kept for others.
int ownLevels(const KDRBookmark &item)
{
    return std::max(levelsOfAnItem, 1 + item.depthOfUnknown());
}

// Counted generation by generation, so that no depth can exhaust the stack.
int levelsOf(const KDRBookmark &item)
{
    int levels = ownLevels(item);
    int levelsAbove = 0;
    Folders generation;
    appendSavedFolder(item, generation);
    while (!generation.empty()) {
        levelsAbove += levelsOfAnItem;
        Folders next;
        for (const WayfoldBookmarkFolder *folder : generation) {
            for (const KDRBookmarkPtr &child : folder->children()) {
                levels = std::max(levels, levelsAbove + ownLevels(*child));
                appendSavedFolder(*child, next);
            }
        }
        generation = std::move(next);
    }
    return levels;
}
} // namespace

bool SavedDepth::fits(const WayfoldBookmarkFolder &folder, const KDRBookmark &item)
{
    return levelsDownTo(folder) + levelsOf(item) <= PropertyList::maximumDepth;
}

bool SavedDepth::hasRoom(const WayfoldBookmarkFolder &folder)
{
    return levelsDownTo(folder) + levelsOfAnItem <= PropertyList::maximumDepth;
}
