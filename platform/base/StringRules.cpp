#include "platform/base/StringRules.h"

#include <QByteArray>
#include <QRegularExpression>
#include <QStringDecoder>
#include <QUrl>
#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <limits>

namespace
{
bool isAscii(QStringView text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
}

// Whether the character may stand for several letters when case is disregarded, as the sharp s does for "ss".
bool mayUnfold(QChar character)
{
    const char16_t c = character.unicode();
    return c == 0xdf || c == 0x149 || c == 0x587 || (c >= 0x1f80 && c <= 0x1fff) || (c >= 0xfb00 && c <= 0xfb17);
}

// Qt folds a character into one character only; what stands for several is found by way of the capital letters.
QString unfolded(const QString &text)
{
    if (std::none_of(text.begin(), text.end(), mayUnfold))
        return text;
    QString result;
    for (const QChar character : text)
        result += mayUnfold(character) ? QString(character).toUpper().toCaseFolded() : QString(character);
    return result;
}

// Whether a mark that belongs to the letter before it stands there: a bare letter is not found in an accented one.
bool isCombiningMarkAt(const QString &text, qsizetype position)
{
    if (position >= text.size())
        return false;
    char32_t character = text[position].unicode();
    if (text[position].isHighSurrogate() && position + 1 < text.size() && text[position + 1].isLowSurrogate())
        character = QChar::surrogateToUcs4(text[position], text[position + 1]);
    return QChar::combiningClass(character) != 0;
}

// No letter of any language has as many marks as this; the number is Unicode's for texts of unknown origin.
constexpr int mostMarks = 30;

// The text with a joiner that shows nothing after every so many marks in a row. Sorting the marks of one letter takes
// quadratic time, and a page's title may have a hundred thousand of them.
QString withBoundedMarks(const QString &text)
{
    const QChar joiner(0x34f);
    QString result;
    qsizetype taken = 0;
    int marks = 0;
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (text[at].isLowSurrogate())
            continue;
        marks = isCombiningMarkAt(text, at) ? marks + 1 : 0;
        if (marks > mostMarks) {
            result += QStringView(text).sliced(taken, at - taken);
            result += joiner;
            taken = at;
            marks = 1;
        }
    }
    return taken == 0 ? text : result.append(QStringView(text).sliced(taken));
}

// The form in which texts that differ only in letter case or in canonically equivalent spellings are the same. Text
// that is in this form already, as most text is, is handed through without a copy.
QString folded(const QString &text)
{
    const QString composed = withBoundedMarks(text).normalized(QString::NormalizationForm_C);
    return unfolded(composed.toCaseFolded()).normalized(QString::NormalizationForm_C);
}

// The same for text in UTF-8.
bool isCombiningMarkAt(QByteArrayView text, qsizetype position)
{
    if (position >= text.size() || static_cast<unsigned char>(text[position]) < 0x80)
        return false;
    constexpr qsizetype longestCharacter = 4;
    const QString character =
        QString::fromUtf8(text.sliced(position, std::min(longestCharacter, text.size() - position)));
    return isCombiningMarkAt(character, 0);
}

// What each character of two bytes in UTF-8 is when case is disregarded, 0 where it takes more than a look at the
// character alone: marks that join what stands before them, what is written otherwise when composed, and what stands
// for several letters.
class ShortFoldings
{
public:
    static constexpr char16_t first = 0x80;
    static constexpr char16_t last = 0x7ff;

    ShortFoldings()
    {
        for (char16_t c = first; c <= last; ++c) {
            const QString text{QChar(c)};
            const QString folding = folded(text);
            const bool isPlain = QChar::combiningClass(c) == 0 && folding.size() == 1 && folding[0] >= QChar(first) &&
                                 folding[0] <= QChar(last) && text.normalized(QString::NormalizationForm_C) == text;
            _foldings[c - first] = isPlain ? folding[0].unicode() : char16_t(0);
        }
    }

    char16_t operator[](char16_t c) const { return _foldings[c - first]; }

private:
    std::array<char16_t, last - first + 1> _foldings;
};

// Characters of three bytes that have no case and never join: punctuation, currency signs, kana, ideographs and the
// syllables of Hangul, which only what is none of these could complete.
bool isInert(char16_t c)
{
    return (c >= 0x4e00 && c <= 0x9fff) || (c >= 0xac00 && c <= 0xd7a3) || (c >= 0x2010 && c <= 0x2027) ||
           (c >= 0x2030 && c <= 0x205e) || (c >= 0x20a0 && c <= 0x20bf) || (c >= 0x3001 && c <= 0x3029) ||
           (c >= 0x3041 && c <= 0x3096) || (c >= 0x30a1 && c <= 0x30fc);
}

