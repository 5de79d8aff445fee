#pragma once

#include "model/HistoryRecords.h"

#include <QVariantMap>

class BinaryPropertyListCheck;
class PlainXml;
class QIODevice;

// Reads the browser's history file, again and again: what has not changed since the last time is taken over, so that
// the one entry that a visit adds costs no more than a look at the rest.
class HistoryReader
{
public:
    // None when the file is missing or is no property-list dictionary; the reason is in the log then. `isPassing` (may
    // be null) tells whether it may soon be over, see PropertyList::Reading.
    std::shared_ptr<const HistoryRecords> read(const QString &path, bool *isPassing = nullptr);

private:
    enum class Form { General, Plain, Binary };
    // An element of the file's list, whether or not it became an entry: in the plain form where it ends behind the one
    // before, and what it holds.
    struct Element
    {
        quint64 hash = 0;
        quint32 length = 0;
        quint32 isEntry = 0;
    };

    std::shared_ptr<HistoryRecords> readPlain(QIODevice &device);
    bool readTopLevel(PlainXml &xml, HistoryRecords &records);
    bool readList(PlainXml &xml, HistoryRecords &records);
    bool readElement(PlainXml &xml, HistoryRecords &records);
    bool takeOver(PlainXml &xml, HistoryRecords &records);
    static bool isAhead(PlainXml &xml, const Element &element);
    std::shared_ptr<HistoryRecords> readBinary(QIODevice &device);
    bool readBinaryTopLevel(BinaryPropertyListCheck &list, HistoryRecords &records);
    bool readBinaryElement(BinaryPropertyListCheck &list, quint64 element, HistoryRecords &records);
    bool readBinaryEntry(BinaryPropertyListCheck &list, quint64 entry, HistoryRecords &records);
    std::shared_ptr<HistoryRecords> recordsFrom(const QVariantMap &file);
    bool takeOver(quint64 hash, HistoryRecords &records);
    std::shared_ptr<HistoryRecords> startRecords(Form form);
    void append(HistoryRecords &records, QByteArrayView title, QByteArrayView address, QByteArrayView seconds);

    std::shared_ptr<const HistoryRecords> _former;
    Form _form = Form::General; // of the reading that the former elements are from, then of the present one
    std::vector<Element> _formerElements;
    std::vector<Element> _elements; // of the present reading
    std::size_t _next = 0;          // the first former element that may still follow
    unsigned _nextRecord = 0;       // and the first former entry
};
