#pragma once

#include "model/WayfoldABEntry.h"

#include <QByteArray>
#include <QHash>
#include <vector>

class ContactStore;

// The people and groups of the contacts, by name, made ready to be searched. That is done a slice at a time, since it
// takes longer than a frame for all of a large address book.
class PeopleRows
{
public:
    struct Row
    {
        ContactRecordPtr record;
        WayfoldABEntry::EntryType type = WayfoldABEntry::Unknown;
        QString name;             // the display name
        QString order;            // the form in which it compares with others
        QByteArray searchForm;    // of the name, the names and addresses of the card, each on a line
        qsizetype nameLength = 0; // of the display name in there
    };

    // Begins with what the store has now.
    void takeFrom(const ContactStore &store);
    // A slice; true when that was the last one.
    bool makeSome();
    // Puts what was made in place of what was there before.
    void takeOver();
    // Whether all that was begun has been taken over.
    bool isMade() const { return _isMade; }

    const std::vector<Row> &rows() const { return _rows; }
    // The positions of the rows that contain every word of the search, in any order; those whose names have words that
    // begin so come first. All of them for a search without words.
    std::vector<int> rowsMatching(const QString &search) const;

private:
    Row makeRow(const ContactRecordPtr &record) const;

    std::vector<Row> _rows;
    QHash<const ContactRecord *, std::size_t> _places; // in there
    std::vector<ContactRecordPtr> _records;            // that rows are made for
    std::vector<Row> _made;
    std::size_t _next = 0;
    bool _isMade = true;
};
