#include "model/BookmarkReader.h"

#include "model/ItemDictionary.h"
#include "platform/files/BinaryPropertyListCheck.h"
#include "platform/files/PlainXml.h"
#include "platform/files/PropertyList.h"

#include <QFile>
#include <algorithm>
#include <utility>

using Tag = PlainXml::Tag;

namespace
{
// Beyond this share of texts that belong to nothing any more, the others are put together anew.
constexpr double mostWaste = 0.5;

constexpr char childrenKey[] = "Children";
constexpr char uriDictionaryKey[] = "URIDictionary";

bool isKey(Tag tag)
{
    return tag == Tag::Key || tag == Tag::EmptyKey;
}

bool isText(Tag tag)
{
    return tag == Tag::String || tag == Tag::EmptyString;
}
} // namespace

// What is read of a dictionary.
struct BookmarkReader::Entry
{
    struct Text
    {
        const char *key;
        QByteArray Entry::*text;
        unsigned mark;
    };

    // Null for the keys of all else.
    static const Text *ofKey(QByteArrayView key)
    {
        static constexpr Text texts[] = {
            {"WebBookmarkType", &Entry::type, 1}, {"WebBookmarkUUID", &Entry::uuid, 2},
            {"Title", &Entry::folderTitle, 4},    {"SearchString", &Entry::searchString, 8},
            {"URLString", &Entry::address, 16},   {"Note", &Entry::note, 32},
            {"AddressBookID", &Entry::card, 256},
        };
        const auto found =
            std::find_if(std::begin(texts), std::end(texts), [key](const Text &text) { return key == text.key; });
        return found == std::end(texts) ? nullptr : found;
    }
    static constexpr unsigned childrenMark = 64;
    static constexpr unsigned titleMark = 128;

    // False when that was there before; which of the two counts is for the general way to judge.
    bool see(unsigned mark) { return !(std::exchange(seen, seen | mark) & mark); }

    QByteArray type;
    QByteArray uuid;
    QByteArray folderTitle;
    QByteArray searchString;
    QByteArray address;
    QByteArray note;
    QByteArray card;
    QByteArray title;
    bool hasList = false;
    unsigned seen = 0;
};

