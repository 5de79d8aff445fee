#include "lists/ScratchpadDrop.h"

#include "core/settings/WayfoldToolkit.h"
#include "lists/PageTitle.h"
#include "lists/PasteboardTypes.h"
#include "lists/SavedDepth.h"
#include "model/ItemDictionary.h"
#include "model/WayfoldAutoFolder.h"
#include "model/WayfoldBookmarkABGroup.h"
#include "model/WayfoldBookmarkABPerson.h"
#include "model/WayfoldBookmarkNote.h"
#include "model/WayfoldBookmarkURL.h"
#include "platform/base/StringRules.h"
#include "platform/contacts/ContactStore.h"
#include "platform/files/Paths.h"

#include <algorithm>

namespace
{
constexpr qsizetype longestWholeTitle = 29;
constexpr qsizetype shortenedTitle = 30;

QString noteTitle(const QString &text)
{
    if (text.size() <= longestWholeTitle)
        return text;
    return StringRules::beginning(text, shortenedTitle) + QStringLiteral("...");
}

// An item without a title would not be read back from the item file: it gets one, or is none when it holds nothing.
KDRBookmarkPtr folderFromDictionary(const QVariantMap &dictionary)
{
    const WayfoldBookmarkFolderPtr folder = WayfoldBookmarkFolder::bookmarkFromDictionary(dictionary);
    if (!folder->title().isEmpty())
        return folder;
    if (folder->isEmpty())
        return nullptr;
    folder->setTitle(WayfoldToolkit::localizedString(QStringLiteral(QT_TRID_NOOP("Untitled Folder"))));
    return folder;
}

KDRBookmarkPtr linkFromDictionary(const QVariantMap &dictionary)
{
    const WayfoldBookmarkURLPtr link = WayfoldBookmarkURL::bookmarkFromDictionary(dictionary);
    if (!link->title().isEmpty())
        return link;
    if (link->url().isNull())
        return nullptr;
    link->setTitle(PageTitle::forURL(link->url()));
    return link;
}

// A folder or a link, whatever the dictionary calls it, and from now on by that name.
KDRBookmarkPtr itemFromDictionary(QVariantMap dictionary)
{
    const bool isFolder = dictionary.contains(ItemDictionary::childrenKey);
    dictionary.insert(ItemDictionary::typeKey, isFolder ? ItemDictionary::listType : ItemDictionary::leafType);
    return isFolder ? folderFromDictionary(dictionary) : linkFromDictionary(dictionary);
}

// What comes out of a smart folder into one that is saved. A visited page has no dictionary, so it would be gone with
// the next start; it becomes a link, also within a folder of such pages.
KDRBookmarkPtr withVisitsAsLinks(const KDRBookmarkPtr &item)
{
    if (item->type() == KDRBookmark::HistoryEntryType)
        return WayfoldBookmarkURL::bookmarkWithTitleAndURL(item->title(), item->value().value<Url>());
    const WayfoldBookmarkFolderPtr folder = WayfoldBookmarkFolder::fromItem(item);
    if (!folder || std::dynamic_pointer_cast<WayfoldAutoFolder>(item))
        return item;
    auto own = WayfoldBookmarkFolder::bookmarkWithTitle(item->title());
    for (const KDRBookmarkPtr &child : folder->children())
        own->addChild(withVisitsAsLinks(child));
    return own;
}

// Contacts that are not all there yet may still know it.
bool mayBeKnown(const QString &id)
{
    const ContactStore &contacts = ContactStore::sharedAddressBook();
    return !id.isEmpty() && (contacts.state() == ContactStore::Loading || contacts.recordForUniqueId(id));
}

// What a group lists belongs to no folder, and stays where it is: another item for it goes into the folder.
KDRBookmarkPtr anotherItemFor(const KDRBookmarkPtr &member)
{
    if (member->type() == KDRBookmark::GroupType)
        return WayfoldBookmarkABGroup::bookmarkWithID(member->uuid());
    return member->type() == KDRBookmark::PersonType ? WayfoldBookmarkABPerson::bookmarkWithID(member->uuid()) : member;
}
} // namespace

