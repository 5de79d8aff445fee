#pragma once

#include "model/LazyChildren.h"

class HistoryRecords;

// The items of history records, or of a choice of them: the children of the browser's history as the store keeps it,
// and of any folder that holds copies of them. Each record has one item, made when it is first asked for.
class HistoryItems : public LazyChildren
{
public:
    // All records.
    explicit HistoryItems(std::shared_ptr<const HistoryRecords> records);
    // Those with the given numbers.
    HistoryItems(std::shared_ptr<const HistoryRecords> records, std::vector<unsigned> numbers);

    // The history entries that a folder holds in this form; null when it has other children, or none.
    static std::shared_ptr<HistoryItems> ofFolder(const WayfoldBookmarkFolder &folder);
    // Copies of those that the search finds, in order; they hold all the records, for a list that changes with them.
    std::shared_ptr<HistoryItems> copiesOfMatches(const TextSearch &search);
    // Copies of those with the given indexes, to be kept: they hold no other records.
    std::shared_ptr<HistoryItems> copiesOf(const std::vector<unsigned> &indexes) const;

    const HistoryRecords &records() const { return *_records; }
    unsigned recordNumber(unsigned index) const { return _isAll ? index : _numbers[index]; }
    // The one item of that index; its parent is none until a folder takes it.
    const KDRBookmarkPtr &item(unsigned index);

    unsigned count() override;
    KDRBookmarkPtr makeChild(unsigned index, const WayfoldBookmarkFolderPtr &folder) override;
    bool isFolder(unsigned index) override;
    bool hasFolders() override { return false; }
    std::vector<unsigned> indexesOfMatches(const TextSearch &search) override;
    std::vector<unsigned> indexesOfWanted(const UUIDSearch &search) override;
    std::shared_ptr<LazyChildren> copies() override;

private:
    std::shared_ptr<const HistoryRecords> _records;
    bool _isAll = true;
    std::vector<unsigned> _numbers;
    std::vector<KDRBookmarkPtr> _items; // empty until the first is made
};
