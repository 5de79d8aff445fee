#include "platform/files/BinaryPropertyListCheck.h"

#include "platform/base/StringRules.h"
#include "platform/files/PropertyListDepth.h"
#include "platform/files/XmlPropertyListWriter.h"

#include <QHashFunctions>
#include <QRandomGenerator>
#include <QtEndian>
#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

namespace
{
constexpr quint16 notVisited = 0xffff;
constexpr quint16 beingVisited = 0xfffe;
constexpr qsizetype headerSize = 8;
constexpr qsizetype trailerSize = 32;
// What occurs often is written once and referred to, which a file may do a good deal without bad intentions.
constexpr quint64 maximumSharedValues = 100000;
constexpr quint64 maximumSharedBytes = quint64(256) << 20;
constexpr int greatestHashedDepth = 16;

std::size_t hashOfBytes(QByteArrayView bytes, std::size_t before)
{
    return qHashBits(bytes.data(), std::size_t(bytes.size()), before);
}
} // namespace

BinaryPropertyListCheck::BinaryPropertyListCheck(const QByteArray &data) : _data(data) {}

QString BinaryPropertyListCheck::reasonToRefuse()
{
    if (!readTrailer())
        return _reason;
    _known.assign(_objectCount, Known{0, 0, notVisited});
    if (!enter(_top))
        return _reason;
    while (!_visits.empty()) {
        if (!follow(_visits.back()))
            return _reason;
    }
    return {};
}

BinaryPropertyListCheck::Object BinaryPropertyListCheck::objectAt(quint64 number)
{
    Object object;
    return readObject(number, &object) ? object : Object();
}

quint64 BinaryPropertyListCheck::markerOf(quint64 number) const
{
    return integerAt(_end + number * _offsetSize, _offsetSize);
}

quint64 BinaryPropertyListCheck::count(quint64 number)
{
    const Object object = objectAt(number);
    return object.kind == Object::Dictionary ? object.references / 2 : object.references;
}

quint64 BinaryPropertyListCheck::key(quint64 number, quint64 index)
{
    return integerAt(objectAt(number).position + index * _referenceSize, _referenceSize);
}

quint64 BinaryPropertyListCheck::value(quint64 number, quint64 index)
{
    const Object object = objectAt(number);
    const quint64 first = object.kind == Object::Dictionary ? object.references / 2 : 0;
    return integerAt(object.position + (first + index) * _referenceSize, _referenceSize);
}

bool BinaryPropertyListCheck::readText(quint64 number, QByteArray *text)
{
    const Object object = objectAt(number);
    text->resize(0);
    if (object.kind != Object::Text)
        return true;
    const QByteArrayView bytes(_data.constData() + object.position, qsizetype(object.length));
    if (!object.isWide) {
        text->append(bytes);
        // Whether a char has a sign depends on the processor.
        return std::all_of(bytes.begin(), bytes.end(), [](unsigned char c) { return c > 0 && c < 0x80; });
    }
    QString wide(qsizetype(object.length / 2), Qt::Uninitialized);
    qFromBigEndian<char16_t>(bytes.data(), wide.size(), wide.data());
    *text = wide.toUtf8();
    return wide.isValidUtf16() && !wide.contains(QChar::Null);
}

QByteArray BinaryPropertyListCheck::forLibrary() const
{
    if (_emptyWideTexts.empty() && _unknownValues.empty())
        return _data;
    // Both stand where the offsets began, and these follow, of eight bytes each now.
    const QByteArray emptyText(1, '\x50');
    const QByteArray identifier("\x80\0", 2);
    std::vector<quint64> offsets(_objectCount);
    for (quint64 number = 0; number < _objectCount; ++number)
        offsets[number] = markerOf(number);
    for (const quint64 number : _emptyWideTexts)
        offsets[number] = _end;
    for (const quint64 number : _unknownValues)
        offsets[number] = _end + emptyText.size();
    QByteArray result = _data.left(qsizetype(_end)) + emptyText + identifier;
    const quint64 end = result.size();
    const auto append = [&result](quint64 number) {
        number = qToBigEndian(number);
        result.append(reinterpret_cast<const char *>(&number), sizeof number);
    };
    std::for_each(offsets.begin(), offsets.end(), append);
    result.append(6, '\0').append(char(sizeof(quint64))).append(char(_referenceSize));
    for (const quint64 number : {_objectCount, _top, end})
        append(number);
    return result;
}

