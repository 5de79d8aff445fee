#pragma once

#include "model/BookmarkRecords.h"
#include "model/KnownElements.h"

#include <QVariantMap>

class BinaryPropertyListCheck;
class PlainXml;
class QIODevice;

// Reads the browser's bookmark file, again and again: in the plain XML form, links and notes that have not changed
// since the last time are taken over. Whatever the form, the entries are those that WayfoldBookmarkFolder reads from an
// item file.
class BookmarkReader
{
public:
    // The first record is the file's top level, taken for a folder. None when the file is missing or is no
    // property-list dictionary; the reason is in the log then. `isPassing` (may be null) tells whether it may soon be
    // over, see PropertyList::Reading.
    std::shared_ptr<const BookmarkRecords> read(const QString &path, bool *isPassing = nullptr);

private:
    struct Entry;

    std::shared_ptr<BookmarkRecords> startRecords() const;
    std::shared_ptr<BookmarkRecords> readPlain(QIODevice &device);
    bool readList(PlainXml &xml, BookmarkRecords &records, int depth);
    bool readEntry(PlainXml &xml, BookmarkRecords &records, Entry &entry, int depth);
    static bool readLinkTitle(PlainXml &xml, Entry &entry);
    bool takeOver(const KnownElements::Element *element, BookmarkRecords &records);
    static bool end(unsigned number, const Entry &entry, BookmarkRecords &records);

    std::shared_ptr<BookmarkRecords> readBinary(QIODevice &device);
    static bool readBinaryEntry(BinaryPropertyListCheck &list, quint64 dictionary, BookmarkRecords &records,
                                Entry &entry);
    static bool readBinaryList(BinaryPropertyListCheck &list, quint64 array, BookmarkRecords &records);
    static bool readBinaryLinkTitle(BinaryPropertyListCheck &list, quint64 dictionary, Entry &entry);
    static std::shared_ptr<BookmarkRecords> recordsFrom(const QVariantMap &file);
    static void appendList(const QVariantMap &folder, BookmarkRecords &records);

    std::shared_ptr<const BookmarkRecords> _former;
    KnownElements _elements;
};