bool isContinuation(unsigned char byte)
{
    return (byte & 0xc0) == 0x80;
}

// Whether the four bytes are one of the pictographs, U+1F300 to U+1FAFF.
bool isPictograph(const unsigned char *bytes)
{
    return bytes[0] == 0xf0 && bytes[1] == 0x9f && bytes[2] >= 0x8c && bytes[2] <= 0xab && isContinuation(bytes[3]);
}

// Appends the search form of text whose characters can be looked at one by one, as nearly all are; appends nothing
// and answers false when one cannot. The form is as long as the text.
bool appendPlainSearchForm(QByteArrayView text, QByteArray &form)
{
    static const ShortFoldings foldings;
    const qsizetype before = form.size();
    form.resize(before + text.size());
    char *out = form.data() + before;
    const auto *in = reinterpret_cast<const unsigned char *>(text.data());
    const auto *const end = in + text.size();
    while (in != end) {
        const unsigned char c = *in;
        char16_t folding = 0;
        if (c < 0x80) {
            *out++ = char(c >= 'A' && c <= 'Z' ? c | 0x20 : c);
            ++in;
        } else if (c >= 0xc2 && c <= 0xdf && end - in >= 2 && isContinuation(in[1]) &&
                   (folding = foldings[char16_t((c & 0x1f) << 6 | (in[1] & 0x3f))])) {
            *out++ = char(0xc0 | folding >> 6);
            *out++ = char(0x80 | (folding & 0x3f));
            in += 2;
        } else if (c >= 0xe2 && c <= 0xed && end - in >= 3 && isContinuation(in[1]) && isContinuation(in[2]) &&
                   isInert(char16_t((c & 0xf) << 12 | (in[1] & 0x3f) << 6 | (in[2] & 0x3f)))) {
            out = std::copy(in, in + 3, out);
            in += 3;
        } else if (end - in >= 4 && isPictograph(in)) {
            out = std::copy(in, in + 4, out);
            in += 4;
        } else {
            form.resize(before);
            return false;
        }
    }
    return true;
}

// As many bytes as are looked at in one step; the compiler makes vector instructions of it where there are any.
using Block = unsigned char __attribute__((vector_size(16)));

Block blockAt(const char *bytes)
{
    Block block;
    std::memcpy(&block, bytes, sizeof block);
    return block;
}

// Whether at one of the places from `at` on both the part's first and its last byte stand.
bool mayStartWithin(const char *at, QByteArrayView part)
{
    const auto hits = (blockAt(at) == static_cast<unsigned char>(part.front())) &
                      (blockAt(at + part.size() - 1) == static_cast<unsigned char>(part.back()));
    std::uint64_t halves[2];
    static_assert(sizeof halves == sizeof hits);
    std::memcpy(halves, &hits, sizeof hits);
    return (halves[0] | halves[1]) != 0;
}

// Where the part occurs first between `at` and `end`, null where it does not. The system's own function prepares
// itself anew at every call, which takes longer than looking through a title.
const char *find(const char *at, const char *end, QByteArrayView part)
{
    if (part.size() == 1)
        return static_cast<const char *>(std::memchr(at, part.front(), std::size_t(end - at)));
    // Its preparation is what keeps the time for a long part linear, though.
    constexpr qsizetype longPart = 256;
    if (part.size() >= longPart)
        return static_cast<const char *>(memmem(at, std::size_t(end - at), part.data(), std::size_t(part.size())));
    const auto isAt = [&](const char *place) {
        return *place == part.front() && std::memcmp(place, part.data(), std::size_t(part.size())) == 0;
    };
    constexpr qsizetype step = sizeof(Block);
    for (; end - at >= step + part.size() - 1; at += step) {
        if (!mayStartWithin(at, part))
            continue;
        if (const char *place = std::find_if(at, at + step, [&](const char &c) { return isAt(&c); });
            place != at + step)
            return place;
    }
    for (; end - at >= part.size(); ++at) {
        if (isAt(at))
            return at;
    }
    return nullptr;
}

bool isBlank(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

int hexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}
} // namespace

bool StringRules::containsIgnoringCase(const QString &text, const QString &part)
{
    if (part.isEmpty() || text.isEmpty())
        return false;
    if (isAscii(text) && isAscii(part))
        return text.contains(part, Qt::CaseInsensitive);
    const QString haystack = folded(text);
    const QString needle = folded(part);
    for (qsizetype at = haystack.indexOf(needle); at >= 0; at = haystack.indexOf(needle, at + 1)) {
        if (!isCombiningMarkAt(haystack, at + needle.size()))
            return true;
    }
    return false;
}

