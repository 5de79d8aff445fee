#include "model/history/HistoryEntries.h"

#include "model/TextSearch.h"
#include "model/UUIDSearch.h"
#include "model/WayfoldHistoryURL.h"
#include "model/history/HistoryItems.h"
#include "model/history/HistoryRecords.h"

namespace
{
// Of a folder that was filled from the history file: no item is needed to group them.
class RecordEntries : public HistoryEntries
{
public:
    explicit RecordEntries(std::shared_ptr<HistoryItems> items) : _items(std::move(items)) {}

    unsigned count() const override { return _items->count(); }
    qint64 visited(unsigned number) const override { return records().visited(record(number)); }
    unsigned day(unsigned number) override { return _days.numberAt(visited(number)); }
    unsigned site(unsigned number) const override { return records().site(record(number)); }
    const QString &dayTitle(unsigned day) const override { return _days.title(day); }
    const QString &siteTitle(unsigned site) const override { return records().siteName(site); }
    KDRBookmarkPtr item(unsigned number) override { return _items->item(number); }
    bool matches(unsigned number, const TextSearch &search) const override
    {
        return records().matches(record(number), search);
    }
    bool isWanted(unsigned number, const UUIDSearch &search) const override
    {
        return records().isWanted(record(number), search);
    }

private:
    const HistoryRecords &records() const { return _items->records(); }
    unsigned record(unsigned number) const { return _items->recordNumber(number); }

    std::shared_ptr<HistoryItems> _items;
    DayTitles &_days = DayTitles::current();
};

// Of any other folder. What is no history entry has no date.
class ItemEntries : public HistoryEntries
{
public:
    explicit ItemEntries(std::vector<KDRBookmarkPtr> items) : _items(std::move(items))
    {
        for (const KDRBookmarkPtr &item : _items) {
            const auto entry = std::dynamic_pointer_cast<WayfoldHistoryURL>(item);
            _visits.push_back(entry ? entry->timestampInMilliseconds() : KDRBookmark::noTimestamp);
            _sites.push_back(entry && !entry->trackedHostName().isEmpty() ? siteNumber(entry->trackedHostName()) : 0);
        }
    }

    unsigned count() const override { return unsigned(_items.size()); }
    qint64 visited(unsigned number) const override { return _visits[number]; }
    unsigned day(unsigned number) override { return _days.numberAt(_visits[number]); }
    unsigned site(unsigned number) const override { return _sites[number]; }
    const QString &dayTitle(unsigned day) const override { return _days.title(day); }
    const QString &siteTitle(unsigned site) const override { return _siteTitles[site]; }
    KDRBookmarkPtr item(unsigned number) override { return _items[number]; }
    bool matches(unsigned number, const TextSearch &search) const override { return _items[number]->matches(search); }
    bool isWanted(unsigned number, const UUIDSearch &search) const override
    {
        return _items[number]->isUUIDMade() && search.isWanted(_items[number]->uuid());
    }

private:
    unsigned siteNumber(const QString &title)
    {
        const auto known = _siteNumbers.constFind(title);
        if (known != _siteNumbers.constEnd())
            return *known;
        const unsigned number = unsigned(_siteTitles.size());
        _siteTitles.push_back(title);
        _siteNumbers.insert(title, number);
        return number;
    }

    std::vector<KDRBookmarkPtr> _items;
    std::vector<qint64> _visits;
    std::vector<unsigned> _sites;
    std::vector<QString> _siteTitles = {QString()};
    QHash<QString, unsigned> _siteNumbers;
    DayTitles &_days = DayTitles::current();
};
} // namespace

std::shared_ptr<HistoryEntries> HistoryEntries::ofFolder(const WayfoldBookmarkFolder &folder)
{
    if (std::shared_ptr<HistoryItems> items = HistoryItems::ofFolder(folder))
        return std::make_shared<RecordEntries>(std::move(items));
    return std::make_shared<ItemEntries>(folder.children());
}