std::shared_ptr<const BookmarkRecords> BookmarkReader::read(const QString &path, bool *isPassing)
{
    QFile file;
    std::shared_ptr<BookmarkRecords> records;
    if (PropertyList::openFile(path, &file)) {
        const QByteArray start = file.peek(6);
        records = start == "bplist" ? readBinary(file) : start.startsWith('<') ? readPlain(file) : nullptr;
    }
    PropertyList::Reading reading;
    if (!records) {
        _elements.forgetNoted();
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

std::shared_ptr<BookmarkRecords> BookmarkReader::startRecords() const
{
    return _former ? std::make_shared<BookmarkRecords>(*_former) : std::make_shared<BookmarkRecords>();
}

// Whether it is one of those that are kept; its record goes when it is not.
bool BookmarkReader::end(unsigned number, const Entry &entry, BookmarkRecords &records)
{
    using Kind = BookmarkRecords::Kind;
    const bool isFolder =
        entry.type == "WebBookmarkTypeList" || entry.type == "BookmarksBar" || entry.type == "BookmarksMenu";
    if (isFolder && !entry.folderTitle.isEmpty())
        records.end(number, Kind::Folder, {entry.folderTitle, entry.searchString, entry.uuid});
    else if (entry.type == "WebBookmarkTypeLeaf" && !entry.title.isEmpty())
        records.end(number, Kind::Link, {entry.title, entry.address, entry.uuid});
    else if (entry.type == "WebBookmarkTypeNote" && !entry.title.isEmpty())
        records.end(number, Kind::Note, {entry.title, entry.note, entry.uuid});
    else if (entry.type == "ABPerson" || entry.type == "ABGroup")
        records.end(number, entry.type == "ABPerson" ? Kind::Person : Kind::Group,
                    {{}, entry.card, entry.uuid.isEmpty() ? entry.card : entry.uuid});
    else
        records.drop(number);
    return number < records.count();
}

// --- The plain form ------------------------------------------------------------------------------------------------

// Null when the general way has to have a look at it.
std::shared_ptr<BookmarkRecords> BookmarkReader::readPlain(QIODevice &device)
{
    std::shared_ptr<BookmarkRecords> records = startRecords();
    _elements.start();
    if (!_former)
        _elements.forgetKnown();
    PlainXml xml(device);
    const unsigned root = records->begin();
    Entry entry;
    if (!xml.readProlog())
        return nullptr;
    const Tag tag = xml.readTag();
    const bool isRead = tag == Tag::EmptyDictionary || (tag == Tag::Dictionary && readEntry(xml, *records, entry, 0));
    if (!isRead || !xml.readEpilog())
        return nullptr;
    records->end(root, BookmarkRecords::Kind::Folder, {entry.folderTitle, entry.searchString, entry.uuid});
    return records;
}

// Entries up to the end of the array, whose tag has been read.
bool BookmarkReader::readList(PlainXml &xml, BookmarkRecords &records, int depth)
{
    if (depth > PlainXml::greatestDepth)
        return false;
    while (true) {
        if (takeOver(_elements.passOver(xml), records))
            continue;
        xml.mark();
        const Tag tag = xml.readTag();
        if (tag == Tag::EndArray) {
            xml.unmark();
            return true;
        }
        if (tag != Tag::Dictionary) {
            xml.unmark();
            if (!xml.skipValue(tag, depth))
                return false;
            continue;
        }
        const unsigned number = records.begin();
        const std::size_t noted = _elements.notedCount();
        Entry entry;
        if (!readEntry(xml, records, entry, depth) || xml.failed())
            return false;
        const bool isKept = end(number, entry, records);
        if (!entry.hasList)
            _elements.note(xml.markedBytes(), isKept ? number : KnownElements::noRecord);
        else if (!isKept || records.kind(number) != BookmarkRecords::Kind::Folder)
            _elements.keepNoted(noted); // what it holds has gone
        xml.unmark();
    }
}

// A dictionary, whose tag has been read.
bool BookmarkReader::readEntry(PlainXml &xml, BookmarkRecords &records, Entry &entry, int depth)
{
    Tag tag = Tag::None;
    while ((tag = xml.readTag()) != Tag::EndDictionary) {
        if (!isKey(tag))
            return false;
        const QByteArrayView key = xml.readText(tag);
        const Entry::Text *const text = Entry::ofKey(key);
        const bool isChildren = key == childrenKey;
        const bool isTitle = key == uriDictionaryKey;
        tag = xml.readTag();
        if ((text && !entry.see(text->mark)) || (isChildren && !entry.see(Entry::childrenMark)) ||
            (isTitle && !entry.see(Entry::titleMark)))
            return false;
        bool isRead = true;
        if (text && isText(tag)) {
            entry.*text->text = xml.readText(tag).toByteArray();
        } else if (isChildren && tag == Tag::Array) {
            // Not an element that could be taken over as a whole, nor held in memory.
            entry.hasList = true;
            xml.unmark();
            isRead = readList(xml, records, depth + 2);
        } else if (isTitle && tag == Tag::Dictionary) {
            isRead = readLinkTitle(xml, entry);
        } else {
            isRead = xml.skipValue(tag, depth + 1);
        }
        if (!isRead || xml.failed())
            return false;
    }
    return true;
}

bool BookmarkReader::readLinkTitle(PlainXml &xml, Entry &entry)
{
    bool isSeen = false;
    Tag tag = Tag::None;
    while ((tag = xml.readTag()) != Tag::EndDictionary) {
        if (!isKey(tag))
            return false;
        const bool isTitle = xml.readText(tag) == "title";
        if (isTitle && std::exchange(isSeen, true))
            return false;
        tag = xml.readTag();
        if (isTitle && isText(tag))
            entry.title = xml.readText(tag).toByteArray();
        else if (!xml.skipValue(tag))
            return false;
    }
    return !xml.failed();
}

// False for none.
bool BookmarkReader::takeOver(const KnownElements::Element *element, BookmarkRecords &records)
{
    if (!element)
        return false;
    const bool isKept = element->record != KnownElements::noRecord;
    _elements.note({element->hash, element->length, isKept ? records.count() : KnownElements::noRecord});
    if (isKept)
        records.appendFrom(*_former, element->record);
    return true;
}

// --- The binary form -----------------------------------------------------------------------------------------------

// Null when the general way has to have a look at it.
std::shared_ptr<BookmarkRecords> BookmarkReader::readBinary(QIODevice &device)
{
    _elements.forgetNoted();
    const QByteArray data = device.readAll();
    BinaryPropertyListCheck list(data);
    if (!list.reasonToRefuse().isNull() || !list.isDictionary(list.topObject()))
        return nullptr;
    auto records = std::make_shared<BookmarkRecords>();
    const unsigned root = records->begin();
    Entry entry;
    if (!readBinaryEntry(list, list.topObject(), *records, entry))
        return nullptr;
    records->end(root, BookmarkRecords::Kind::Folder, {entry.folderTitle, entry.searchString, entry.uuid});
    return records;
}

bool BookmarkReader::readBinaryEntry(BinaryPropertyListCheck &list, quint64 dictionary, BookmarkRecords &records,
                                     Entry &entry)
{
    QByteArray key;
    for (quint64 i = 0; i < list.count(dictionary); ++i) {
        if (!list.readText(list.key(dictionary, i), &key))
            return false;
        const quint64 value = list.value(dictionary, i);
        const Entry::Text *const text = Entry::ofKey(key);
        const bool isChildren = key == childrenKey;
        const bool isTitle = key == uriDictionaryKey;
        if ((text && !entry.see(text->mark)) || (isChildren && !entry.see(Entry::childrenMark)) ||
            (isTitle && !entry.see(Entry::titleMark)))
            return false;
        if ((text && !list.readText(value, &(entry.*text->text))) ||
            (isChildren && list.isArray(value) && !readBinaryList(list, value, records)) ||
            (isTitle && list.isDictionary(value) && !readBinaryLinkTitle(list, value, entry)))
            return false;
    }
    return true;
}

bool BookmarkReader::readBinaryList(BinaryPropertyListCheck &list, quint64 array, BookmarkRecords &records)
{
    for (quint64 i = 0; i < list.count(array); ++i) {
        const quint64 element = list.value(array, i);
        if (!list.isDictionary(element))
            continue;
        const unsigned number = records.begin();
        Entry entry;
        if (!readBinaryEntry(list, element, records, entry))
            return false;
        end(number, entry, records);
    }
    return true;
}

bool BookmarkReader::readBinaryLinkTitle(BinaryPropertyListCheck &list, quint64 dictionary, Entry &entry)
{
    bool isSeen = false;
    QByteArray key;
    for (quint64 i = 0; i < list.count(dictionary); ++i) {
        if (!list.readText(list.key(dictionary, i), &key))
            return false;
        const bool isTitle = key == "title";
        if (isTitle && (std::exchange(isSeen, true) || !list.readText(list.value(dictionary, i), &entry.title)))
            return false;
    }
    return true;
}

// --- All other forms -----------------------------------------------------------------------------------------------

std::shared_ptr<BookmarkRecords> BookmarkReader::recordsFrom(const QVariantMap &file)
{
    using namespace ItemDictionary;
    auto records = std::make_shared<BookmarkRecords>();
    const unsigned root = records->begin();
    appendList(file, *records);
    const QByteArray title = string(file, titleKey).toUtf8();
    const QByteArray searchString = string(file, searchStringKey).toUtf8();
    const QByteArray uuid = string(file, uuidKey).toUtf8();
    records->end(root, BookmarkRecords::Kind::Folder, {title, searchString, uuid});
    return records;
}

void BookmarkReader::appendList(const QVariantMap &folder, BookmarkRecords &records)
{
    const QVariantList entries = ItemDictionary::list(folder, ItemDictionary::childrenKey);
    for (const QVariant &value : entries) {
        const QVariantMap dictionary = value.toMap();
        const auto text = [&dictionary](const QString &key) {
            return ItemDictionary::string(dictionary, key).toUtf8();
        };
        Entry entry;
        entry.type = text(ItemDictionary::typeKey);
        entry.uuid = text(ItemDictionary::uuidKey);
        entry.folderTitle = text(ItemDictionary::titleKey);
        entry.searchString = text(ItemDictionary::searchStringKey);
        entry.address = text(ItemDictionary::urlStringKey);
        entry.note = text(ItemDictionary::noteKey);
        entry.card = text(ItemDictionary::addressBookIDKey);
        entry.title = ItemDictionary::string(ItemDictionary::dictionary(dictionary, ItemDictionary::uriDictionaryKey),
                                             ItemDictionary::uriTitleKey)
                          .toUtf8();
        const unsigned number = records.begin();
        appendList(dictionary, records);
        end(number, entry, records);
    }
}
