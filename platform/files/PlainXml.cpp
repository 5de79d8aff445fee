#include "platform/files/PlainXml.h"

#include "platform/base/StringRules.h"
#include "platform/files/XmlScalars.h"

#include <QIODevice>
#include <QString>
#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

namespace
{
constexpr std::size_t windowSize = std::size_t(256) * 1024;
constexpr std::size_t longestTag = 16;

struct Spelling
{
    std::string_view text;
    PlainXml::Tag tag;
};

constexpr std::array spellings = {
    Spelling{"<key>", PlainXml::Tag::Key},
    Spelling{"<string>", PlainXml::Tag::String},
    Spelling{"</dict>", PlainXml::Tag::EndDictionary},
    Spelling{"<dict>", PlainXml::Tag::Dictionary},
    Spelling{"<integer>", PlainXml::Tag::Integer},
    Spelling{"<array>", PlainXml::Tag::Array},
    Spelling{"</array>", PlainXml::Tag::EndArray},
    Spelling{"<true/>", PlainXml::Tag::True},
    Spelling{"<false/>", PlainXml::Tag::False},
    Spelling{"<real>", PlainXml::Tag::Real},
    Spelling{"<date>", PlainXml::Tag::Date},
    Spelling{"<data>", PlainXml::Tag::Data},
    Spelling{"<key/>", PlainXml::Tag::EmptyKey},
    Spelling{"<string/>", PlainXml::Tag::EmptyString},
    Spelling{"<dict/>", PlainXml::Tag::EmptyDictionary},
    Spelling{"<array/>", PlainXml::Tag::EmptyArray},
};

std::string_view endTagOf(PlainXml::Tag tag)
{
    switch (tag) {
    case PlainXml::Tag::Key:
        return "</key>";
    case PlainXml::Tag::String:
        return "</string>";
    case PlainXml::Tag::Integer:
        return "</integer>";
    case PlainXml::Tag::Real:
        return "</real>";
    case PlainXml::Tag::Date:
        return "</date>";
    case PlainXml::Tag::Data:
        return "</data>";
    default:
        return {};
    }
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isBlank(char c)
{
    return c == ' ' || c == '\n' || c == '\t' || c == '\r';
}

// What may stand in the names of a document type without meaning anything.
bool isHarmless(char c)
{
    return isDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == ' ' || (c >= '-' && c <= '/') ||
           c == ':' || c == '_';
}

// Nearly all integers are, and take no time then.
bool isShortInteger(QByteArrayView text)
{
    constexpr qsizetype surelyInRange = 18;
    const QByteArrayView digits = text.startsWith('-') ? text.sliced(1) : text;
    return !digits.isEmpty() && digits.size() <= surelyInRange && std::all_of(digits.begin(), digits.end(), isDigit);
}

QVariant scalarOf(PlainXml::Tag tag, QByteArrayView utf8)
{
    const QString text = StringRules::fromUtf8(utf8);
    switch (tag) {
    case PlainXml::Tag::Integer:
        return XmlScalars::integer(text);
    case PlainXml::Tag::Real:
        return XmlScalars::real(text);
    case PlainXml::Tag::Date:
        return XmlScalars::date(text);
    case PlainXml::Tag::Data:
        return XmlScalars::data(text);
    default:
        return {};
    }
}

// Whether nothing in the text needs a second look. Without a way out of the loop, so that it runs many bytes at a time.
bool isPlainText(QByteArrayView text)
{
    unsigned char unusual = 0;
    const auto *bytes = reinterpret_cast<const unsigned char *>(text.data());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const unsigned char c = bytes[i];
        unusual |= static_cast<unsigned char>((c < 0x20) | (c > 0x7e) | (c == '&') | (c == ']'));
    }
    return unusual == 0;
}

// What XML lets into a text.
bool isAllowed(QByteArrayView text)
{
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20 && !isBlank(c); };
    const auto contains = [text](std::string_view part) {
        return std::search(text.begin(), text.end(), part.begin(), part.end()) != text.end();
    };
    return std::none_of(text.begin(), text.end(), isControl) && text.isValidUtf8() && !contains("]]>") &&
           !contains("\xef\xbf\xbe") && !contains("\xef\xbf\xbf");
}
} // namespace

PlainXml::PlainXml(QIODevice &device) : _device(device), _window(windowSize) {}

bool PlainXml::fail()
{
    _failed = true;
    return false;
}

// --- The window -----------------------------------------------------------------------------------------------------

