#pragma once

#include <QByteArray>
#include <QString>
#include <optional>
#include <vector>

// Looks through the object table of a binary property list before it is unfolded: objects refer to each other by
// number there, so a small file can describe a ring, a chain of any length, or a tree of any size. Works without
// recursion.
class BinaryPropertyListCheck
{
public:
    // Some eight thousand years either way from 2001, in seconds; dates beyond are none of our values.
    static constexpr double furthestDate = 8000 * 365.25 * 24 * 60 * 60;

    // `data` must outlive the check.
    explicit BinaryPropertyListCheck(const QByteArray &data);

    // Null when the list can be unfolded safely, else why not.
    QString reasonToRefuse();
    // Known once that has been asked for: whether any text or key will be read otherwise than it stands there, or
    // cannot be written again.
    bool hasDamagedText() const { return _hasDamagedText; }
    // Likewise: the list with other objects in place of those that libplist takes for damage, so that it unfolds the
    // rest. An empty text in UTF-16 is one in ASCII there, and a value that is none of ours an archive's identifier.
    QByteArray forLibrary() const;

    // For who reads a file again and again, in place of reasonToRefuse(). First of all: whether the file has an object
    // table and a top object.
    bool hasTable() { return readTrailer(); }
    // A hash of all that the object unfolds to, whatever numbers its parts have. Each object on the way is looked at as
    // reasonToRefuse() does; none when one of them would be refused, or when it is nested deeper than most are.
    std::optional<quint64> hashOf(quint64 number);
    // Whether the object may be a dictionary's key.
    bool isKey(quint64 number) { return checkKey(number); }

    // For a list that is not refused, and for objects that have a hash: its objects, named by their numbers, for
    // readers that want but a few of them. A dictionary has a key and a value of each index, an array a value.
    quint64 topObject() const { return _top; }
    bool isDictionary(quint64 number) { return objectAt(number).kind == Object::Dictionary; }
    bool isArray(quint64 number) { return objectAt(number).kind == Object::Array; }
    quint64 count(quint64 number);
    quint64 key(quint64 number, quint64 index);
    quint64 value(quint64 number, quint64 index);
    // In UTF-8, and whether that is all that there is to say: not for text that holds a NUL or is no proper text. Empty
    // and true for what is no text.
    bool readText(quint64 number, QByteArray *text);

private:
    // What is known of an object once everything below it has been looked at.
    struct Known
    {
        quint32 values = 0; // in the tree that it unfolds to, itself included
        quint32 bytes = 0;  // of text and data in that tree
        quint16 height = 0; // containers above each other in it; or one of the marks in the source file
    };
    struct Object
    {
        enum Kind { Scalar, Text, Array, Dictionary, Unknown } kind = Scalar;
        bool isWide = false;    // text in UTF-16 instead of ASCII
        quint64 bytes = 0;      // of text or data, once it is unfolded
        quint64 references = 0; // to keys, then values, of a dictionary; to the values of an array
        quint64 position = 0;   // of the first reference, or of the text
        quint64 length = 0;     // from there, in bytes of the file
    };
    // A container whose references are being followed.
    struct Visit
    {
        quint64 number = 0;
        Object object;
        quint64 next = 0;
    };

    Object objectAt(quint64 number);
    quint64 markerOf(quint64 number) const;
    bool readTrailer();
    bool readObject(quint64 number, Object *object);
    bool readCount(quint64 *position, quint64 *count);
    bool isDamaged(const Object &text) const;
    bool isInside(quint64 position, quint64 length) const;
    quint64 integerAt(quint64 position, int size) const;
    bool isDateAt(quint64 position) const;
    static bool isUnknown(Object *object);
    bool enter(quint64 number);
    bool follow(Visit &visit);
    bool add(const Visit &visit, quint64 child);
    bool checkKey(quint64 number);
    bool addToHash(quint64 number, int depth);
    bool addKeysToHash(const Object &dictionary);
    bool countHashed(quint64 values, quint64 bytes);
    QByteArrayView bytesOf(quint64 number, const Object &object) const;
    bool refuse(const char *reason);

    const QByteArray &_data;
    quint64 _end = 0; // of the objects: where the offset table begins
    int _offsetSize = 0;
    int _referenceSize = 0;
    quint64 _objectCount = 0;
    quint64 _top = 0;
    std::vector<Known> _known;
    std::vector<Visit> _visits;
    bool _hasDamagedText = false;
    std::vector<quint64> _emptyWideTexts;
    std::vector<quint64> _unknownValues;
    QString _reason;

    std::size_t _hash = 0;
    quint64 _hashedValues = 0; // of all that hashes were made of
    quint64 _hashedBytes = 0;
    QByteArrayView _lastKeys; // the references to them, which are the same in one dictionary after another
    std::size_t _hashOfLastKeys = 0;
    quint64 _bytesOfLastKeys = 0;
};
