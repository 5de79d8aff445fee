#include "model/WayfoldBookmarkABGroup.h"

#include "core/settings/WayfoldDefaults.h"
#include "model/ItemDictionary.h"
#include "model/ItemImages.h"
#include "model/TextSearch.h"
#include "model/WayfoldBookmarkABPerson.h"

#include <algorithm>

namespace
{
const QString entryCoderKey = QStringLiteral("_addressBookEntry");
// Groups that list each other unfold to more than anybody could hold. What has no room beside the rest is filled when
// it is looked into.
constexpr qsizetype roomWithin = 20000;     // members of the groups within a group
constexpr qsizetype leastRoomOfAGroup = 20; // so that it is a thousand groups at most, however deep
} // namespace

WayfoldBookmarkABGroupPtr WayfoldBookmarkABGroup::bookmarkWithTitle(const QString &title)
{
    auto group = std::make_shared<WayfoldBookmarkABGroup>();
    group->setTitle(title);
    return group;
}

WayfoldBookmarkABGroupPtr WayfoldBookmarkABGroup::bookmarkWithID(const QString &addressBookID)
{
    auto group = std::make_shared<WayfoldBookmarkABGroup>(Blank());
    group->initWithID(addressBookID);
    return group;
}

WayfoldBookmarkABGroupPtr WayfoldBookmarkABGroup::bookmarkWithRecord(const WayfoldABEntryPtr &entry)
{
    auto group = std::make_shared<WayfoldBookmarkABGroup>(Blank());
    group->initWithRecord(entry);
    return group;
}

WayfoldBookmarkABGroupPtr WayfoldBookmarkABGroup::bookmarkFromDictionary(const QVariantMap &dictionary)
{
    auto group = std::make_shared<WayfoldBookmarkABGroup>(Blank());
    group->loadFromDictionary(dictionary);
    return group;
}

void WayfoldBookmarkABGroup::init()
{
    WayfoldAutoFolder::init();
    setEntry(nullptr);
    _groupsAround.clear();
}

void WayfoldBookmarkABGroup::initWithID(const QString &addressBookID)
{
    init();
    setValueFromID(addressBookID);
    setUUID(addressBookID);
}

void WayfoldBookmarkABGroup::initWithRecord(const WayfoldABEntryPtr &entry)
{
    init();
    setEntry(entry);
    setUUID(entry ? entry->addressBookID() : QString());
}

QString WayfoldBookmarkABGroup::title() const
{
    return _addressBookEntry ? _addressBookEntry->shortDescription() : QString();
}

void WayfoldBookmarkABGroup::setValue(const QVariant &value)
{
    if (!value.isValid() || value.metaType() == QMetaType::fromType<WayfoldABEntryPtr>())
        setEntry(value.value<WayfoldABEntryPtr>());
}

void WayfoldBookmarkABGroup::setValueFromID(const QString &addressBookID)
{
    setEntry(WayfoldABEntry::AddressBookEntryFromPersonID(addressBookID));
}

// The members were another's.
void WayfoldBookmarkABGroup::setEntry(const WayfoldABEntryPtr &entry)
{
    _filledGeneration = 0;
    if (entry == _addressBookEntry)
        return;
    changeField(TreeObserver::Field::Value, [this, entry] {
        _addressBookEntry = entry;
        _shownRecord = entry ? entry->fetchAddressBookRecord() : nullptr;
    });
}

// The subgroups were filled with the rest, so they are not refreshed once more: twice at each level would double the
// time with each.
bool WayfoldBookmarkABGroup::refresh()
{
    qsizetype room = roomWithin;
    fill(room);
    return true;
}

void WayfoldBookmarkABGroup::fill(qsizetype &room)
{
    const std::scoped_lock lock(_updateLock);
    const quint64 generation = ContactStore::sharedAddressBook().generation();
    if (generation != 0 && generation == _filledGeneration)
        return;
    _filledGeneration = generation;
    refreshEntry();
    std::vector<KDRBookmarkPtr> members;
    if (_addressBookEntry && !isWithinItself()) {
        const QHash<QString, KDRBookmarkPtr> former = membersByCard();
        const QStringList around = _groupsAround + QStringList(_addressBookEntry->addressBookID());
        for (const ContactRecordPtr &record : _addressBookEntry->groupMembers()) {
            if (const KDRBookmarkPtr member = memberFor(record, former.value(record->uniqueId), around, room))
                members.push_back(member);
        }
    }
    setChildren(sortedByTitle(members), Parent::Same);
}

void WayfoldBookmarkABGroup::refreshEntry()
{
    if (!_addressBookEntry)
        return;
    _addressBookEntry->refresh();
    const ContactRecordPtr record = _addressBookEntry->fetchAddressBookRecord();
    const bool isAnother = _shownRecord.owner_before(record) || record.owner_before(_shownRecord);
    _shownRecord = record;
    if (isAnother)
        tellAppearanceChanged();
}

// Those that are this group's own: a copy's are its children.
QHash<QString, KDRBookmarkPtr> WayfoldBookmarkABGroup::membersByCard() const
{
    QHash<QString, KDRBookmarkPtr> members;
    for (const KDRBookmarkPtr &member : children()) {
        const auto entry = member->value().value<WayfoldABEntryPtr>();
        if (entry && !member->parent())
            members.insert(entry->addressBookID(), member);
    }
    return members;
}

