#pragma once

#include "platform/contacts/ContactRecord.h"

#include <QByteArray>
#include <QHash>
#include <set>
#include <vector>

// Cards by their identifiers, made ready to be searched. Putting and removing one costs that one.
class ContactIndex
{
public:
    // In place of the one that has its identifier. One without identifier is not taken.
    void put(const ContactRecordPtr &record);
    void remove(const QString &uniqueId);
    void clear();
    std::size_t size() const { return std::size_t(_places.size()); }

    // None: not here.
    ContactRecordPtr record(const QString &uniqueId) const;
    // Those that are no groups, in the order in which they came first.
    std::vector<ContactRecordPtr> people() const;
    std::vector<ContactRecordPtr> groups() const;
    // Of the people, those that contain the text in one of the five fields that are searched.
    std::vector<ContactRecordPtr> peopleContaining(const QString &text) const;
    static bool contains(const ContactRecord &record, const QString &text);
    // The first of them that has the names and the organization of that card, and one of its e-mail addresses.
    ContactRecordPtr personLike(const ContactRecord &card) const;

private:
    struct Entry
    {
        ContactRecordPtr record; // none: a gap
        QByteArray searchForm;   // the fields', with a line end between
    };

    void enterAddresses(const ContactRecord &record, std::size_t place);
    void strikeOut(std::size_t place);
    void closeGaps();

    std::vector<Entry> _entries; // a card that goes leaves a gap, or the order would change
    QHash<QString, std::size_t> _places;
    std::set<std::pair<std::size_t, std::size_t>> _addresses; // hash of an address and the names; place
};
