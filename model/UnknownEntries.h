#pragma once

#include <QVariantList>
#include <memory>
#include <vector>

class KDRBookmark;

// The entries of a folder's dictionary that make no item in this version, with their places among those that do. They
// follow the items behind which they stood; where such an item has gone, the one before it.
class UnknownEntries
{
public:
    using Items = std::vector<std::shared_ptr<KDRBookmark>>;
    // What stands in front of the items, then what stands behind the first of them, the second and so on.
    using Places = std::vector<QVariantList>;

    UnknownEntries() = default;
    UnknownEntries(const Places &places, const Items &items);

    // In the order of the dictionary: an entry that makes that item, and one that makes none.
    void addItem(const std::shared_ptr<KDRBookmark> &item);
    void addEntry(const QVariant &entry);

    bool isEmpty() const { return _count == 0; }
    Places placesAmong(const Items &items) const;
    // How many dictionaries and lists lie one in another in the deepest of them.
    int depth() const;

private:
    struct Place
    {
        std::weak_ptr<KDRBookmark> item;
        QVariant entry; // invalid where there is, or was, an item
    };
    std::vector<Place> _order;
    int _count = 0; // of the entries
};