QByteArray StringRules::searchForm(const QString &text)
{
    return folded(text).toUtf8();
}

void StringRules::appendSearchForm(QByteArrayView text, QByteArray &form)
{
    if (!appendPlainSearchForm(text, form))
        form.append(searchForm(fromUtf8(text)));
}

bool StringRules::searchFormContains(QByteArrayView text, QByteArrayView part)
{
    if (part.isEmpty() || text.isEmpty())
        return false;
    const char *at = text.data();
    const char *const end = at + text.size();
    while ((at = find(at, end, part))) {
        if (!isCombiningMarkAt(text, at - text.data() + part.size()))
            return true;
        ++at;
    }
    return false;
}

int StringRules::compareIgnoringCase(const QString &a, const QString &b)
{
    if (isAscii(a) && isAscii(b))
        return QString::compare(a, b, Qt::CaseInsensitive);
    return QString::compare(folded(a), folded(b));
}

QString StringRules::comparisonForm(const QString &text)
{
    return isAscii(text) ? text.toCaseFolded() : folded(text);
}

QString StringRules::replacingPercentEscapes(const QString &text)
{
    if (!text.contains(u'%'))
        return text;
    const QByteArray source = text.toUtf8();
    QByteArray bytes;
    bytes.reserve(source.size());
    for (qsizetype i = 0; i < source.size(); i++) {
        if (source[i] != '%') {
            bytes.append(source[i]);
            continue;
        }
        if (i + 2 >= source.size())
            return {};
        const int high = hexValue(source[i + 1]);
        const int low = hexValue(source[i + 2]);
        if (high < 0 || low < 0)
            return {};
        bytes.append(static_cast<char>(high * 16 + low));
        i += 2;
    }
    return bytes.isValidUtf8() ? fromUtf8(bytes) : QString();
}

QString StringRules::addingPercentEscapes(const QString &text)
{
    if (text.isEmpty())
        return text;
    return QString::fromLatin1(QUrl::toPercentEncoding(text, "!*'();/?:@&=+$,"));
}

QString StringRules::fromUtf8(QByteArrayView bytes)
{
    if (!bytes.startsWith("\xef\xbb\xbf"))
        return QString::fromUtf8(bytes); // the quicker way
    QStringDecoder decode(QStringDecoder::Utf8,
                          QStringDecoder::Flag::ConvertInitialBom | QStringDecoder::Flag::Stateless);
    return decode(bytes);
}

QString StringRules::escapedValue(const QString &text)
{
    if (text.isEmpty())
        return text;
    return QString::fromLatin1(QUrl::toPercentEncoding(text, "!*'()/:@$,"));
}

QString StringRules::trimmed(const QString &text)
{
    // Nothing but blanks leaves the empty text, which is not the same as none.
    return text.isNull() ? QString() : QStringView(text).trimmed().toString();
}

QString StringRules::beginning(const QString &text, qsizetype length)
{
    if (text.size() <= length)
        return text;
    const bool cutsACharacter = length > 0 && text.at(length - 1).isHighSurrogate() && text.at(length).isLowSurrogate();
    return text.left(cutsACharacter ? length - 1 : length);
}

int StringRules::integerValue(const QString &text)
{
    static const QRegularExpression leadingInteger(QStringLiteral("^\\s*([+-]?[0-9]+)"));
    const QString digits = leadingInteger.match(text).captured(1);
    if (digits.isEmpty())
        return 0;
    bool fits = false;
    const qlonglong value = digits.toLongLong(&fits);
    constexpr int least = std::numeric_limits<int>::min();
    constexpr int most = std::numeric_limits<int>::max();
    if (!fits)
        return digits.startsWith(u'-') ? least : most;
    return static_cast<int>(std::clamp<qlonglong>(value, least, most));
}

double StringRules::doubleValue(const QString &text)
{
    return doubleValue(QByteArrayView(text.toLatin1()));
}

double StringRules::doubleValue(QByteArrayView text)
{
    const char *start = std::find_if_not(text.begin(), text.end(), isBlank);
    const bool isNegative = start != text.end() && *start == '-';
    if (start != text.end() && (*start == '-' || *start == '+'))
        ++start;
    // Neither "inf" nor "nan" are numbers here.
    if (start == text.end() || !(*start == '.' || (*start >= '0' && *start <= '9')))
        return 0;
    double value = 0;
    const auto [end, error] = std::from_chars(start, text.end(), value);
    if (error == std::errc::result_out_of_range)
        value = QString::fromLatin1(start, end - start).toDouble(); // infinite, or 0
    return isNegative ? -value : value;
}
