#include "model/UnknownEntries.h"

#include "model/UnknownKeys.h"

#include <QHash>
#include <algorithm>

UnknownEntries::UnknownEntries(const Places &places, const Items &items)
{
    for (std::size_t place = 0; place < places.size(); ++place) {
        if (place > 0 && place <= items.size())
            addItem(items[place - 1]);
        for (const QVariant &entry : places[place])
            addEntry(entry);
    }
}

void UnknownEntries::addItem(const std::shared_ptr<KDRBookmark> &item)
{
    _order.push_back({item, {}});
}

void UnknownEntries::addEntry(const QVariant &entry)
{
    _order.push_back({{}, entry});
    ++_count;
}

UnknownEntries::Places UnknownEntries::placesAmong(const Items &items) const
{
    QHash<const KDRBookmark *, std::size_t> placesBehind;
    for (std::size_t i = items.size(); i > 0; --i)
        placesBehind.insert(items[i - 1].get(), i); // of an item that is there twice the first counts
    Places places(items.size() + 1);
    std::size_t place = 0;
    for (const Place &found : _order) {
        if (found.entry.isValid())
            places[place].append(found.entry);
        else
            place = placesBehind.value(found.item.lock().get(), place);
    }
    return places;
}

int UnknownEntries::depth() const
{
    int depth = 0;
    for (const Place &found : _order)
        depth = std::max(depth, UnknownKeys::depthOf(found.entry));
    return depth;
}
