#pragma once

#include <memory>
#include <vector>

class KDRBookmark;
class WayfoldBookmarkFolder;

// Is told what changes in the tree below a folder while it observes that folder (WayfoldBookmarkFolder::addObserver).
// Folders tell of their children, items of their own fields. An event goes from the folder (for a field: from the item
// itself when it is a folder, else from the one that holds it) up to the root, and each folder on the way tells its
// observers.
//
// An observer may change the tree while it is being told: that change is told after the one that is under way. The
// others find the tree at each event as they were told; who makes the change is told of it, with both of its halves,
// when he has returned, and to him a "will" then comes when the tree has changed already. An observer may also cease to
// observe, or cease to be.
class TreeObserver
{
public:
    // Children side by side, in order.
    struct Children
    {
        WayfoldBookmarkFolder &folder;
        int first; // the place of the first of them, from 0
        const std::vector<std::shared_ptr<KDRBookmark>> &items;
    };

    enum class Field {
        Title,
        Value,        // what a link, a note or a folder holds beside its title
        SearchString, // that a folder's smart folders search for
        Identifier,
        Timestamp,
        Appearance, // what is looked up elsewhere: a card's name, an icon; nothing that is saved
    };

    virtual ~TreeObserver() = default;

    virtual void willAdd(const Children & /*children*/) {}
    virtual void added(const Children & /*children*/) {}
    virtual void willRemove(const Children & /*children*/) {}
    virtual void removed(const Children & /*children*/) {}
    // The same children in another order: the one at place i now was at `from[i]` before.
    virtual void moved(WayfoldBookmarkFolder & /*folder*/, const std::vector<int> & /*from*/) {}
    // All children are others now, in one step: those of lazy folders, which nobody has asked for yet, among them.
    virtual void replaced(WayfoldBookmarkFolder & /*folder*/) {}
    // The item still has what it had. Not told of an appearance.
    virtual void willChange(KDRBookmark & /*item*/, Field /*field*/) {}
    virtual void changed(KDRBookmark & /*item*/, Field /*field*/) {}
};
