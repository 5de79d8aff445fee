#include "platform/contacts/ContactStore.h"

#include "platform/base/NotificationQueue.h"
#include "platform/base/PlatformNotifications.h"

#include <QLocale>
#include <algorithm>

namespace
{
ContactStore *sharedStore = nullptr;

QString mailAddressOf(const QString &uniqueId)
{
    static const QString scheme = QStringLiteral("mailto:");
    return uniqueId.startsWith(scheme, Qt::CaseInsensitive) ? uniqueId.mid(scheme.size()) : QString();
}

// Somebody who is known by the address alone.
ContactRecordPtr recordForAddress(const QString &uniqueId, const QString &address)
{
    auto record = std::make_shared<ContactRecord>();
    record->uniqueId = uniqueId;
    record->firstName = address;
    record->emails = {{QString(), address}};
    return record;
}

bool haveSameName(const ContactRecord &a, const ContactRecord &b)
{
    return a.firstName == b.firstName && a.lastName == b.lastName && a.organization == b.organization;
}

bool shareAnAddress(const ContactRecord &a, const ContactRecord &b)
{
    return std::any_of(a.emails.cbegin(), a.emails.cend(), [&b](const ContactValue &one) {
        return std::any_of(b.emails.cbegin(), b.emails.cend(), [&one](const ContactValue &other) {
            return one.value.compare(other.value, Qt::CaseInsensitive) == 0;
        });
    });
}
} // namespace

ContactStore::~ContactStore()
{
    NotificationQueue::defaultQueue().dequeueNotificationsForObject(this);
    if (sharedStore == this)
        sharedStore = nullptr;
}

ContactStore &ContactStore::sharedAddressBook()
{
    static auto *const none = new ContactStore; // never released: it must not outlive the notification queue
    return sharedStore ? *sharedStore : *none;
}

void ContactStore::setSharedAddressBook(ContactStore *store)
{
    sharedStore = store;
    sharedAddressBook().tellChange(false);
}

ContactRecordPtr ContactStore::recordForUniqueId(const QString &uniqueId) const
{
    if (ContactRecordPtr record = _index.record(uniqueId))
        return record;
    const QString address = mailAddressOf(uniqueId);
    return address.isEmpty() || state() == Absent ? nullptr : recordForAddress(uniqueId, address);
}

std::vector<ContactRecordPtr> ContactStore::recordsContainingSubstring(const QString &text) const
{
    return _index.peopleContaining(text);
}

bool ContactStore::recordContainsSubstring(const ContactRecord &record, const QString &text) const
{
    return ContactIndex::contains(record, text);
}

std::vector<ContactRecordPtr> ContactStore::people() const
{
    return _index.people();
}

std::vector<ContactRecordPtr> ContactStore::groups() const
{
    return _index.groups();
}

std::vector<ContactRecordPtr> ContactStore::membersOfGroup(const ContactRecord &group) const
{
    std::vector<ContactRecordPtr> found;
    for (const QString &id : group.members) {
        if (ContactRecordPtr record = recordForUniqueId(id); record && !record->isGroup)
            found.push_back(std::move(record));
    }
    return found;
}

std::vector<ContactRecordPtr> ContactStore::subgroupsOfGroup(const ContactRecord &group) const
{
    std::vector<ContactRecordPtr> found;
    for (const QString &id : group.members) {
        if (ContactRecordPtr record = recordForUniqueId(id); record && record->isGroup)
            found.push_back(std::move(record));
    }
    return found;
}

ContactRecordPtr ContactStore::recordMeantBy(const ContactRecord &card) const
{
    if (ContactRecordPtr same = _index.record(card.uniqueId))
        return same;
    const std::vector<ContactRecordPtr> known = people();
    const auto found = std::find_if(known.cbegin(), known.cend(), [&card](const ContactRecordPtr &record) {
        return haveSameName(*record, card) && shareAnAddress(*record, card);
    });
    return found == known.cend() ? nullptr : *found;
}

int ContactStore::defaultNameOrdering() const
{
    switch (QLocale().language()) {
    case QLocale::Chinese:
    case QLocale::Hungarian:
    case QLocale::Japanese:
    case QLocale::Korean:
    case QLocale::Vietnamese:
        return ContactRecord::LastNameFirst;
    default:
        return ContactRecord::FirstNameFirst;
    }
}

QByteArray ContactStore::imageData(const ContactRecord & /*record*/) const
{
    return {};
}

QByteArray ContactStore::vCardRepresentation(const ContactRecord & /*record*/) const
{
    return {};
}

ContactStore::Opening ContactStore::opening(const ContactRecord & /*record*/, Purpose /*purpose*/) const
{
    return {};
}

void ContactStore::add(const QByteArray & /*vCard*/, const std::function<void(const QString &uniqueId)> &done)
{
    done(QString());
}

void ContactStore::put(const std::vector<ContactRecordPtr> &records, bool here)
{
    for (const ContactRecordPtr &record : records)
        _index.put(record);
    tellChange(here);
}

void ContactStore::remove(const QStringList &uniqueIds, bool here)
{
    for (const QString &id : uniqueIds)
        _index.remove(id);
    tellChange(here);
}

void ContactStore::clear()
{
    _index.clear();
    tellChange(false);
}

void ContactStore::tellChange(bool here)
{
    static quint64 changes = 0; // of all stores
    _generation = ++changes;
    const QString &name = here ? PlatformNotifications::kABDatabaseChangedNotification
                               : PlatformNotifications::kABDatabaseChangedExternallyNotification;
    NotificationQueue::defaultQueue().enqueueNotification({name, this}, NotificationQueue::NSPostASAP);
}