bool BinaryPropertyListCheck::readTrailer()
{
    const quint64 size = _data.size();
    if (!_data.startsWith("bplist00"))
        return refuse("an unknown version of the binary form");
    if (size < headerSize + trailerSize)
        return refuse("cut short");
    const quint64 trailer = size - trailerSize;
    _offsetSize = static_cast<quint8>(_data[trailer + 6]);
    _referenceSize = static_cast<quint8>(_data[trailer + 7]);
    _objectCount = integerAt(trailer + 8, 8);
    _top = integerAt(trailer + 16, 8);
    _end = integerAt(trailer + 24, 8);
    const bool isSane = _offsetSize >= 1 && _offsetSize <= 8 && _referenceSize >= 1 && _referenceSize <= 8 &&
                        _end >= headerSize && _end <= trailer && _objectCount >= 1 &&
                        _objectCount <= (trailer - _end) / _offsetSize && _top < _objectCount;
    if (!isSane)
        return refuse("a damaged trailer");
    // Each object has a place of its own, of a byte at least, that its offset can tell from the others. Were that not
    // so, what is noted of each would take many times the room of the file.
    const quint64 end = _offsetSize < 8 ? qMin(_end, quint64(1) << (8 * _offsetSize)) : _end;
    return _objectCount <= end - headerSize || refuse("more objects than it has room for");
}

bool BinaryPropertyListCheck::readObject(quint64 number, Object *object)
{
    if (number >= _objectCount)
        return refuse("a reference to nothing");
    quint64 position = markerOf(number);
    if (position < headerSize || position >= _end)
        return refuse("an object outside of the file");
    const quint8 marker = _data[position];
    const int kind = marker >> 4;
    const int low = marker & 0xf;
    position++;
    switch (kind) {
    case 0x0:
        return low == 8 || low == 9 || isUnknown(object);
    case 0x1:
        if (low > 4 || !isInside(position, 1 << low))
            return refuse("a damaged integer");
        // Sixteen bytes are used for what is too large for eight bytes with a sign, and hold no more than that.
        return low < 4 || integerAt(position, 8) == 0 || isUnknown(object);
    case 0x2:
        return ((low == 2 || low == 3) && isInside(position, 1 << low)) || refuse("a damaged real");
    case 0x3:
        if (low != 3 || !isInside(position, 8))
            return refuse("a damaged date");
        return isDateAt(position) || isUnknown(object);
    case 0x4:
    case 0x5:
    case 0x6:
    case 0xa:
    case 0xd:
        break;
    default:
        return isUnknown(object);
    }

    position--;
    quint64 count = 0;
    if (!readCount(&position, &count) || count > _end)
        return refuse("a damaged size");
    object->length = count;
    switch (kind) {
    case 0x4: // data
        object->bytes = count;
        break;
    case 0x5: // text in ASCII
        object->kind = Object::Text;
        object->bytes = count;
        break;
    case 0x6: // text in UTF-16, which takes up to three bytes for two when it is unfolded
        object->kind = Object::Text;
        object->isWide = true;
        object->length = count * 2;
        object->bytes = count * 3;
        break;
    case 0xa:
        object->kind = Object::Array;
        object->references = count;
        object->length = count * _referenceSize;
        break;
    default:
        object->kind = Object::Dictionary;
        object->references = count * 2;
        object->length = count * 2 * _referenceSize;
        break;
    }
    object->position = position;
    return isInside(position, object->length) || refuse("an object that is cut short");
}

