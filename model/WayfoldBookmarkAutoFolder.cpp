#include "model/WayfoldBookmarkAutoFolder.h"

#include "model/SmartFolderSources.h"

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
    if (!sources || sources->bookmarksMayChange() || _searchedRoot.lock() != root || _searchedText != filterString())
        search(root);
    const std::vector<KDRBookmarkPtr> contacts =
        sources ? sources->relatedContacts(filterString()) : std::vector<KDRBookmarkPtr>();
    removeAllChildren();
    appendCopiesOfLeaves(_found, *this);
    appendCopiesOfLeaves(contacts, *this);
    sortChildrenByTitle();
}

void WayfoldBookmarkAutoFolder::search(const WayfoldBookmarkFolderPtr &root)
{
    _found = matchesBelow(root);
    std::erase_if(_found,
                  [](const KDRBookmarkPtr &item) { return item->isFolder(); }); // they would keep all below them
    _searchedRoot = root;
    _searchedText = filterString();
}

KDRBookmarkPtr WayfoldBookmarkAutoFolder::makeNew() const
{
    return std::make_shared<WayfoldBookmarkAutoFolder>(Blank());
}

bool WayfoldBookmarkAutoFolder::isSameKindAs(const KDRBookmark &other) const
{
    return dynamic_cast<const WayfoldBookmarkAutoFolder *>(&other);
}
