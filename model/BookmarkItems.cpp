#include "model/BookmarkItems.h"

#include "model/BookmarkRecords.h"
#include "model/WayfoldBookmarkABGroup.h"
#include "model/WayfoldBookmarkABPerson.h"
#include "model/WayfoldBookmarkFolder.h"
#include "model/WayfoldBookmarkNote.h"
#include "model/WayfoldBookmarkURL.h"

#include <algorithm>

namespace
{
WayfoldBookmarkFolderPtr folderOf(const std::shared_ptr<const BookmarkRecords> &records, unsigned number)
{
    auto folder = WayfoldBookmarkFolder::bookmarkWithTitle(records->title(number));
    const QString searchString = records->value(number);
    folder->setFilterString(searchString.isEmpty() ? folder->title() : searchString);
    if (records->behind(number) > number + 1)
        folder->setLazyChildren(std::make_shared<BookmarkItems>(records, number));
    return folder;
}

KDRBookmarkPtr itemOf(const std::shared_ptr<const BookmarkRecords> &records, unsigned number)
{
    switch (records->kind(number)) {
    case BookmarkRecords::Kind::Link:
        return WayfoldBookmarkURL::bookmarkWithTitleAndURL(records->title(number),
                                                           Url::URLWithString(records->value(number)));
    case BookmarkRecords::Kind::Note:
        return WayfoldBookmarkNote::bookmarkWithTitleAndNote(records->title(number), records->value(number));
    case BookmarkRecords::Kind::Person:
        return WayfoldBookmarkABPerson::bookmarkWithID(records->value(number));
    case BookmarkRecords::Kind::Group:
        return WayfoldBookmarkABGroup::bookmarkWithID(records->value(number));
    case BookmarkRecords::Kind::Folder:
        break;
    }
    return folderOf(records, number);
}

bool isFolderKind(BookmarkRecords::Kind kind)
{
    return kind == BookmarkRecords::Kind::Folder || kind == BookmarkRecords::Kind::Group;
}

template <class Item>
std::shared_ptr<Item> withIdentifier(std::shared_ptr<Item> item, const QString &uuid)
{
    if (!uuid.isNull())
        item->setUUID(uuid);
    return item;
}
} // namespace

BookmarkItems::BookmarkItems(std::shared_ptr<const BookmarkRecords> records, unsigned folder)
    : _records(std::move(records))
{
    for (unsigned number = folder + 1; number < _records->behind(folder); number = _records->behind(number))
        _numbers.push_back(number);
}

WayfoldBookmarkFolderPtr BookmarkItems::treeOf(const std::shared_ptr<const BookmarkRecords> &records)
{
    return withIdentifier(folderOf(records, 0), records->uuid(0));
}

KDRBookmarkPtr BookmarkItems::makeChild(unsigned index, const WayfoldBookmarkFolderPtr &folder)
{
    const unsigned number = _numbers[index];
    KDRBookmarkPtr item = withIdentifier(itemOf(_records, number), _records->uuid(number));
    item->setParent(folder);
    return item;
}

bool BookmarkItems::isFolder(unsigned index)
{
    return isFolderKind(_records->kind(_numbers[index]));
}

bool BookmarkItems::hasFolders()
{
    return std::any_of(_numbers.begin(), _numbers.end(),
                       [this](unsigned number) { return isFolderKind(_records->kind(number)); });
}

std::vector<unsigned> BookmarkItems::indexesOfMatches(const TextSearch &search)
{
    return indexesOf([&](unsigned number) { return _records->isFoundWithin(number, search); });
}

std::vector<unsigned> BookmarkItems::indexesOfWanted(const UUIDSearch &search)
{
    return indexesOf([&](unsigned number) { return _records->isWantedWithin(number, search); });
}

template <class Predicate>
std::vector<unsigned> BookmarkItems::indexesOf(Predicate isOne) const
{
    std::vector<unsigned> indexes;
    for (unsigned index = 0; index < _numbers.size(); ++index) {
        if (isOne(_numbers[index]))
            indexes.push_back(index);
    }
    return indexes;
}
