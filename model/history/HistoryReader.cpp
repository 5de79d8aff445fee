#include "model/history/HistoryReader.h"

#include "model/ItemDictionary.h"
#include "platform/files/BinaryPropertyListCheck.h"
#include "platform/files/PlainXml.h"
#include "platform/files/PropertyList.h"

#include <QFile>
#include <optional>
#include <utility>

namespace
{
// Beyond this share of texts that belong to nothing any more, the others are put together anew.
constexpr double mostWaste = 0.5;
constexpr char listKey[] = "WebHistoryDates";

// What is read of an entry; of keys that are there twice, the last counts.
struct EntryTexts
{
    // Null for the keys of all else that an entry holds.
    QByteArray *ofKey(QByteArrayView key)
    {
        return key == "title" ? &title : key.isEmpty() ? &address : key == "lastVisitedDate" ? &seconds : nullptr;
    }

    QByteArray title;
    QByteArray address;
    QByteArray seconds;
};

QByteArray utf8(const QVariantMap &entry, const QString &key)
{
    return ItemDictionary::string(entry, key).toUtf8();
}
} // namespace

std::shared_ptr<const HistoryRecords> HistoryReader::read(const QString &path, bool *isPassing)
{
    QFile file;
    std::shared_ptr<HistoryRecords> records;
    if (PropertyList::openFile(path, &file)) {
        const QByteArray start = file.peek(6);
        records = start == "bplist" ? readBinary(file) : start.startsWith('<') ? readPlain(file) : nullptr;
    }
    PropertyList::Reading reading;
    if (!records) {
        const QVariantMap dictionary = PropertyList::readDictionaryFile(path, &reading, PropertyList::Xml::General);
        records = reading.ok ? recordsFrom(dictionary) : nullptr;
    }
    if (isPassing)
        *isPassing = reading.isPassing;
    if (records && records->wasted() > mostWaste)
        records = records->withoutWaste();
    _former = records;
    return _former;
}

std::shared_ptr<HistoryRecords> HistoryReader::startRecords(Form form)
{
    _elements.start();
    _nextRecord = 0;
    if (std::exchange(_form, form) != form || !_former)
        _elements.forgetKnown();
    if (!_former)
        return std::make_shared<HistoryRecords>();
    return std::make_shared<HistoryRecords>(*_former, _former->count() + KnownElements::mostGone);
}

std::shared_ptr<HistoryRecords> HistoryReader::recordsFrom(const QVariantMap &file)
{
    std::shared_ptr<HistoryRecords> records = startRecords(Form::General);
    const QVariantList entries = file.value(QLatin1String(listKey)).toList();
    for (const QVariant &value : entries) {
        const QVariantMap entry = value.toMap();
        append(*records, utf8(entry, QStringLiteral("title")), utf8(entry, QStringLiteral("")),
               utf8(entry, QStringLiteral("lastVisitedDate")));
    }
    return records;
}

// Takes the entry over if it is one of the next former ones and its element is not known.
void HistoryReader::append(HistoryRecords &records, QByteArrayView title, QByteArrayView address,
                           QByteArrayView seconds)
{
    constexpr unsigned mostGone = KnownElements::mostGone;
    const unsigned last = _former && !_elements.knowsAny() ? std::min(_former->count(), _nextRecord + mostGone) : 0;
    for (unsigned number = _nextRecord; number < last; ++number) {
        if (records.appendIfSame(*_former, number, title, address, seconds)) {
            _nextRecord = number + 1;
            return;
        }
    }
    records.append(title, address, seconds);
}

// --- The binary form -----------------------------------------------------------------------------------------------

// Null when the general way has to have a look at it.
std::shared_ptr<HistoryRecords> HistoryReader::readBinary(QIODevice &device)
{
    const QByteArray data = device.readAll();
    BinaryPropertyListCheck list(data);
    if (!list.hasTable() || !list.isDictionary(list.topObject()))
        return nullptr;
    std::shared_ptr<HistoryRecords> records = startRecords(Form::Binary);
    if (readBinaryTopLevel(list, *records))
        return records;
    _elements.forgetNoted();
    return nullptr;
}

bool HistoryReader::readBinaryTopLevel(BinaryPropertyListCheck &list, HistoryRecords &records)
{
    std::optional<quint64> entries;
    QByteArray text;
    for (quint64 i = 0; i < list.count(list.topObject()); ++i) {
        const quint64 key = list.key(list.topObject(), i);
        const quint64 value = list.value(list.topObject(), i);
        if (!list.isKey(key) || !list.readText(key, &text) || (text == listKey && entries))
            return false;
        if (text == listKey)
            entries = value;
        else if (!list.hashOf(value))
            return false;
    }
    if (!entries)
        return true;
    if (!list.isArray(*entries))
        return list.hashOf(*entries).has_value();
    const quint64 count = list.count(*entries);
    for (quint64 i = 0; i < count; ++i) {
        if (!readBinaryElement(list, list.value(*entries, i), records))
            return false;
    }
    return true;
}

