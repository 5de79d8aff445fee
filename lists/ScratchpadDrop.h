#pragma once

#include "lists/CardFiles.h"
#include "lists/DroppedData.h"
#include "lists/Stranger.h"
#include "model/WayfoldBookmarkFolder.h"

#include <QSet>

// One drop on the Scratchpad: items of the Scratchpad move, anything else becomes new items.
class ScratchpadDrop
{
public:
    // `root` is what the list shows; the items go into `target`, which is the root or lies in it, from `index` on.
    ScratchpadDrop(const WayfoldBookmarkFolderPtr &root, const WayfoldBookmarkFolderPtr &target, int index)
        : _root(root)
        , _target(target)
        , _index(index)
    {}

    // Acts on the first type, in the order of preference, that the data offers. False when the drop is refused; the
    // tree is as it was then.
    bool accept(const DroppedData &data);

    // What was moved or made, in order.
    const std::vector<KDRBookmarkPtr> &droppedItems() const { return _droppedItems; }
    // Those of them that stand for people who are not among the contacts.
    const std::vector<Stranger> &strangers() const { return _strangers; }

private:
    KDRBookmarkPtr draggedItem(const DroppedData &data, std::size_t place, const QString &uuid) const;
    bool moveItem(const DroppedData &data);
    bool moveItems(const DroppedData &data);
    bool addAddressBookItems(const DroppedData &data, const QString &type);
    bool addFromDictionaries(const DroppedData &data);
    // One list of addresses, one of titles.
    bool addFromURLsWithTitles(const QVariantList &lists);
    bool addFromURL(const DroppedData &data);
    bool addFiles(const DroppedData &data);
    bool addCards(const std::vector<ContactCards::Card> &cards);
    bool addCardFile(const QString &path);
    bool addNote(const DroppedData &data);

    // Taking an item out before the place in its own folder moves the place up.
    void adjustIndexFor(const KDRBookmark &item);
    bool canMove(const KDRBookmarkPtr &item) const;
    // False when the item would lie too deep to be saved; it is left out then.
    bool insert(const KDRBookmarkPtr &item);
    // Takes an item that can be moved out of its folder and inserts it.
    void move(const KDRBookmarkPtr &item);

    WayfoldBookmarkFolderPtr _root;
    WayfoldBookmarkFolderPtr _target;
    int _index;
    CardFiles::Allowance _allowance;
    QSet<QByteArray> _cards; // each is taken once
    std::vector<KDRBookmarkPtr> _droppedItems;
    std::vector<Stranger> _strangers;
};
