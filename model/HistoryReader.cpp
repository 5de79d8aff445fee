#include "model/HistoryReader.h"

#include "model/ItemDictionary.h"
#include "platform/files/BinaryPropertyListCheck.h"
#include "platform/files/PlainXml.h"
#include "platform/files/PropertyList.h"

#include <QFile>
#include <QHashFunctions>
#include <QRandomGenerator>
#include <optional>
#include <utility>

namespace
{
// Beyond this share of texts that belong to nothing any more, the others are put together anew.
constexpr double mostWaste = 0.5;
// A visited page moves to the front of the list, and old ones are dropped: so many in a row may be gone.
constexpr std::size_t mostGone = 16;

constexpr char listKey[] = "WebHistoryDates";

quint64 hashOf(QByteArrayView bytes)
{
    // Not to be foreseen by whoever writes the file.
    static const std::size_t seed = QRandomGenerator::global()->generate64() | 1;
    return qHashBits(bytes.data(), std::size_t(bytes.size()), seed);
}

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
    _formerElements = std::move(_elements);
    return _former;
}

std::shared_ptr<HistoryRecords> HistoryReader::startRecords(Form form)
{
    _elements.clear();
    _next = 0;
    _nextRecord = 0;
    if (std::exchange(_form, form) != form)
        _formerElements.clear();
    if (!_former)
        return std::make_shared<HistoryRecords>();
    return std::make_shared<HistoryRecords>(*_former, _former->count() + mostGone);
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
    const unsigned last =
        _former && _formerElements.empty() ? std::min(_former->count(), _nextRecord + unsigned(mostGone)) : 0;
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
    _elements.clear();
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
    if (takeOver(*hash, records))
        return true;
    const unsigned before = records.count();
    if (!readBinaryEntry(list, element, records))
        return false;
    _elements.push_back({*hash, 0, records.count() - before});
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
    _elements.reserve(_formerElements.size() + mostGone);
    PlainXml xml(device);
    if (readTopLevel(xml, *records))
        return records;
    // What was noted is not of the whole file.
    _elements.clear();
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
        if (takeOver(xml, records))
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
        const QByteArrayView bytes = xml.markedBytes();
        _elements.push_back({hashOf(bytes), quint32(bytes.size()), records.count() - before});
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

// Passes over all elements that are next in the file as they were in the former one, but for a few that are gone; false
// when there are none.
bool HistoryReader::takeOver(PlainXml &xml, HistoryRecords &records)
{
    std::size_t at = _next;
    unsigned record = _nextRecord;
    const std::size_t last = std::min(_formerElements.size(), _next + mostGone);
    while (at < last && !isAhead(xml, _formerElements[at]))
        record += _formerElements[at++].isEntry;
    if (at == last)
        return false;

    const std::size_t first = at;
    const unsigned firstRecord = record;
    do {
        xml.pass(_formerElements[at].length);
        record += _formerElements[at++].isEntry;
    } while (at < _formerElements.size() && isAhead(xml, _formerElements[at]));
    _elements.insert(_elements.end(), _formerElements.begin() + qptrdiff(first),
                     _formerElements.begin() + qptrdiff(at));
    records.appendFrom(*_former, firstRecord, record);
    _next = at;
    _nextRecord = record;
    return true;
}

// The same for one element of the binary form.
bool HistoryReader::takeOver(quint64 hash, HistoryRecords &records)
{
    std::size_t at = _next;
    unsigned record = _nextRecord;
    const std::size_t last = std::min(_formerElements.size(), _next + mostGone);
    while (at < last && _formerElements[at].hash != hash)
        record += _formerElements[at++].isEntry;
    if (at == last)
        return false;

    const Element &element = _formerElements[at];
    _elements.push_back(element);
    records.appendFrom(*_former, record, record + element.isEntry);
    _next = at + 1;
    _nextRecord = record + element.isEntry;
    return true;
}

bool HistoryReader::isAhead(PlainXml &xml, const Element &element)
{
    const QByteArrayView bytes = xml.peek(element.length);
    // The end tells most of those that are not, at no cost.
    return bytes.size() == qsizetype(element.length) && bytes.back() == '>' && hashOf(bytes) == element.hash;
}
