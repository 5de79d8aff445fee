#include "platform/contacts/KnownContacts.h"

#include "platform/base/Log.h"
#include "platform/files/FileReplacement.h"
#include "platform/files/Paths.h"
#include "platform/files/PropertyList.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <algorithm>

namespace
{
constexpr int writeDelay = 2000;                        // milliseconds
constexpr qint64 largestFile = qint64(8) * 1024 * 1024; // bytes
const QString recordsKey = QStringLiteral("Records");

QVariantList listOf(const std::vector<ContactValue> &values)
{
    QVariantList list;
    for (const ContactValue &value : values)
        list.append(QVariantMap{{QStringLiteral("Label"), value.label}, {QStringLiteral("Value"), value.value}});
    return list;
}

std::vector<ContactValue> valuesIn(const QVariant &list)
{
    std::vector<ContactValue> values;
    for (const QVariant &entry : list.toList()) {
        const QVariantMap value = entry.toMap();
        values.push_back(
            {value.value(QStringLiteral("Label")).toString(), value.value(QStringLiteral("Value")).toString()});
    }
    return values;
}

// The texts of a record, and the keys that they have in the file. None has no key there.
constexpr std::pair<const char *, QString ContactRecord::*> texts[] = {
    {"Identifier", &ContactRecord::uniqueId},       {"FirstName", &ContactRecord::firstName},
    {"LastName", &ContactRecord::lastName},         {"Suffix", &ContactRecord::suffix},
    {"Organization", &ContactRecord::organization}, {"HomePage", &ContactRecord::homePage},
    {"GroupName", &ContactRecord::groupName},
};

QVariantMap dictionaryOf(const ContactRecord &record)
{
    QVariantMap dictionary;
    for (const auto &[key, field] : texts) {
        if (!(record.*field).isNull())
            dictionary.insert(QString::fromLatin1(key), record.*field);
    }
    dictionary.insert(QStringLiteral("Flags"), qlonglong(record.flags));
    if (record.isGroup)
        dictionary.insert(QStringLiteral("Members"),
                          QVariant(record.members.mid(0, KnownContacts::mostMembers)).toList());
    if (!record.phones.empty()) {
        dictionary.insert(QStringLiteral("Phones"), listOf(record.phones));
        dictionary.insert(QStringLiteral("PrimaryPhone"), qlonglong(record.primaryPhone));
    }
    if (!record.emails.empty()) {
        dictionary.insert(QStringLiteral("Emails"), listOf(record.emails));
        dictionary.insert(QStringLiteral("PrimaryEmail"), qlonglong(record.primaryEmail));
    }
    return dictionary;
}

// A position that is in the list whatever the file says.
int positionIn(const std::vector<ContactValue> &values, const QVariant &position)
{
    const qlonglong last = std::max<qlonglong>(qlonglong(values.size()) - 1, 0);
    return int(std::clamp<qlonglong>(position.toLongLong(), 0, last));
}

ContactRecordPtr recordIn(const QVariantMap &dictionary)
{
    auto record = std::make_shared<ContactRecord>();
    for (const auto &[key, field] : texts)
        (*record).*field = dictionary.value(QString::fromLatin1(key)).toString();
    record->flags = dictionary.value(QStringLiteral("Flags")).toInt();
    record->isGroup = dictionary.contains(QStringLiteral("Members"));
    record->members = dictionary.value(QStringLiteral("Members")).toStringList();
    record->phones = valuesIn(dictionary.value(QStringLiteral("Phones")));
    record->emails = valuesIn(dictionary.value(QStringLiteral("Emails")));
    record->primaryPhone = positionIn(record->phones, dictionary.value(QStringLiteral("PrimaryPhone")));
    record->primaryEmail = positionIn(record->emails, dictionary.value(QStringLiteral("PrimaryEmail")));
    return record;
}
} // namespace

KnownContacts::KnownContacts(const QString &path) : _path(path)
{
    _writeTimer.setSingleShot(true);
    _writeTimer.setInterval(writeDelay);
    connect(&_writeTimer, &QTimer::timeout, this, &KnownContacts::synchronize);
    if (QCoreApplication *application = QCoreApplication::instance())
        connect(application, &QCoreApplication::aboutToQuit, this, &KnownContacts::synchronize);
    removeAbandonedSaves(_path);
    read();
}

KnownContacts::~KnownContacts()
{
    synchronize();
}

QString KnownContacts::defaultPath()
{
    return Paths::homeDirectory() + QLatin1String("/Library/Caches/Wayfold/Contacts.plist");
}

ContactRecordPtr KnownContacts::record(const QString &uniqueId) const
{
    return _known.value(uniqueId).record;
}

void KnownContacts::note(const ContactRecordPtr &record)
{
    Known &known = _known[record->uniqueId];
    known.asked = ++_questions;
    if (known.record == record)
        return;
    const bool isSame = known.record && *known.record == *record;
    known.record = record;
    if (isSame)
        return;
    changed();
    if (_known.size() > 2 * mostRecords)
        forgetOldest();
}

void KnownContacts::forget(const QString &uniqueId)
{
    if (_known.remove(uniqueId))
        changed();
}

void KnownContacts::refresh(const std::function<ContactRecordPtr(const QString &uniqueId)> &now)
{
    for (auto known = _known.begin(); known != _known.end();) {
        const ContactRecordPtr record = now(known.key());
        if (!record || (record != known->record && !(*record == *known->record)))
            changed();
        if (!record) {
            known = _known.erase(known);
            continue;
        }
        known->record = record;
        ++known;
    }
}

bool KnownContacts::synchronize()
{
    _writeTimer.stop();
    if (!_isChanged)
        return true;
    forgetOldest();
    std::vector<const Known *> sorted; // by when they were asked for, so that this is known when they are read again
    for (const Known &known : std::as_const(_known))
        sorted.push_back(&known);
    std::sort(sorted.begin(), sorted.end(), [](const Known *a, const Known *b) { return a->asked < b->asked; });
    QVariantList records;
    for (const Known *known : sorted)
        records.append(dictionaryOf(*known->record));
    _isChanged =
        !QDir().mkpath(QFileInfo(_path).path()) || !PropertyList::writeFile(QVariantMap{{recordsKey, records}}, _path);
    return !_isChanged;
}

void KnownContacts::read()
{
    if (QFileInfo(_path).size() > largestFile)
        return;
    const QVariantList records = PropertyList::readDictionaryFile(_path).value(recordsKey).toList();
    for (const QVariant &entry : records) {
        const ContactRecordPtr record = recordIn(entry.toMap());
        if (!record->uniqueId.isEmpty())
            _known.insert(record->uniqueId, {record, ++_questions});
    }
    forgetOldest();
}

void KnownContacts::forgetOldest()
{
    if (_known.size() <= mostRecords)
        return;
    std::vector<quint64> asked;
    for (const Known &known : std::as_const(_known))
        asked.push_back(known.asked);
    std::nth_element(asked.begin(), asked.end() - mostRecords, asked.end());
    const quint64 oldest = *(asked.end() - mostRecords);
    _known.removeIf([oldest](const std::pair<const QString &, Known &> &entry) { return entry.second.asked < oldest; });
}

void KnownContacts::changed()
{
    _isChanged = true;
    if (QCoreApplication::instance() && !QCoreApplication::closingDown() && !_writeTimer.isActive())
        _writeTimer.start();
}
