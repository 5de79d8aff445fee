#include "model/WayfoldAutoFolder.h"

#include "core/settings/WayfoldDefaults.h"
#include "model/ItemImages.h"

#include <QHash>

WayfoldAutoFolderPtr WayfoldAutoFolder::bookmarkWithTitle(const QString &title)
{
    auto folder = std::make_shared<WayfoldAutoFolder>();
    folder->setTitle(title);
    return folder;
}

WayfoldAutoFolderPtr WayfoldAutoFolder::bookmarkFromDictionary(const QVariantMap &dictionary)
{
    auto folder = std::make_shared<WayfoldAutoFolder>(Blank());
    folder->loadFromDictionary(dictionary);
    return folder;
}

void WayfoldAutoFolder::init()
{
    WayfoldBookmarkFolder::init();
    _loaded = false;
}

void WayfoldAutoFolder::ensureUpToDate()
{
    if (!_loaded)
        _loaded = refresh();
}

void WayfoldAutoFolder::setFilterString(const QString &filterString)
{
    WayfoldBookmarkFolder::setFilterString(filterString);
    if (_loaded)
        refresh();
}

void WayfoldAutoFolder::refreshFromBookmarkRoot(const WayfoldBookmarkFolderPtr &root)
{
    collect(copiesOfLeaves(matchesBelow(root)));
}

std::shared_ptr<Image> WayfoldAutoFolder::imageForCellSize(const QSizeF &size)
{
    if (!WayfoldDefaults::sharedInstance().showBookmarkIcons())
        return nullptr;
    ItemImages &images = ItemImages::shared();
    const bool isEmpty = childCount() == 0;
    std::shared_ptr<Image> &image = isEmpty ? images.emptyAutoFolder : images.autoFolder;
    ensureIconLoaded(
        image, isEmpty ? QStringLiteral("WayfoldAutoFolderEmptyIcon") : QStringLiteral("WayfoldAutoFolderIcon"), size);
    return image;
}

KDRBookmarkPtr WayfoldAutoFolder::makeNew() const
{
    return std::make_shared<WayfoldAutoFolder>(Blank());
}

bool WayfoldAutoFolder::isSameKindAs(const KDRBookmark &other) const
{
    return dynamic_cast<const WayfoldAutoFolder *>(&other);
}

std::vector<KDRBookmarkPtr> WayfoldAutoFolder::matchesBelow(const WayfoldBookmarkFolderPtr &root) const
{
    return root ? root->bookmarksWithSubstring(filterString()) : std::vector<KDRBookmarkPtr>();
}

std::vector<KDRBookmarkPtr> WayfoldAutoFolder::copiesOfLeaves(const std::vector<KDRBookmarkPtr> &items)
{
    std::vector<KDRBookmarkPtr> copies;
    for (const KDRBookmarkPtr &item : items) {
        if (!item->isFolder())
            copies.push_back(item->copy());
    }
    return copies;
}

void WayfoldAutoFolder::collect(const std::vector<KDRBookmarkPtr> &items)
{
    QHash<QString, KDRBookmarkPtr> former;
    for (const KDRBookmarkPtr &item : madeChildren())
        former.insert(item->uuid(), item);
    std::vector<KDRBookmarkPtr> collected;
    collected.reserve(items.size());
    for (const KDRBookmarkPtr &item : items) {
        const KDRBookmarkPtr known = former.take(item->uuid());
        // People are made anew each time; of visits it counts when they were.
        const bool isKnown =
            known && known->type() == item->type() && known->isEqual(item) &&
            (item->type() != HistoryEntryType || known->timestampInMilliseconds() == item->timestampInMilliseconds());
        if (isKnown)
            known->refresh();
        collected.push_back(isKnown ? known : item);
    }
    setChildren(collected, Parent::ThisFolder);
}
