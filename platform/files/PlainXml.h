#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QVariant>
#include <string_view>
#include <vector>

class QIODevice;

// Reads XML property lists as programs write them, at the speed of the disk: UTF-8, comments between the elements
// alone, no attributes, no entities but the five that XML has itself. It reads from front to back, a window at a time,
// and gives up (`failed()`) at anything else, be it damaged or merely unusual: whoever uses it then reads the file in
// the general way, which tells the two apart. What it accepts, the general way reads as the same values.
class PlainXml
{
public:
    enum class Tag {
        None, // failed, or the end
        Key,
        String,
        Integer,
        Real,
        Date,
        Data,
        True,
        False,
        Dictionary,
        Array,
        EmptyKey,
        EmptyString,
        EmptyDictionary,
        EmptyArray,
        EndDictionary,
        EndArray,
    };

    static constexpr int greatestDepth = 64;

    // The device stays the caller's, and is open.
    explicit PlainXml(QIODevice &device);

    bool failed() const { return _failed; }
    // False, for use as an answer.
    bool fail();

    // What stands before the one value of a property list, and behind it up to the end of the file. When the latter
    // was read, nothing before it failed either.
    bool readProlog();
    bool readEpilog();

    // The next tag; blanks and comments before it are passed over.
    Tag readTag();
    // The text of a key or a string, whose tag has been read. Lives until the next call.
    QByteArrayView readText(Tag tag);
    // The value of an integer, a real, a date or data, whose tag has been read; invalid when it failed.
    QVariant readScalar(Tag tag);
    // Passes over a value whose tag has been read, whatever it is; false when that failed.
    bool skipValue(Tag tag, int depth = 0);

    // Bytes from the mark on stay where `markedBytes` can show them.
    void mark() { _mark = _position; }
    QByteArrayView markedBytes() const { return {_window.data() + _mark, qsizetype(_position - _mark)}; }
    void unmark() { _mark = none; }
    // The next bytes; fewer when the file ends before. Lives until the next call.
    QByteArrayView peek(std::size_t length);
    void pass(std::size_t length) { _position += length; }

private:
    static constexpr std::size_t none = std::size_t(-1);

    bool fill(std::size_t needed) { return _end - _position >= needed || fillWindow(needed); }
    bool fillWindow(std::size_t needed);
    bool take(std::string_view literal);
    void skipBlanks();
    bool passBlanks();  // whether there are any
    bool skipComment(); // whether there is one
    void skipBlanksAndComments();
    bool skipName();
    Tag takeTag();
    std::size_t lengthBefore(std::string_view mark);
    QByteArrayView readUpTo(std::string_view endTag);
    bool decode(QByteArrayView raw);
    bool decodeReference(QByteArrayView name);

    QIODevice &_device;
    std::vector<char> _window;
    std::size_t _position = 0;
    std::size_t _end = 0; // of what is filled
    std::size_t _mark = none;
    bool _failed = false;
    QByteArray _decoded;
};
