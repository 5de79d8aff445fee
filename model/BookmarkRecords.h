#pragma once

#include "model/KDRBookmark.h"
#include "model/TextBlocks.h"

#include <QByteArrayView>
#include <memory>
#include <vector>

class TextSearch;
class UUIDSearch;

// The entries of the browser's bookmark file, as read, in few large pieces of memory: what a folder holds stands behind
// it, at every depth. Items are made of them where a list shows them (see BookmarkItems).
//
// A later reading of the file takes over from the former one the links and notes that have not changed: their texts are
// shared between the two.
class BookmarkRecords
{
public:
    enum class Kind : unsigned char { Folder, Link, Note, Person, Group };
    // In UTF-8. `value`: the address of a link, the text of a note, the search string of a folder, the card's
    // identifier of people and groups. An empty identifier is none.
    struct Texts
    {
        QByteArrayView title;
        QByteArrayView value;
        QByteArrayView uuid;
    };

    BookmarkRecords();
    // Empty, and ready to take entries over from the former ones.
    explicit BookmarkRecords(const BookmarkRecords &former);

    // Begins an entry, whose own texts may only be known when all that it holds has been appended; its number.
    unsigned begin();
    // Ends it. What was appended since is in it when it is a folder, and goes when it is not.
    void end(unsigned number, Kind kind, const Texts &texts);
    // Takes an entry back, with all that was appended since.
    void drop(unsigned number) { _records.resize(number); }
    // Appends a link or note of the records that these were made from.
    void appendFrom(const BookmarkRecords &former, unsigned number);
    // The same entries, sharing nothing with these or any other records.
    std::shared_ptr<BookmarkRecords> withoutWaste() const;

    unsigned count() const { return unsigned(_records.size()); }
    Kind kind(unsigned number) const { return _records[number].kind; }
    // The number behind the last entry that a folder holds, at any depth; of others the next number.
    unsigned behind(unsigned number) const { return _records[number].behind; }
    QString title(unsigned number) const;
    QString value(unsigned number) const;
    // Null: none.
    QString uuid(unsigned number) const;

    // Whether an entry, or anything that it holds, contains the text. People and groups may do so: only their cards
    // tell.
    bool isFoundWithin(unsigned number, const TextSearch &search) const;
    // Whether its identifier, or that of anything that it holds, is looked for.
    bool isWantedWithin(unsigned number, const UUIDSearch &search) const;

    // The share of the shared texts that no entry of these records refers to any more, from 0 to 1.
    double wasted() const;
    std::weak_ptr<const void> sharedTexts() const { return _texts; }

private:
    struct Record
    {
        // Title, value, identifier and search form, one behind the other.
        const char *text = nullptr;
        quint32 titleLength = 0;
        quint32 valueLength = 0;
        quint32 uuidLength = 0;
        quint32 formLength = 0;
        quint32 behind = 0;
        Kind kind = Kind::Folder;

        QByteArrayView title() const { return {text, qsizetype(titleLength)}; }
        QByteArrayView value() const { return {text + titleLength, qsizetype(valueLength)}; }
        QByteArrayView uuid() const { return {text + titleLength + valueLength, qsizetype(uuidLength)}; }
        QByteArrayView form() const { return {text + titleLength + valueLength + uuidLength, qsizetype(formLength)}; }
        qsizetype length() const { return qsizetype(titleLength) + valueLength + uuidLength + formLength; }
    };

    std::shared_ptr<TextBlocks> _texts;
    std::vector<Record> _records;
    QByteArray _scratch;
};
