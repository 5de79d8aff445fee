#include "model/history/HistoryItems.h"

#include "model/TextSearch.h"
#include "model/WayfoldBookmarkFolder.h"
#include "model/WayfoldHistoryURL.h"
#include "model/history/HistoryRecords.h"

HistoryItems::HistoryItems(std::shared_ptr<const HistoryRecords> records) : _records(std::move(records)) {}

HistoryItems::HistoryItems(std::shared_ptr<const HistoryRecords> records, std::vector<unsigned> numbers)
    : _records(std::move(records))
    , _isAll(false)
    , _numbers(std::move(numbers))
{}

std::shared_ptr<HistoryItems> HistoryItems::ofFolder(const WayfoldBookmarkFolder &folder)
{
    return std::dynamic_pointer_cast<HistoryItems>(folder.lazyChildren());
}

std::shared_ptr<HistoryItems> HistoryItems::copiesOfMatches(const TextSearch &search)
{
    std::vector<unsigned> numbers = indexesOfMatches(search);
    for (unsigned &number : numbers)
        number = recordNumber(number);
    return std::make_shared<HistoryItems>(_records, std::move(numbers));
}

std::shared_ptr<HistoryItems> HistoryItems::copiesOf(const std::vector<unsigned> &indexes) const
{
    auto records = std::make_shared<HistoryRecords>();
    for (const unsigned index : indexes)
        records->appendCopy(*_records, recordNumber(index));
    return std::make_shared<HistoryItems>(std::move(records));
}

const KDRBookmarkPtr &HistoryItems::item(unsigned index)
{
    if (_items.empty())
        _items.resize(count());
    KDRBookmarkPtr &item = _items[index];
    if (!item)
        item = WayfoldHistoryURL::bookmarkFromRecord(*_records, recordNumber(index));
    return item;
}

unsigned HistoryItems::count()
{
    return _isAll ? _records->count() : unsigned(_numbers.size());
}

KDRBookmarkPtr HistoryItems::makeChild(unsigned index, const WayfoldBookmarkFolderPtr &folder)
{
    const KDRBookmarkPtr &made = item(index);
    // A grouping may have taken it over before.
    if (!made->parent())
        made->setParent(folder);
    return made;
}

bool HistoryItems::isFolder(unsigned /*index*/)
{
    return false;
}

std::vector<unsigned> HistoryItems::indexesOfMatches(const TextSearch &search)
{
    std::vector<unsigned> indexes;
    const unsigned all = count();
    for (unsigned index = 0; index < all; ++index) {
        if (_records->matches(recordNumber(index), search))
            indexes.push_back(index);
    }
    return indexes;
}

std::vector<unsigned> HistoryItems::indexesOfWanted(const UUIDSearch &search)
{
    std::vector<unsigned> indexes;
    const unsigned all = count();
    for (unsigned index = 0; index < all; ++index) {
        if (_records->isWanted(recordNumber(index), search))
            indexes.push_back(index);
    }
    return indexes;
}

std::shared_ptr<LazyChildren> HistoryItems::copies()
{
    return _isAll ? std::make_shared<HistoryItems>(_records) : std::make_shared<HistoryItems>(_records, _numbers);
}