// Sees to it that the next bytes are in the window; false when the file ends before, or the window would grow too
// large.
bool PlainXml::fillWindow(std::size_t needed)
{
    constexpr std::size_t largest = std::size_t(64) << 20;
    while (_end - _position < needed) {
        const std::size_t kept = std::min(_mark, _position);
        std::memmove(_window.data(), _window.data() + kept, _end - kept);
        _position -= kept;
        _end -= kept;
        if (_mark != none)
            _mark -= kept;
        if (_end == _window.size()) {
            if (_window.size() >= largest)
                return fail();
            _window.resize(_window.size() * 2);
        }
        const qint64 read = _device.read(_window.data() + _end, qint64(_window.size() - _end));
        if (read <= 0)
            return read == 0 ? false : fail();
        _end += std::size_t(read);
    }
    return true;
}

QByteArrayView PlainXml::peek(std::size_t length)
{
    fill(length);
    return {_window.data() + _position, qsizetype(std::min(length, _end - _position))};
}

bool PlainXml::take(std::string_view literal)
{
    const bool isThere = peek(literal.size()) == QByteArrayView(literal.data(), qsizetype(literal.size()));
    if (isThere)
        _position += literal.size();
    return isThere;
}

void PlainXml::skipBlanks()
{
    do {
        while (_position < _end && isBlank(_window[_position]))
            ++_position;
    } while (_position == _end && fill(1));
}

// --- Structure ------------------------------------------------------------------------------------------------------

bool PlainXml::readProlog()
{
    constexpr std::string_view beforeEncoding = "<?xml version=\"1.0\" encoding=\"";
    if (take(beforeEncoding) && !((take("UTF-8") || take("utf-8")) && take("\"?>")))
        return fail();
    skipBlanksAndComments();
    if (take("<!DOCTYPE plist PUBLIC ")) {
        if (!skipName() || !passBlanks() || !skipName() || !take(">"))
            return fail();
        skipBlanksAndComments();
    }
    return (take("<plist version=\"1.0\">") && !_failed) || fail();
}

bool PlainXml::passBlanks()
{
    const QByteArrayView next = peek(1);
    const bool isThere = !next.isEmpty() && isBlank(next[0]);
    skipBlanks();
    return isThere;
}

bool PlainXml::skipComment()
{
    if (!take("<!--"))
        return false;
    constexpr std::string_view end = "--";
    const std::size_t length = lengthBefore(end);
    if (length == none || !isAllowed(peek(length)))
        return fail();
    pass(length);
    return take("-->") || fail();
}

void PlainXml::skipBlanksAndComments()
{
    do
        skipBlanks();
    while (skipComment());
}

// Of a document type, in quotes.
bool PlainXml::skipName()
{
    constexpr std::size_t longestName = 200;
    if (!take("\""))
        return false;
    const QByteArrayView name = peek(longestName);
    pass(std::size_t(std::find_if_not(name.begin(), name.end(), isHarmless) - name.begin()));
    return take("\"");
}

bool PlainXml::readEpilog()
{
    skipBlanksAndComments();
    if (_failed || !take("</plist>"))
        return fail();
    skipBlanksAndComments();
    return (_position == _end && !_failed) || fail();
}

PlainXml::Tag PlainXml::readTag()
{
    while (!_failed) {
        skipBlanks();
        const Tag tag = takeTag();
        if (tag != Tag::None)
            return tag;
        if (!skipComment())
            fail();
    }
    return Tag::None;
}

PlainXml::Tag PlainXml::takeTag()
{
    const QByteArrayView start = peek(longestTag);
    constexpr qsizetype shortestTag = 5;
    for (const Spelling &spelling : spellings) {
        // Two letters tell most of them apart, at a fraction of the cost.
        const bool mayBe = start.size() >= shortestTag && start[1] == spelling.text[1] && start[2] == spelling.text[2];
        if (mayBe && start.startsWith(QByteArrayView(spelling.text.data(), qsizetype(spelling.text.size())))) {
            _position += spelling.text.size();
            return spelling.tag;
        }
    }
    return Tag::None;
}

QByteArrayView PlainXml::readText(Tag tag)
{
    if (tag == Tag::EmptyKey || tag == Tag::EmptyString)
        return QByteArrayView("");
    const QByteArrayView raw = readUpTo(endTagOf(tag));
    if (isPlainText(raw))
        return raw;
    return decode(raw) ? QByteArrayView(_decoded) : QByteArrayView("");
}

