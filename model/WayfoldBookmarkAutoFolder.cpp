#include "model/WayfoldBookmarkAutoFolder.h"

#include "model/SmartFolderSources.h"
#include "model/WayfoldBookmarkABPerson.h"
#include "platform/contacts/ContactStore.h"

#include <QHash>

WayfoldBookmarkAutoFolderPtr WayfoldBookmarkAutoFolder::bookmarkWithTitle(const QString &title)
{
    auto folder = std::make_shared<WayfoldBookmarkAutoFolder>();
    folder->setTitle(title);
    return folder;
}

WayfoldBookmarkAutoFolderPtr WayfoldBookmarkAutoFolder::bookmarkFromDictionary(const QVariantMap &dictionary)
{
    auto folder = std::make_shared<WayfoldBookmarkAutoFolder>(Blank());
    folder->loadFromDictionary(dictionary);
    return folder;
}

bool WayfoldBookmarkAutoFolder::refresh()
{
    const SmartFolderSources *const sources = SmartFolderSources::current();
    refreshFromBookmarkRoot(sources ? sources->safariBookmarkRoot() : nullptr);
    return WayfoldBookmarkFolder::refresh();
}

void WayfoldBookmarkAutoFolder::refreshFromBookmarkRoot(const WayfoldBookmarkFolderPtr &root)
{
    const SmartFolderSources *const sources = SmartFolderSources::current();
    if (!sources || sources->bookmarksMayChange() || !isSearched(root))
        search(root);
    searchContacts();
    std::vector<KDRBookmarkPtr> items = copiesOfLeaves(found());
    for (const WayfoldABEntryPtr &entry : _foundContacts)
        items.push_back(WayfoldBookmarkABPerson::bookmarkWithRecord(entry));
    collect(sortedByTitle(items));
}

// A tree that has gone is another one than none.
bool WayfoldBookmarkAutoFolder::isSearched(const WayfoldBookmarkFolderPtr &root) const
{
    return !_searchedRoot.owner_before(root) && !root.owner_before(_searchedRoot) && _searchedText == filterString();
}

void WayfoldBookmarkAutoFolder::search(const WayfoldBookmarkFolderPtr &root)
{
    const std::vector<KDRBookmarkPtr> matches = matchesBelow(root);
    _found.assign(matches.begin(), matches.end());
    _searchedRoot = root;
    _searchedText = filterString();
}

// People and organizations alone: groups would be folders, which are not shown here. Who was found before keeps the
// entry, which knows the picture.
void WayfoldBookmarkAutoFolder::searchContacts()
{
    const quint64 generation = ContactStore::sharedAddressBook().generation();
    if (generation == _searchedGeneration && filterString() == _searchedContactsText)
        return;
    QHash<QString, WayfoldABEntryPtr> former;
    for (const WayfoldABEntryPtr &entry : _foundContacts)
        former.insert(entry->addressBookID(), entry);
    _foundContacts = WayfoldABEntry::recordsContainingSubstring(filterString());
    std::erase_if(_foundContacts, [](const WayfoldABEntryPtr &entry) {
        return entry->entryType() != WayfoldABEntry::Person && entry->entryType() != WayfoldABEntry::Organization;
    });
    for (WayfoldABEntryPtr &entry : _foundContacts) {
        if (const WayfoldABEntryPtr known = former.value(entry->addressBookID())) {
            known->refresh();
            entry = known;
        }
    }
    _searchedGeneration = generation;
    _searchedContactsText = filterString();
}

std::vector<KDRBookmarkPtr> WayfoldBookmarkAutoFolder::found() const
{
    std::vector<KDRBookmarkPtr> items;
    for (const std::weak_ptr<KDRBookmark> &match : _found) {
        if (KDRBookmarkPtr item = match.lock())
            items.push_back(std::move(item));
    }
    return items;
}

KDRBookmarkPtr WayfoldBookmarkAutoFolder::makeNew() const
{
    return std::make_shared<WayfoldBookmarkAutoFolder>(Blank());
}

bool WayfoldBookmarkAutoFolder::isSameKindAs(const KDRBookmark &other) const
{
    return dynamic_cast<const WayfoldBookmarkAutoFolder *>(&other);
}
