#pragma once

#include "model/KnownElements.h"
#include "model/history/HistoryRecords.h"

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
    std::shared_ptr<HistoryRecords> readPlain(QIODevice &device);
    bool readTopLevel(PlainXml &xml, HistoryRecords &records);
    bool readList(PlainXml &xml, HistoryRecords &records);
    bool readElement(PlainXml &xml, HistoryRecords &records);
    bool takeOver(const KnownElements::Element *element, HistoryRecords &records);
    static quint32 recordSince(unsigned before, const HistoryRecords &records);
    std::shared_ptr<HistoryRecords> readBinary(QIODevice &device);
    bool readBinaryTopLevel(BinaryPropertyListCheck &list, HistoryRecords &records);
    bool readBinaryElement(BinaryPropertyListCheck &list, quint64 element, HistoryRecords &records);
    bool readBinaryEntry(BinaryPropertyListCheck &list, quint64 entry, HistoryRecords &records);
    std::shared_ptr<HistoryRecords> recordsFrom(const QVariantMap &file);
    std::shared_ptr<HistoryRecords> startRecords(Form form);
    void append(HistoryRecords &records, QByteArrayView title, QByteArrayView address, QByteArrayView seconds);

    std::shared_ptr<const HistoryRecords> _former;
    KnownElements _elements;
    Form _form = Form::General; // of the last reading
    unsigned _nextRecord = 0;   // the first former one that may still follow, where no element is known
};