// The number of bytes that are left before the mark; `none` when it does not come any more.
std::size_t PlainXml::lengthBefore(std::string_view mark)
{
    std::size_t searched = 0;
    while (true) {
        const std::string_view ahead(_window.data() + _position, _end - _position);
        const std::size_t found = mark.size() == 1 ? ahead.find(mark[0], searched) : ahead.find(mark, searched);
        if (found != std::string_view::npos)
            return found;
        searched = ahead.size() - std::min(ahead.size(), mark.size() - 1);
        if (!fill(ahead.size() + 1))
            return none;
    }
}

QByteArrayView PlainXml::readUpTo(std::string_view endTag)
{
    const std::size_t length = endTag.empty() ? none : lengthBefore("<"); // there are tags that hold no text
    if (length == none || !fill(length + endTag.size()) ||
        std::memcmp(_window.data() + _position + length, endTag.data(), endTag.size()) != 0) {
        fail();
        return QByteArrayView("");
    }
    const QByteArrayView text(_window.data() + _position, qsizetype(length));
    _position += length + endTag.size();
    return text;
}

// Into `_decoded`.
bool PlainXml::decode(QByteArrayView raw)
{
    if (!isAllowed(raw))
        return fail();
    // Whatever ends a line, XML takes it for a line feed.
    QByteArray text;
    if (raw.contains('\r')) {
        text = raw.toByteArray().replace("\r\n", "\n").replace('\r', '\n');
        raw = text;
    }
    _decoded.resize(0);
    for (auto at = raw.begin(); at != raw.end();) {
        const auto reference = std::find(at, raw.end(), '&');
        _decoded.append(at, reference - at);
        if (reference == raw.end())
            break;
        const auto end = std::find(reference, raw.end(), ';');
        if (end == raw.end() || !decodeReference(QByteArrayView(reference + 1, end - reference - 1)))
            return fail();
        at = end + 1;
    }
    return true;
}

bool PlainXml::decodeReference(QByteArrayView name)
{
    if (name == "amp")
        _decoded.append('&');
    else if (name == "lt")
        _decoded.append('<');
    else if (name == "gt")
        _decoded.append('>');
    else if (name == "quot")
        _decoded.append('"');
    else if (name == "apos")
        _decoded.append('\'');
    else if (name.startsWith('#')) {
        const bool isHexadecimal = name.startsWith("#x");
        name = name.sliced(isHexadecimal ? 2 : 1);
        char32_t character = 0;
        std::uint32_t number = 0;
        const auto [end, error] = std::from_chars(name.begin(), name.end(), number, isHexadecimal ? 16 : 10);
        character = number;
        const bool isPlain = (character >= 0x20 && character < 0xd800) || (character >= 0xe000 && character < 0xfffe) ||
                             (character >= 0x10000 && character <= 0x10ffff);
        if (name.isEmpty() || error != std::errc() || end != name.end() || !isPlain)
            return false;
        _decoded.append(QStringView(QChar::fromUcs4(character)).toUtf8());
    } else
        return false;
    return true;
}

// --- Values ---------------------------------------------------------------------------------------------------------

bool PlainXml::skipValue(Tag tag, int depth)
{
    if (depth > greatestDepth)
        return fail();
    switch (tag) {
    case Tag::True:
    case Tag::False:
    case Tag::EmptyString:
    case Tag::EmptyDictionary:
    case Tag::EmptyArray:
        return true;
    case Tag::String:
        readText(tag);
        return !_failed;
    case Tag::Integer:
    case Tag::Real:
    case Tag::Date:
    case Tag::Data:
        return readScalar(tag).isValid();
    case Tag::Array:
        for (Tag value = readTag(); value != Tag::EndArray; value = readTag()) {
            if (!skipValue(value, depth + 1))
                return false;
        }
        return true;
    case Tag::Dictionary:
        for (Tag key = readTag(); key != Tag::EndDictionary; key = readTag()) {
            if (key != Tag::Key && key != Tag::EmptyKey)
                return fail();
            readText(key);
            if (!skipValue(readTag(), depth + 1))
                return false;
        }
        return true;
    default:
        return fail();
    }
}

QVariant PlainXml::readScalar(Tag tag)
{
    const QByteArrayView text = readText(tag);
    if (tag == Tag::Integer && isShortInteger(text))
        return text.toLongLong();
    QVariant value = _failed ? QVariant() : scalarOf(tag, text);
    if (!value.isValid())
        fail();
    return value;
}