// Steps over an object's marker and, for a count of fifteen and more, over the integer that follows it.
bool BinaryPropertyListCheck::readCount(quint64 *position, quint64 *count)
{
    *count = static_cast<quint8>(_data[*position]) & 0xf;
    ++*position;
    if (*count < 0xf)
        return true;
    if (!isInside(*position, 1))
        return false;
    const quint8 marker = _data[*position];
    const int size = 1 << (marker & 0xf);
    ++*position;
    if (marker >> 4 != 0x1 || size > 8 || !isInside(*position, size))
        return false;
    *count = integerAt(*position, size);
    *position += size;
    return true;
}

bool BinaryPropertyListCheck::isDamaged(const Object &text) const
{
    const QByteArrayView bytes(_data.constData() + text.position, qsizetype(text.length));
    if (!text.isWide)
        return !bytes.isValidUtf8() || !XmlPropertyListWriter::canHold(StringRules::fromUtf8(bytes));
    QString characters(bytes.size() / 2, Qt::Uninitialized);
    qFromBigEndian<char16_t>(bytes.data(), characters.size(), characters.data());
    return !XmlPropertyListWriter::canHold(characters);
}

bool BinaryPropertyListCheck::isInside(quint64 position, quint64 length) const
{
    return position <= _end && length <= _end - position;
}

quint64 BinaryPropertyListCheck::integerAt(quint64 position, int size) const
{
    quint64 value = 0;
    for (int i = 0; i < size; i++)
        value = value << 8 | static_cast<quint8>(_data[position + i]);
    return value;
}

bool BinaryPropertyListCheck::isDateAt(quint64 position) const
{
    return std::abs(std::bit_cast<double>(integerAt(position, 8))) <= furthestDate;
}

// True, for use as an answer.
bool BinaryPropertyListCheck::isUnknown(Object *object)
{
    object->kind = Object::Unknown;
    return true;
}

bool BinaryPropertyListCheck::enter(quint64 number)
{
    Visit visit;
    visit.number = number;
    if (!readObject(number, &visit.object))
        return false;
    Known &known = _known[number];
    known.values = 1;
    known.bytes = visit.object.bytes;
    _hasDamagedText = _hasDamagedText || (visit.object.kind == Object::Text && isDamaged(visit.object));
    if (visit.object.isWide && visit.object.length == 0)
        _emptyWideTexts.push_back(number);
    if (visit.object.kind == Object::Unknown)
        _unknownValues.push_back(number);
    if (visit.object.kind != Object::Array && visit.object.kind != Object::Dictionary) {
        known.height = 0;
        return true;
    }
    if (_visits.size() >= PropertyList::maximumDepth)
        return refuse("values nested too deep");
    known.height = beingVisited;
    _visits.push_back(visit);
    return true;
}

// Takes the next step on a container: looks at the next object that it refers to, or is done with it.
bool BinaryPropertyListCheck::follow(Visit &visit)
{
    if (visit.next == visit.object.references) {
        quint16 height = 0;
        for (quint64 i = 0; i < visit.object.references; i++) {
            const quint64 child = integerAt(visit.object.position + i * _referenceSize, _referenceSize);
            height = qMax(height, _known[child].height);
        }
        if (height >= PropertyList::maximumDepth)
            return refuse("values nested too deep");
        _known[visit.number].height = height + 1;
        _visits.pop_back();
        return true;
    }
    const quint64 child = integerAt(visit.object.position + visit.next * _referenceSize, _referenceSize);
    if (child >= _objectCount)
        return refuse("a reference to nothing");
    if (_known[child].height == beingVisited)
        return refuse("an object that holds itself");
    if (_known[child].height == notVisited)
        return enter(child); // `visit` may have moved; it is looked at again when the child is known
    if (!add(visit, child))
        return false;
    visit.next++;
    return true;
}

