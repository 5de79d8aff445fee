#include "lists/Stranger.h"

#include "core/settings/WayfoldToolkit.h"
#include "model/WayfoldBookmarkABGroup.h"
#include "model/WayfoldBookmarkABPerson.h"
#include "model/WayfoldBookmarkEmail.h"
#include "model/WayfoldBookmarkNote.h"
#include "platform/base/StringRules.h"
#include "platform/contacts/ContactStore.h"

namespace
{
QString nameOfPerson(const ContactRecord &record)
{
    const bool isLastFirst = ContactStore::sharedAddressBook().defaultNameOrdering() == ContactRecord::LastNameFirst;
    QStringList names = {record.firstName, record.lastName};
    if (isLastFirst)
        names.swapItemsAt(0, 1);
    names.removeAll(QString());
    return names.join(u' ');
}

// The members of a group that are known by their addresses.
QStringList addressesOf(const ContactRecord &record)
{
    static const QString scheme = QStringLiteral("mailto:");
    if (!record.isGroup)
        return record.emails.empty() ? QStringList()
                                     : QStringList(record.emails[std::size_t(record.primaryEmail)].value);
    QStringList addresses;
    for (const QString &member : record.members) {
        if (member.startsWith(scheme))
            addresses.append(member.mid(scheme.size()));
    }
    return addresses;
}
} // namespace

QString Stranger::nameOn(const ContactRecord &record)
{
    const QString email = record.emails.empty() ? QString() : record.emails[0].value;
    const QString phone = record.phones.empty() ? QString() : record.phones[0].value;
    for (const QString &name : {record.groupName, nameOfPerson(record), record.organization, email, phone}) {
        if (!name.isEmpty())
            return name;
    }
    const char *unnamed = record.isGroup ? QT_TRID_NOOP("Unnamed Group") : QT_TRID_NOOP("Unnamed Person");
    return WayfoldToolkit::localizedString(QString::fromLatin1(unnamed));
}

KDRBookmarkPtr Stranger::standInFor(const ContactCards::Card &card)
{
    const QString name = nameOn(card.record);
    const QStringList addresses = addressesOf(card.record);
    if (!addresses.isEmpty())
        return WayfoldBookmarkEmail::bookmarkWithTitleAndURL(
            name, WayfoldBookmarkEmail::mailURL(addresses, {}, {}, QString()));
    return WayfoldBookmarkNote::bookmarkWithTitleAndNote(name, StringRules::fromUtf8(card.text).remove(u'\r'));
}

KDRBookmarkPtr Stranger::contactMeantBy(const ContactCards::Card &card)
{
    const ContactRecordPtr record = ContactStore::sharedAddressBook().recordMeantBy(card.record);
    if (!record)
        return nullptr;
    if (record->isGroup)
        return WayfoldBookmarkABGroup::bookmarkWithID(record->uniqueId);
    return WayfoldBookmarkABPerson::bookmarkWithID(record->uniqueId);
}
