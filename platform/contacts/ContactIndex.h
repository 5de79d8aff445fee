#pragma once

#include "platform/contacts/ContactRecord.h"

#include <QByteArray>
#include <QHash>
#include <vector>

// Cards by their identifiers, made ready to be searched. Putting and removing one costs that one.
class ContactIndex
{
public:
    // In place of the one that has its identifier.
    void put(const ContactRecordPtr &record);
    void remove(const QString &uniqueId);
    void clear();
    std::size_t size() const { return _places.size(); }

    // None: not here.
    ContactRecordPtr record(const QString &uniqueId) const;
    // Those that are no groups, in the order in which they came first.
    std::vector<ContactRecordPtr> people() const;
    std::vector<ContactRecordPtr> groups() const;
    // Of the people, those that contain the text in one of the five fields that are searched.
    std::vector<ContactRecordPtr> peopleContaining(const QString &text) const;
    static bool contains(const ContactRecord &record, const QString &text);

private:
    struct Entry
    {
        ContactRecordPtr record; // none: removed, and free for another
        QByteArray searchForm;   // the fields', with a line end between
    };

    std::vector<Entry> _entries;
    QHash<QString, std::size_t> _places;
    std::vector<std::size_t> _free;
};
