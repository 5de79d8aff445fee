#include "platform/contacts/ContactStore.h"

#include "platform/base/NotificationQueue.h"
#include "platform/base/PlatformNotifications.h"
#include "platform/contacts/KnownContacts.h"

#include <QLocale>
#include <QSet>

namespace
{
constexpr int noticeInterval = 250; // milliseconds

ContactStore *sharedStore = nullptr;

quint64 nextGeneration()
{
    static quint64 changes = 0; // of all stores
    return ++changes;
}

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
} // namespace

ContactStore::ContactStore()
{
    _notice.setSingleShot(true);
    _notice.setInterval(noticeInterval);
    QObject::connect(&_notice, &QTimer::timeout, &_notice, [this] { postChange(false); });
}

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
    ContactStore &shown = sharedAddressBook();
    shown._generation = nextGeneration();
    shown.postChange(false);
}

void ContactStore::rememberIn(const QString &path)
{
    _known = std::make_unique<KnownContacts>(path);
}

ContactRecordPtr ContactStore::recordForUniqueId(const QString &uniqueId) const
{
    ContactRecordPtr record = _index.record(uniqueId);
    if (record && _known)
        _known->note(record);
    if (record)
        return record;
    const QString address = state() == Absent ? QString() : mailAddressOf(uniqueId);
    if (!address.isEmpty())
        return recordForAddress(uniqueId, address);
    return knownRecord(uniqueId);
}

ContactRecordPtr ContactStore::knownRecord(const QString &uniqueId) const
{
    return _known && mayLackCards() ? _known->record(uniqueId) : nullptr;
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
    return membersThatAreGroups(group, false);
}

std::vector<ContactRecordPtr> ContactStore::subgroupsOfGroup(const ContactRecord &group) const
{
    return membersThatAreGroups(group, true);
}

std::vector<ContactRecordPtr> ContactStore::membersThatAreGroups(const ContactRecord &group, bool areGroups) const
{
    std::vector<ContactRecordPtr> found;
    QSet<QString> taken;
    for (const QString &id : group.members) {
        ContactRecordPtr record = recordForUniqueId(id);
        if (!record || record->isGroup != areGroups || taken.contains(id))
            continue;
        taken.insert(id);
        found.push_back(std::move(record));
    }
    return found;
}

ContactRecordPtr ContactStore::recordMeantBy(const ContactRecord &card) const
{
    const ContactRecordPtr same = _index.record(card.uniqueId);
    return same ? same : _index.personLike(card);
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

// Every list is loaded anew with each notice, and cards come by the thousand.
void ContactStore::tellChange(bool here)
{
    _generation = nextGeneration();
    if (_known && state() == Ready) {
        _known->refresh([this](const QString &uniqueId) {
            const ContactRecordPtr record = _index.record(uniqueId);
            return record ? record : knownRecord(uniqueId);
        });
    }
    if (here || !isReading())
        postChange(here);
    else if (!_notice.isActive())
        _notice.start();
}

void ContactStore::postChange(bool here)
{
    if (!here)
        _notice.stop();
    const QString &name = here ? PlatformNotifications::kABDatabaseChangedNotification
                               : PlatformNotifications::kABDatabaseChangedExternallyNotification;
    NotificationQueue::defaultQueue().enqueueNotification({name, this}, NotificationQueue::NSPostASAP);
}