bool BinaryPropertyListCheck::add(const Visit &visit, quint64 child)
{
    const bool isKey = visit.object.kind == Object::Dictionary && visit.next < visit.object.references / 2;
    if (isKey && !checkKey(child))
        return false;
    Known &known = _known[visit.number];
    const quint64 values = quint64(known.values) + _known[child].values;
    const quint64 bytes = quint64(known.bytes) + _known[child].bytes;
    // Each value of a tree without shared parts takes at least one byte of the file.
    if (values > _data.size() + maximumSharedValues || bytes > _data.size() + maximumSharedBytes)
        return refuse("more than the file could hold, by objects that are referred to over and over");
    known.values = static_cast<quint32>(values);
    known.bytes = static_cast<quint32>(bytes);
    return true;
}

// libplist ends the whole program when it meets a key that holds a NUL.
bool BinaryPropertyListCheck::checkKey(quint64 number)
{
    Object key;
    if (!readObject(number, &key))
        return false;
    if (key.kind != Object::Text)
        return refuse("a key that is no text");
    const int size = key.isWide ? 2 : 1;
    for (quint64 i = 0; i < key.length; i += size) {
        if (integerAt(key.position + i, size) == 0)
            return refuse("a key that holds a NUL");
    }
    return true;
}

// --- Hashes --------------------------------------------------------------------------------------------------------

std::optional<quint64> BinaryPropertyListCheck::hashOf(quint64 number)
{
    // Not to be foreseen by whoever writes the file.
    static const std::size_t seed = QRandomGenerator::global()->generate64();
    _hash = seed;
    return addToHash(number, 0) ? std::optional<quint64>(_hash) : std::nullopt;
}

bool BinaryPropertyListCheck::addToHash(quint64 number, int depth)
{
    Object object;
    if (depth > greatestHashedDepth || !readObject(number, &object) || !countHashed(1, object.bytes))
        return false;
    _hash = hashOfBytes(bytesOf(number, object), _hash);
    const bool isDictionary = object.kind == Object::Dictionary;
    if (isDictionary && !addKeysToHash(object))
        return false;
    for (quint64 i = isDictionary ? object.references / 2 : 0; i < object.references; ++i) {
        if (!addToHash(integerAt(object.position + i * _referenceSize, _referenceSize), depth + 1))
            return false;
    }
    return true;
}

bool BinaryPropertyListCheck::addKeysToHash(const Object &dictionary)
{
    const quint64 count = dictionary.references / 2;
    const QByteArrayView keys(_data.constData() + dictionary.position, qsizetype(count * _referenceSize));
    if (keys != _lastKeys) {
        const std::size_t before = std::exchange(_hash, 0);
        const quint64 bytesBefore = _hashedBytes;
        for (quint64 i = 0; i < count; ++i) {
            const quint64 key = integerAt(dictionary.position + i * _referenceSize, _referenceSize);
            if (!checkKey(key) || !addToHash(key, 0))
                return false;
        }
        _lastKeys = keys;
        _hashOfLastKeys = std::exchange(_hash, before);
        _bytesOfLastKeys = _hashedBytes - bytesBefore;
    } else if (!countHashed(count, _bytesOfLastKeys)) {
        return false;
    }
    _hash = qHashMulti(_hash, _hashOfLastKeys);
    return true;
}

bool BinaryPropertyListCheck::countHashed(quint64 values, quint64 bytes)
{
    _hashedValues += values;
    _hashedBytes += bytes;
    return _hashedValues <= _data.size() + maximumSharedValues && _hashedBytes <= _data.size() + maximumSharedBytes;
}

// From its marker on; of a container without the references, and of what is none of our values the marker alone.
QByteArrayView BinaryPropertyListCheck::bytesOf(quint64 number, const Object &object) const
{
    const quint64 start = markerOf(number);
    const quint8 marker = _data[start];
    const int kind = marker >> 4;
    quint64 end = start + 1;
    if (object.kind == Object::Array || object.kind == Object::Dictionary)
        end = object.position;
    else if (object.position > 0)
        end = object.position + object.length;
    else if (object.kind == Object::Scalar && kind != 0)
        end += quint64(1) << (marker & 0xf);
    return {_data.constData() + start, qsizetype(end - start)};
}

bool BinaryPropertyListCheck::refuse(const char *reason)
{
    if (_reason.isNull())
        _reason = QLatin1String(reason);
    return false;
}