bool ScratchpadDrop::accept(const DroppedData &data)
{
    namespace Types = PasteboardTypes;
    if (data.offersCards() && addCards(CardFiles::fromData(data.cards(), _allowance)))
        return true;
    if (data.offers(Types::KDRBookmark))
        return moveItem(data);
    if (data.offers(Types::KDRBookmarkList))
        return moveItems(data);
    if (data.offers(Types::ABPeopleUIDs))
        return addAddressBookItems(data, Types::ABPeopleUIDs);
    if (data.offers(Types::ABGroupsUIDs))
        return addAddressBookItems(data, Types::ABGroupsUIDs);
    if (data.offers(Types::BookmarkDictionaryList))
        return addFromDictionaries(data);
    if (data.offers(Types::WebURLsWithTitles))
        return addFromURLsWithTitles(data.propertyListForType(Types::WebURLsWithTitles));
    if (data.offers(Types::NSURLPboardType))
        return addFromURL(data);
    if (data.offers(Types::NSFilenamesPboardType))
        return addFiles(data);
    return data.offers(Types::NSStringPboardType) && addNote(data);
}

void ScratchpadDrop::adjustIndexFor(const KDRBookmark &item)
{
    if (item.parent() == _target && item.childIsAtIndex() < _index)
        --_index;
}

bool ScratchpadDrop::canMove(const KDRBookmarkPtr &item) const
{
    const bool isInOrAboveTarget = item == _target || _target->isChildOf(item);
    return !isInOrAboveTarget && SavedDepth::fits(*_target, *item);
}

bool ScratchpadDrop::insert(const KDRBookmarkPtr &item)
{
    if (!SavedDepth::fits(*_target, *item))
        return false;
    _target->addChildAtIndex(item, _index++);
    _droppedItems.push_back(item);
    return true;
}

void ScratchpadDrop::move(const KDRBookmarkPtr &item)
{
    const WayfoldBookmarkFolderPtr parent = item->parent();
    if (!parent) {
        insert(anotherItemFor(item));
        return;
    }
    const KDRBookmarkPtr moved = item->canBePersistent() ? item : withVisitsAsLinks(item);
    parent->removeChild(item);
    insert(moved);
}

// A bookmark and its copy in a smart folder have the same identifier: the one that is dragged is meant. None when the
// drag does not tell.
KDRBookmarkPtr ScratchpadDrop::draggedItem(const DroppedData &data, std::size_t place, const QString &uuid) const
{
    const KDRBookmarkPtr item = data.draggedItem(place);
    if (!item || item->uuid() != uuid)
        return nullptr;
    const bool isHere = item->parent() ? item->isChildOf(_root) : _root->findByUUID(uuid) != nullptr;
    return isHere ? item : nullptr;
}

bool ScratchpadDrop::moveItem(const DroppedData &data)
{
    const QString uuid = data.stringForType(PasteboardTypes::KDRBookmark);
    KDRBookmarkPtr item = uuid.isEmpty() ? nullptr : draggedItem(data, 0, uuid);
    if (!item && !uuid.isEmpty())
        item = _root->findByUUID(uuid);
    if (!item || !canMove(item))
        return false;
    adjustIndexFor(*item);
    move(item);
    return true;
}

bool ScratchpadDrop::moveItems(const DroppedData &data)
{
    const QVariantList uuids = data.propertyListForType(PasteboardTypes::KDRBookmarkList);
    const QHash<QString, KDRBookmarkPtr> items = _root->itemsWithUUIDs(QVariant(uuids).toStringList());
    for (qsizetype place = 0; place < uuids.size(); ++place) {
        const QString uuid = uuids[place].toString();
        KDRBookmarkPtr item = draggedItem(data, std::size_t(place), uuid);
        if (!item)
            item = items.value(uuid);
        if (!item)
            continue;
        adjustIndexFor(*item); // even for one that stays where it is
        if (!canMove(item))
            continue;
        move(item);
    }
    return !uuids.isEmpty();
}

