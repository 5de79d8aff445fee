#include "platform/contacts/ContactPrograms.h"

#include <QStandardPaths>
#include <algorithm>

namespace
{
// An address that no other card has, the primary one first; null when there is none.
QString ownAddress(const ContactStore &store, const ContactRecord &record)
{
    std::vector<ContactValue> emails = record.emails;
    if (std::size_t(record.primaryEmail) < emails.size())
        std::rotate(emails.begin(), emails.begin() + record.primaryEmail, emails.begin() + record.primaryEmail + 1);
    for (const ContactValue &email : emails) {
        const std::vector<ContactRecordPtr> others = store.recordsContainingSubstring(email.value);
        const bool isShared = std::any_of(others.cbegin(), others.cend(), [&](const ContactRecordPtr &other) {
            return other->uniqueId != record.uniqueId &&
                   std::any_of(other->emails.cbegin(), other->emails.cend(), [&](const ContactValue &value) {
                       return value.value.compare(email.value, Qt::CaseInsensitive) == 0;
                   });
        });
        if (!isShared)
            return email.value;
    }
    return {};
}

QString nameOf(const ContactRecord &record)
{
    if (record.isGroup)
        return record.groupName;
    QStringList names = {record.firstName, record.lastName};
    names.removeAll(QString());
    return names.isEmpty() ? record.organization : names.join(u' ');
}

// What leads to the card: the address leads to one, the name to all of that name.
QStringList arguments(const ContactStore &store, const ContactRecord &record)
{
    const QString address = ownAddress(store, record);
    if (!address.isEmpty())
        return {QStringLiteral("--email=") + address};
    const QString name = nameOf(record);
    return name.isEmpty() ? QStringList() : QStringList{QStringLiteral("--search=") + name};
}
} // namespace

ContactStore::Opening ContactPrograms::opening(const ContactStore &store, const ContactRecord &record)
{
    const QString contacts = QStandardPaths::findExecutable(QStringLiteral("gnome-contacts"));
    if (!contacts.isEmpty())
        return {QStringList{contacts} + arguments(store, record), QString()};
    const QString evolution = QStandardPaths::findExecutable(QStringLiteral("evolution"));
    if (!evolution.isEmpty())
        return {{evolution, QStringLiteral("-c"), QStringLiteral("contacts")}, QString()};
    return {};
}
