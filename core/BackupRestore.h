#pragma once

#include "model/WayfoldBookmarkFolder.h"

#include <QHash>
#include <QSet>
#include <vector>

class KDRDrawerBundle;

// Brings what an earlier item file held back into the store's tree, by the tree's own operations: what is there already
// is left alone. The tree of that file gives its items away. Both operations save, and refresh all lists.
class BackupRestore
{
public:
    explicit BackupRestore(KDRDrawerBundle &store);

    // Afterwards the tree holds what the file held, in the same order. A site's folder that it did not hold is emptied
    // and goes; a drawer that shows it goes on showing it, empty.
    void replaceWith(const WayfoldBookmarkFolder &backup);
    // Items that are not in the tree come to the end of the folders that they were in, which come back too when they
    // have gone. Of an item that has changed since, the earlier version comes as a second one.
    void add(const WayfoldBookmarkFolder &backup);

private:
    using Items = std::vector<KDRBookmarkPtr>;

    void makeLike(WayfoldBookmarkFolder &folder, const WayfoldBookmarkFolder &backup);
    void pairSites(const Items &wanted, Items &counterparts);
    void setItems(WayfoldBookmarkFolder &folder, const Items &wanted);
    void leaveOnly(WayfoldBookmarkFolder &folder, const QSet<KDRBookmarkPtr> &wanted,
                   const QSet<KDRBookmarkPtr> &staying);

    void indexTrees();
    WayfoldBookmarkFolderPtr folderFor(const WayfoldBookmarkFolder &folder, const WayfoldBookmarkFolder &backup);
    Items missingIn(const WayfoldBookmarkFolder &folder, const WayfoldBookmarkFolder &backup);
    void addInto(WayfoldBookmarkFolder &folder, const WayfoldBookmarkFolder &backup);
    void addFolder(WayfoldBookmarkFolder &folder, const WayfoldBookmarkFolder &backup);
    bool isTop(const WayfoldBookmarkFolder &folder) const;

    KDRDrawerBundle &_store;
    QHash<QString, Items> _present; // what the trees hold, by identifier, and nothing has been paired with
};
