#include "model/WayfoldABEntry.h"

#include "core/settings/WayfoldToolkit.h"
#include "model/ContactLabel.h"
#include "model/ContactPicture.h"
#include "model/ItemDialogs.h"
#include "model/ItemImages.h"
#include "platform/widgets/Workspace.h"

namespace
{
const QString entryTypeCoderKey = QStringLiteral("_entryType");
const QString addressBookIDCoderKey = QStringLiteral("_addressBookID");

QString text(const char *key)
{
    return WayfoldToolkit::localizedString(QString::fromLatin1(key));
}

QString nameOr(const QString &name, const char *unnamed)
{
    return name.isEmpty() ? text(unnamed) : name;
}

// A line for each value, the first of them after an empty one.
QString section(const std::vector<ContactValue> &values, int primary, const QString &kind)
{
    QString lines;
    for (std::size_t i = 0; i < values.size(); ++i) {
        lines += i == 0 ? QStringLiteral("\n\n") : QStringLiteral("\n");
        lines += ContactLabel::readable(values[i].label, kind) + QStringLiteral(": ") + values[i].value;
        if (values.size() > 1 && int(i) == primary)
            lines += u'*';
    }
    return lines;
}
} // namespace

WayfoldABEntry::EntryType WayfoldABEntry::EntryTypeFromAddressRecord(const ContactRecordPtr &record)
{
    if (!record)
        return Unknown;
    if (record->isGroup)
        return Group;
    switch (record->flags & ContactRecord::ShowAsMask) {
    case ContactRecord::ShowAsPerson:
        return Person;
    case ContactRecord::ShowAsCompany:
        return Organization;
    default:
        return Unknown;
    }
}

WayfoldABEntryPtr WayfoldABEntry::AddressBookEntryFromABRecord(const ContactRecordPtr &record)
{
    auto entry = std::make_shared<WayfoldABEntry>();
    entry->initFromABRecord(record);
    return entry;
}

WayfoldABEntryPtr WayfoldABEntry::AddressBookEntryFromPersonID(const QString &addressBookID)
{
    auto entry = std::make_shared<WayfoldABEntry>();
    entry->initFromPersonID(addressBookID);
    return entry;
}

void WayfoldABEntry::initFromABRecord(const ContactRecordPtr &record)
{
    *this = WayfoldABEntry();
    _addressBookID = record ? record->uniqueId : QString();
    _entryType = EntryTypeFromAddressRecord(record);
}

void WayfoldABEntry::initFromPersonID(const QString &addressBookID)
{
    *this = WayfoldABEntry();
    _addressBookID = addressBookID;
    determineEntryType();
}

QString WayfoldABEntry::entryTypeDescription() const
{
    switch (_entryType) {
    case Unknown:
        return QStringLiteral("Unknown");
    case Person:
        return QStringLiteral("Person");
    case Organization:
        return QStringLiteral("Organization");
    case Group:
        return QStringLiteral("Group");
    }
    return {};
}

void WayfoldABEntry::determineEntryType()
{
    _entryType = EntryTypeFromAddressRecord(fetchAddressBookRecord());
}

ContactRecordPtr WayfoldABEntry::fetchAddressBookRecord() const
{
    return _addressBookID.isNull() ? nullptr : ContactStore::sharedAddressBook().recordForUniqueId(_addressBookID);
}

QString WayfoldABEntry::title() const
{
    if (_title.isNull())
        _title = shortDescription();
    return _title;
}

bool WayfoldABEntry::refresh()
{
    _title = QString();
    if (const ContactRecordPtr record = fetchAddressBookRecord())
        _entryType = EntryTypeFromAddressRecord(record);
    return true;
}

QString WayfoldABEntry::shortDescription() const
{
    const ContactRecordPtr record = fetchAddressBookRecord();
    return record ? nameOfRecord(*record, _entryType) : text(QT_TRID_NOOP("Invalid"));
}

QString WayfoldABEntry::nameOfRecord(const ContactRecord &record, EntryType type)
{
    switch (type) {
    case Unknown:
        return text(QT_TRID_NOOP("Unknown"));
    case Person:
        return personName(record);
    case Organization:
        return nameOr(record.organization, QT_TRID_NOOP("Unnamed Organization"));
    case Group:
        return nameOr(record.groupName, QT_TRID_NOOP("Unnamed Group"));
    }
    return {};
}

// The suffix stands only where the first name stands first.
QString WayfoldABEntry::personName(const ContactRecord &record)
{
    if (record.firstName.isEmpty() || record.lastName.isEmpty())
        return nameOr(record.firstName.isEmpty() ? record.lastName : record.firstName, QT_TRID_NOOP("Unnamed Person"));
    const int own = record.flags & ContactRecord::NameOrderingMask;
    const int ordering = own != 0 ? own : ContactStore::sharedAddressBook().defaultNameOrdering();
    if (ordering != ContactRecord::FirstNameFirst)
        return record.lastName + u' ' + record.firstName;
    const QString name = record.firstName + u' ' + record.lastName;
    return record.suffix.isEmpty() ? name : name + QStringLiteral(", ") + record.suffix;
}