bool ScratchpadDrop::addAddressBookItems(const DroppedData &data, const QString &type)
{
    const QStringList ids = QVariant(data.propertyListForType(type)).toStringList();
    for (const QString &id : ids) {
        if (!mayBeKnown(id))
            continue;
        if (type == PasteboardTypes::ABPeopleUIDs)
            insert(WayfoldBookmarkABPerson::bookmarkWithID(id));
        else
            insert(WayfoldBookmarkABGroup::bookmarkWithID(id));
    }
    return !ids.isEmpty();
}

// False when there is nobody that can be inserted.
bool ScratchpadDrop::addCards(const std::vector<ContactCards::Card> &cards)
{
    const std::size_t before = _droppedItems.size();
    for (const ContactCards::Card &card : cards) {
        if (_cards.contains(card.text))
            continue;
        _cards.insert(card.text);
        if (const KDRBookmarkPtr contact = Stranger::contactMeantBy(card)) {
            insert(contact);
            continue;
        }
        const KDRBookmarkPtr standIn = Stranger::standInFor(card);
        if (insert(standIn))
            _strangers.push_back({card, standIn});
    }
    return _droppedItems.size() > before;
}

// Where there are no contacts a file stays a file.
bool ScratchpadDrop::addCardFile(const QString &path)
{
    if (ContactStore::sharedAddressBook().state() == ContactStore::Absent)
        return false;
    const std::vector<ContactCards::Card> cards = CardFiles::read(path, _allowance);
    return !cards.empty() && addCards(cards);
}

bool ScratchpadDrop::addFromDictionaries(const DroppedData &data)
{
    bool isAnything = false;
    const QVariantList dictionaries = data.itemDictionaries();
    for (const QVariant &dictionary : dictionaries) {
        if (const KDRBookmarkPtr item = itemFromDictionary(dictionary.toMap())) {
            isAnything = true;
            insert(item);
        }
    }
    // Pages that are known by their addresses alone.
    return isAnything ? !_droppedItems.empty() : addFromURLsWithTitles(data.links());
}

bool ScratchpadDrop::addFromURLsWithTitles(const QVariantList &lists)
{
    const QVariantList addresses = lists.value(0).toList();
    const QVariantList titles = lists.value(1).toList();
    for (qsizetype i = 0; i < addresses.size(); ++i) {
        const Url url = DroppedData::urlFromText(addresses.at(i).toString());
        if (url.isNull())
            continue;
        const QString title = titles.value(i).toString();
        insert(WayfoldBookmarkURL::bookmarkWithTitleAndURL(title.isEmpty() ? PageTitle::forURL(url) : title, url));
    }
    return !_droppedItems.empty();
}

bool ScratchpadDrop::addFromURL(const DroppedData &data)
{
    const Url url = DroppedData::urlFromText(data.stringForType(PasteboardTypes::NSURLPboardType));
    if (url.isNull())
        return false;
    return insert(WayfoldBookmarkURL::bookmarkWithTitleAndURL(PageTitle::forURL(url), url));
}

bool ScratchpadDrop::addFiles(const DroppedData &data)
{
    const QVariantList paths = data.propertyListForType(PasteboardTypes::NSFilenamesPboardType);
    for (qsizetype place = 0; place < paths.size(); ++place) {
        const QString expanded = Paths::expandingTilde(paths[place].toString());
        if (data.isForeignFileHere(place) && addCardFile(expanded))
            continue;
        const Url url = Url::fileURLWithPath(expanded);
        if (url.isNull())
            continue;
        const QString name = expanded.section(QLatin1Char('/'), -1, -1, QString::SectionSkipEmpty);
        insert(WayfoldBookmarkURL::bookmarkWithTitleAndURL(name.isEmpty() ? expanded : name, url));
    }
    return !paths.isEmpty();
}

bool ScratchpadDrop::addNote(const DroppedData &data)
{
    const QString text = data.stringForType(PasteboardTypes::NSStringPboardType);
    if (text.isEmpty())
        return false;
    return insert(WayfoldBookmarkNote::bookmarkWithTitleAndNote(noteTitle(text), text));
}