bool HistoryReader::readBinaryElement(BinaryPropertyListCheck &list, quint64 element, HistoryRecords &records)
{
    const std::optional<quint64> hash = list.hashOf(element);
    if (!hash)
        return false;
    if (takeOver(_elements.withHash(*hash), records))
        return true;
    const unsigned before = records.count();
    if (!readBinaryEntry(list, element, records))
        return false;
    _elements.note({*hash, 0, recordSince(before, records)});
    return true;
}

bool HistoryReader::readBinaryEntry(BinaryPropertyListCheck &list, quint64 entry, HistoryRecords &records)
{
    if (!list.isDictionary(entry))
        return true;
    EntryTexts texts;
    QByteArray key;
    const quint64 count = list.count(entry);
    for (quint64 i = 0; i < count; ++i) {
        if (!list.readText(list.key(entry, i), &key))
            return false;
        QByteArray *const text = texts.ofKey(key);
        if (text && !list.readText(list.value(entry, i), text))
            return false;
    }
    append(records, texts.title, texts.address, texts.seconds);
    return true;
}

// --- The plain form ------------------------------------------------------------------------------------------------

std::shared_ptr<HistoryRecords> HistoryReader::readPlain(QIODevice &device)
{
    std::shared_ptr<HistoryRecords> records = startRecords(Form::Plain);
    PlainXml xml(device);
    if (readTopLevel(xml, *records))
        return records;
    // What was noted is not of the whole file.
    _elements.forgetNoted();
    return nullptr;
}

bool HistoryReader::readTopLevel(PlainXml &xml, HistoryRecords &records)
{
    if (!xml.readProlog())
        return false;
    PlainXml::Tag tag = xml.readTag();
    if (tag == PlainXml::Tag::EmptyDictionary)
        return xml.readEpilog();
    if (tag != PlainXml::Tag::Dictionary)
        return false;
    bool hasList = false;
    while ((tag = xml.readTag()) != PlainXml::Tag::EndDictionary) {
        if (tag != PlainXml::Tag::Key && tag != PlainXml::Tag::EmptyKey)
            return false;
        const bool isList = xml.readText(tag) == listKey;
        if (isList && std::exchange(hasList, true))
            return false;
        tag = xml.readTag();
        if (!(isList && tag == PlainXml::Tag::Array ? readList(xml, records) : xml.skipValue(tag)))
            return false;
    }
    return xml.readEpilog();
}

bool HistoryReader::readList(PlainXml &xml, HistoryRecords &records)
{
    while (true) {
        if (takeOver(_elements.passOver(xml), records))
            continue;
        xml.mark();
        const PlainXml::Tag tag = xml.readTag();
        if (tag == PlainXml::Tag::EndArray) {
            xml.unmark();
            return true;
        }
        const unsigned before = records.count();
        const bool isRead = tag == PlainXml::Tag::Dictionary ? readElement(xml, records) : xml.skipValue(tag);
        if (!isRead || xml.failed())
            return false;
        _elements.note(xml.markedBytes(), recordSince(before, records));
        xml.unmark();
    }
}

// A dictionary, whose tag has been read.
bool HistoryReader::readElement(PlainXml &xml, HistoryRecords &records)
{
    EntryTexts texts;
    PlainXml::Tag tag = PlainXml::Tag::None;
    while ((tag = xml.readTag()) != PlainXml::Tag::EndDictionary) {
        if (tag != PlainXml::Tag::Key && tag != PlainXml::Tag::EmptyKey)
            return false;
        QByteArray *const text = texts.ofKey(xml.readText(tag));
        tag = xml.readTag();
        const bool isText = tag == PlainXml::Tag::String || tag == PlainXml::Tag::EmptyString;
        if (text)
            *text = isText ? xml.readText(tag).toByteArray() : QByteArray();
        if (xml.failed() || !((text && isText) || xml.skipValue(tag)))
            return false;
    }
    records.append(texts.title, texts.address, texts.seconds);
    return true;
}

// --- What has not changed ------------------------------------------------------------------------------------------

// False for none.
bool HistoryReader::takeOver(const KnownElements::Element *element, HistoryRecords &records)
{
    if (!element)
        return false;
    const bool isEntry = element->record != KnownElements::noRecord;
    _elements.note({element->hash, element->length, isEntry ? records.count() : KnownElements::noRecord});
    if (isEntry)
        records.appendFrom(*_former, element->record, element->record + 1);
    return true;
}

// The number of the record that has come since; none when it is not an entry.
quint32 HistoryReader::recordSince(unsigned before, const HistoryRecords &records)
{
    return records.count() > before ? before : KnownElements::noRecord;
}