QString WayfoldABEntry::summaryText() const
{
    const ContactRecordPtr record = fetchAddressBookRecord();
    if (!record)
        return {};
    if (!isPersonOrOrganization())
        return shortDescription();
    return shortDescription() + section(record->phones, record->primaryPhone, QStringLiteral(QT_TRID_NOOP("phone"))) +
           section(record->emails, record->primaryEmail, QStringLiteral(QT_TRID_NOOP("email")));
}

bool WayfoldABEntry::mayHaveAnotherImage() const
{
    return _picturedGeneration != ContactStore::sharedAddressBook().generation() &&
           (!_picture || fetchAddressBookRecord() != _picturedRecord);
}

std::shared_ptr<Image> WayfoldABEntry::image()
{
    const ContactRecordPtr record = fetchAddressBookRecord();
    if (!record || !isPersonOrOrganization())
        return nullptr;
    const ContactStore &store = ContactStore::sharedAddressBook();
    if (mayHaveAnotherImage()) {
        _picturedRecord = record;
        _picturedGeneration = store.generation();
        _picture = ContactPicture::fromData(store.imageData(*record));
    }
    if (_picture)
        return _picture;
    const ContactRecordPtr me = store.me();
    return me && me->uniqueId == _addressBookID
               ? ItemImages::loadedOnce(ItemImages::shared().ownCard, QStringLiteral("WayfoldBookmarkImageMe"))
               : nullptr;
}

std::vector<ContactRecordPtr> WayfoldABEntry::groupMembers() const
{
    const ContactRecordPtr record = fetchAddressBookRecord();
    if (!record || _entryType != Group)
        return {};
    const ContactStore &store = ContactStore::sharedAddressBook();
    std::vector<ContactRecordPtr> members = store.membersOfGroup(*record);
    const std::vector<ContactRecordPtr> subgroups = store.subgroupsOfGroup(*record);
    members.insert(members.end(), subgroups.begin(), subgroups.end());
    return members;
}

QString WayfoldABEntry::personPrimaryEmailAddress() const
{
    const ContactRecordPtr record = fetchAddressBookRecord();
    if (!record || !isPersonOrOrganization())
        return {};
    const auto primary = std::size_t(record->primaryEmail);
    return primary < record->emails.size() ? record->emails[primary].value : QString();
}

QByteArray WayfoldABEntry::vcard() const
{
    const ContactRecordPtr record = fetchAddressBookRecord();
    return record && _entryType == Person ? ContactStore::sharedAddressBook().vCardRepresentation(*record)
                                          : QByteArray();
}

void WayfoldABEntry::openCard(ContactStore::Purpose purpose) const
{
    const ContactRecordPtr record = fetchAddressBookRecord();
    const ContactStore::Opening opening =
        record ? ContactStore::sharedAddressBook().opening(*record, purpose) : ContactStore::Opening();
    const bool isOpen = opening.command.isEmpty() ? Workspace::openURL(Url::fileURLWithPath(opening.file))
                                                  : Workspace::startProgram(opening.command);
    if (!isOpen && ItemDialogs::current())
        ItemDialogs::current()->tellCardIsNotShown(record ? title() : QString());
}

QString WayfoldABEntry::pasteboardTypeForID() const
{
    if (isPersonOrOrganization())
        return QStringLiteral("ABPeopleUIDsPboardType");
    return _entryType == Group ? QStringLiteral("ABGroupsUIDsPboardType") : QString();
}

std::vector<WayfoldABEntryPtr> WayfoldABEntry::recordsContainingSubstring(const QString &text)
{
    std::vector<WayfoldABEntryPtr> entries;
    for (const ContactRecordPtr &record : ContactStore::sharedAddressBook().recordsContainingSubstring(text))
        entries.push_back(AddressBookEntryFromABRecord(record));
    return entries;
}

bool WayfoldABEntry::containsSubstring(const QString &text) const
{
    const ContactRecordPtr record = fetchAddressBookRecord();
    return record && ContactStore::sharedAddressBook().recordContainsSubstring(*record, text);
}

void WayfoldABEntry::encodeWithCoder(KeyedArchiver &coder) const
{
    coder.encodeValueForKey(int(_entryType), entryTypeCoderKey);
    coder.encodeValueForKey(_addressBookID, addressBookIDCoderKey);
}

void WayfoldABEntry::initWithCoder(const KeyedUnarchiver &coder)
{
    *this = WayfoldABEntry();
    _addressBookID = coder.decodeStringForKey(addressBookIDCoderKey);
    const int type = coder.decodeValueForKey(entryTypeCoderKey).toInt();
    _entryType = type >= Unknown && type <= Group ? EntryType(type) : Unknown;
}
