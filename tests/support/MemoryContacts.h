#pragma once

#include "platform/contacts/ContactStore.h"

#include <QHash>

// Contacts that a test puts there, and that are the shared ones as long as this lives.
class MemoryContacts : public ContactStore
{
public:
    MemoryContacts() { setSharedAddressBook(this); }

    State presentState = Ready;
    QString ownCard; // the identifier of
    int ordering = ContactRecord::FirstNameFirst;
    QHash<QString, QByteArray> pictures; // by identifier
    QHash<QString, QByteArray> cards;
    QHash<QString, QString> addedAs; // identifiers that cards get, by their text; none: they cannot be added
    mutable QStringList opened;      // identifiers, "edit " before those that were to be edited
    mutable QStringList picturesAsked;
    std::vector<QByteArray> added;

    // From outside.
    void set(const ContactRecord &record) { put({std::make_shared<ContactRecord>(record)}); }
    void take(const QString &uniqueId) { remove({uniqueId}); }

    static ContactRecord person(const QString &id, const QString &first, const QString &last,
                                const QStringList &emails = {})
    {
        ContactRecord record;
        record.uniqueId = id;
        record.firstName = first;
        record.lastName = last;
        for (const QString &email : emails)
            record.emails.push_back({QStringLiteral("work"), email});
        return record;
    }
    static ContactRecord company(const QString &id, const QString &name, const QStringList &emails = {})
    {
        ContactRecord record = person(id, QString(), QString(), emails);
        record.flags = ContactRecord::ShowAsCompany;
        record.organization = name;
        return record;
    }
    static ContactRecord group(const QString &id, const QString &name, const QStringList &members)
    {
        ContactRecord record;
        record.uniqueId = id;
        record.isGroup = true;
        record.groupName = name;
        record.members = members;
        return record;
    }

    State state() const override { return presentState; }
    ContactRecordPtr me() const override { return ownCard.isEmpty() ? nullptr : recordForUniqueId(ownCard); }
    int defaultNameOrdering() const override { return ordering; }
    QByteArray imageData(const ContactRecord &record) const override
    {
        picturesAsked.append(record.uniqueId);
        return pictures.value(record.uniqueId);
    }
    QByteArray vCardRepresentation(const ContactRecord &record) const override { return cards.value(record.uniqueId); }
    Opening opening(const ContactRecord &record, Purpose purpose) const override
    {
        opened.append(purpose == Edit ? QStringLiteral("edit ") + record.uniqueId : record.uniqueId);
        return {{}, QStringLiteral("/cards/") + record.uniqueId + QStringLiteral(".vcf")};
    }
    bool canAdd() const override { return !addedAs.isEmpty(); }
    void add(const QByteArray &vCard, const std::function<void(const QString &uniqueId)> &done) override
    {
        added.push_back(vCard);
        const QString id = addedAs.value(QString::fromUtf8(vCard));
        done(id);
    }
};
