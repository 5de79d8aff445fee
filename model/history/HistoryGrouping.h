#pragma once

#include "model/WayfoldBookmarkFolder.h"
#include "model/history/EntryNumbers.h"

#include <vector>

class HistoryEntries;

// Groups history entries into folders by day and site. Only the folders of the first level are made at once; what is in
// them is made when somebody looks into them.
class HistoryGrouping
{
public:
    enum class Level { Day, Site };

    // The levels from the outside in; none: no folders.
    HistoryGrouping(std::shared_ptr<HistoryEntries> entries, std::vector<Level> levels);

    // Fills a folder that holds nothing, or a former grouping: its entries go, and the folders that somebody knows are
    // used again. Folders that become empty go one level at a time: one that held folders stays until the next
    // grouping.
    void fill(const WayfoldBookmarkFolderPtr &folder) const;

    // Groups what one folder holds, none: nothing, into another, none: nowhere. Styles: "0" no folders, "1" by day, "2"
    // by day, then by site, "3" by site, "4" by site, then by day; by any other, nothing but folders stays.
    static void regroup(const WayfoldBookmarkFolderPtr &from, const WayfoldBookmarkFolderPtr &into,
                        const QString &style);

    // The entries of one folder of the first level.
    struct Group
    {
        QString title;
        unsigned first = 0; // the entry for which the folder is made, whether or not it is put there
        EntryNumbers numbers;
    };
    // In the order in which the entries come.
    std::vector<Group> groupsOf(const EntryNumbers &numbers) const;
    // In the order of the list, and without those that are empty.
    std::vector<Group> sortedGroupsOf(const EntryNumbers &numbers) const;
    // The folder of a group, filled.
    WayfoldBookmarkFolderPtr folderOf(const Group &group) const;

private:
    // Groups without their entries, and of each entry which group it belongs to; `nowhere`: none.
    struct Sorting
    {
        std::vector<Group> groups;
        std::vector<unsigned> groupOfPlace;
    };
    static constexpr unsigned nowhere = ~0U;

    Sorting sort(const EntryNumbers &numbers) const;
    WayfoldBookmarkFolderPtr emptyFolderOf(const Group &group) const;
    void fillGroups(const WayfoldBookmarkFolderPtr &folder, const EntryNumbers &numbers) const;
    void tidy(WayfoldBookmarkFolder &folder) const;
    void fillGroup(const WayfoldBookmarkFolderPtr &folder, const EntryNumbers &numbers) const;

    std::shared_ptr<HistoryEntries> _entries;
    std::vector<Level> _levels;
};
