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

    using RowPtr = std::shared_ptr<const Row>;
    static constexpr std::size_t rowsOfASlice = 1000;

    // Begins with what the store has now.
    void takeFrom(const ContactStore &store);
    // A slice, after the last of them the order of all; true when that is done. What fits into one slice is done at
    // once.
    bool makeSome();
    // Puts what was made in place of what was there before.
    void takeOver();
    // Whether all that was begun has been taken over.
    bool isMade() const { return _isMade; }

    std::size_t size() const { return _rows.size(); }
    const Row &row(int position) const { return *_rows[std::size_t(position)]; }
    // The positions of the rows that contain every word of the search, in any order; those whose names have words that
    // begin so come first. All of them for a search without words.
    std::vector<int> rowsMatching(const QString &search) const;

private:
    void makeSlice();
    static RowPtr makeRow(const ContactRecordPtr &record);

    std::vector<RowPtr> _rows;
    QHash<const ContactRecord *, RowPtr> _known; // the same by their cards
    std::vector<ContactRecordPtr> _records;      // that rows are made for
    std::vector<RowPtr> _made;
    std::size_t _next = 0;
    bool _isSorted = true;
    bool _isMade = true;
};