KDRBookmarkPtr WayfoldBookmarkABGroup::memberFor(const ContactRecordPtr &record, const KDRBookmarkPtr &former,
                                                 const QStringList &around, qsizetype &room)
{
    switch (WayfoldABEntry::EntryTypeFromAddressRecord(record)) {
    case WayfoldABEntry::Person:
    case WayfoldABEntry::Organization:
        if (!former || former->type() != PersonType)
            return WayfoldBookmarkABPerson::bookmarkWithID(record->uniqueId);
        former->refresh();
        return former;
    case WayfoldABEntry::Group:
        return groupFor(*record, former, around, room);
    case WayfoldABEntry::Unknown:
        break;
    }
    return nullptr;
}

KDRBookmarkPtr WayfoldBookmarkABGroup::groupFor(const ContactRecord &record, const KDRBookmarkPtr &former,
                                                const QStringList &around, qsizetype &room)
{
    const qsizetype needed = std::max(record.members.size(), leastRoomOfAGroup);
    const bool hasRoom = needed <= room;
    const WayfoldBookmarkABGroupPtr known =
        hasRoom ? std::dynamic_pointer_cast<WayfoldBookmarkABGroup>(former) : nullptr;
    const WayfoldBookmarkABGroupPtr group = known ? known : bookmarkWithID(record.uniqueId);
    group->_groupsAround = around;
    if (!hasRoom)
        return group;
    room -= needed;
    group->fill(room);
    return group;
}

bool WayfoldBookmarkABGroup::isWithinItself() const
{
    return _groupsAround.contains(_addressBookEntry->addressBookID());
}

bool WayfoldBookmarkABGroup::matches(const TextSearch &search) const
{
    return search.isFoundIn(title());
}

void WayfoldBookmarkABGroup::loadFromDictionary(const QVariantMap &dictionary)
{
    using namespace ItemDictionary;
    initWithID(string(dictionary, addressBookIDKey));
    const QString storedUUID = string(dictionary, uuidKey);
    if (!storedUUID.isEmpty())
        setUUID(storedUUID);
    keepUnknown(dictionary);
}

void WayfoldBookmarkABGroup::writeToDictionaryForSaving(QVariantMap &dictionary, bool forSaving) const
{
    Q_UNUSED(forSaving)
    using namespace ItemDictionary;
    dictionary.insert(typeKey, groupType);
    dictionary.insert(addressBookIDKey,
                      textOrEmpty(_addressBookEntry ? _addressBookEntry->addressBookID() : QString()));
    dictionary.insert(uuidKey, textOrEmpty(uuid()));
}

bool WayfoldBookmarkABGroup::isEqual(const KDRBookmark &other) const
{
    return isSameKindAs(other) &&
           _addressBookEntry == static_cast<const WayfoldBookmarkABGroup &>(other)._addressBookEntry &&
           WayfoldAutoFolder::isEqual(other);
}

std::shared_ptr<Image> WayfoldBookmarkABGroup::imageForCellSize(const QSizeF &size)
{
    Q_UNUSED(size)
    std::shared_ptr<Image> &image = ItemImages::shared().group;
    return WayfoldDefaults::sharedInstance().showBookmarkIcons()
               ? ItemImages::loadedOnce(image, QStringLiteral("WayfoldBookmarkImageGroup"))
               : image;
}

bool WayfoldBookmarkABGroup::editViaDialog()
{
    if (_addressBookEntry)
        _addressBookEntry->openCard(ContactStore::Edit);
    return true;
}

QStringList WayfoldBookmarkABGroup::primaryEmailAddressList() const
{
    QStringList addresses;
    QSet<QString> known;
    appendEmailAddresses(addresses, known);
    return addresses;
}

void WayfoldBookmarkABGroup::appendEmailAddresses(QStringList &addresses, QSet<QString> &known) const
{
    for (const KDRBookmarkPtr &member : children()) {
        if (const auto *group = dynamic_cast<const WayfoldBookmarkABGroup *>(member.get())) {
            group->appendEmailAddresses(addresses, known);
        } else if (const auto *person = dynamic_cast<const WayfoldBookmarkABPerson *>(member.get())) {
            const QString address = person->primaryEmailAddress();
            if (address.isEmpty() || known.contains(address))
                continue;
            known.insert(address);
            addresses.append(address);
        }
    }
}

void WayfoldBookmarkABGroup::encodeWithCoder(KeyedArchiver &coder) const
{
    WayfoldAutoFolder::encodeWithCoder(coder);
    coder.encodeObjectForKey(_addressBookEntry, entryCoderKey);
}

void WayfoldBookmarkABGroup::initWithCoder(const KeyedUnarchiver &coder)
{
    WayfoldAutoFolder::initWithCoder(coder);
    setEntry(std::dynamic_pointer_cast<WayfoldABEntry>(coder.decodeObjectForKey(entryCoderKey)));
}

KDRBookmarkPtr WayfoldBookmarkABGroup::makeNew() const
{
    return std::make_shared<WayfoldBookmarkABGroup>(Blank());
}

bool WayfoldBookmarkABGroup::isSameKindAs(const KDRBookmark &other) const
{
    return dynamic_cast<const WayfoldBookmarkABGroup *>(&other);
}
