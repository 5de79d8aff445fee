#pragma once

#include "model/history/HistoryItems.h"

// What a search of the browser's history finds, as the list shows it: copies of the entries in their order, made as
// they are seen; before them one of the history's folder itself if its title is found too.
class HistoryMatches : public LazyChildren
{
public:
    // The folder holds its entries as the store reads them (see HistoryItems::ofFolder).
    HistoryMatches(WayfoldBookmarkFolder &history, const TextSearch &search);

    unsigned count() override;
    KDRBookmarkPtr makeChild(unsigned index, const WayfoldBookmarkFolderPtr &folder) override;
    bool isFolder(unsigned index) override;
    bool hasFolders() override { return _folder != nullptr; }
    std::vector<unsigned> indexesOfMatches(const TextSearch &search) override;
    std::vector<unsigned> indexesOfWanted(const UUIDSearch &search) override;

private:
    std::vector<unsigned> behindFolder(std::vector<unsigned> indexes) const;

    KDRBookmarkPtr _folder; // none: its title is not found
    unsigned _first = 0;    // the index of the first entry
    std::shared_ptr<HistoryItems> _entries;
};
