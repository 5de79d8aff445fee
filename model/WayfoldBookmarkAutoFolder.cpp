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
    const std::vector<KDRBookmarkPtr> bookmarks = matchesBelow(root);
    const std::vector<KDRBookmarkPtr> contacts =
        sources ? sources->relatedContacts(filterString()) : std::vector<KDRBookmarkPtr>();
    removeAllChildren();
    appendCopiesOfLeaves(bookmarks, *this);
    appendCopiesOfLeaves(contacts, *this);
    sortChildrenByTitle();
}

KDRBookmarkPtr WayfoldBookmarkAutoFolder::makeNew() const
{
    return std::make_shared<WayfoldBookmarkAutoFolder>(Blank());
}

bool WayfoldBookmarkAutoFolder::isSameKindAs(const KDRBookmark &other) const
{
    return dynamic_cast<const WayfoldBookmarkAutoFolder *>(&other);
}
