#include "platform/base/Url.h"

#include "platform/base/StringRules.h"

#include <QByteArray>
#include <QDir>
#include <QUrl>
#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>
#include <string_view>
#include <uriparser/Uri.h>

// The text, and where its pieces stand in it; a position of -1 means that there is no such piece.
class Url::Data : public QSharedData
{
public:
    struct Piece
    {
        qsizetype start = -1;
        qsizetype length = 0;
    };

    QStringView view(Piece piece) const
    {
        return piece.start < 0 ? QStringView() : QStringView(text).mid(piece.start, piece.length);
    }

    static Piece pathOf(const QByteArray &text, qsizetype schemeEnd);

    QString text;
    Piece scheme;
    Piece host;
    Piece path;
};

namespace
{
// The user part, host and port stand here: behind a "//" that begins the text or follows the scheme.
struct Authority
{
    qsizetype start = 0;
    qsizetype end = 0;
};

Authority authorityOf(const QByteArray &text)
{
    const auto schemeEnd = std::find_if(text.begin(), text.end(), [](char c) { return strchr(":/?#", c); });
    const qsizetype start = schemeEnd != text.end() && *schemeEnd == ':' ? schemeEnd - text.begin() + 1 : 0;
    if (text.mid(start, 2) != "//")
        return {};
    Authority authority{start + 2, start + 2};
    while (authority.end < text.size() && !strchr("/?#", text[authority.end]))
        authority.end++;
    authority.start = qMax(authority.start, text.lastIndexOf('@', authority.end - 1) + 1);
    return authority;
}

// What the parser gets to see, letter for letter as long as the text: where pages may use square brackets, though no
// standard lets them, there are parentheses instead.
QByteArray toleratedForm(const QByteArray &text)
{
    if (!text.contains('[') && !text.contains(']'))
        return text;
    const Authority authority = authorityOf(text);
    QByteArray result = text;
    for (qsizetype i = 0; i < result.size(); i++) {
        if (i >= authority.start && i < authority.end)
            continue;
        if (result[i] == '[' || result[i] == ']')
            result[i] = '(';
    }
    return result;
}

bool isAscii(QStringView text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() > 0x20 && c.unicode() < 0x7f; });
}

// By RFC 3986: what may stand in the scheme, in a plain host, and behind the authority without further rules.
enum CharacterClass : unsigned char { SchemeCharacter = 1, HostCharacter = 2, Digit = 4, PathCharacter = 8 };

constexpr std::array<unsigned char, 256> characterClasses()
{
    std::array<unsigned char, 256> classes{};
    const auto add = [&classes](std::string_view characters, int added) {
        for (const char c : characters)
            classes[static_cast<unsigned char>(c)] |= static_cast<unsigned char>(added);
    };
    add("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ", SchemeCharacter | HostCharacter | PathCharacter);
    add("0123456789", SchemeCharacter | HostCharacter | Digit | PathCharacter);
    add("+-.", SchemeCharacter);
    add("-.", HostCharacter);
    add("-._~!$&'()*+,;=:@/", PathCharacter);
    return classes;
}

constexpr std::array<unsigned char, 256> classOf = characterClasses();

bool isHexDigit(char c)
{
    return std::isxdigit(static_cast<unsigned char>(c)) != 0;
}

// The first position from `at` on that holds no character of the class.
qsizetype skip(QByteArrayView text, qsizetype at, CharacterClass allowed)
{
    while (at < text.size() && classOf[static_cast<unsigned char>(text[at])] & allowed)
        ++at;
    return at;
}

// Whether path, query and fragment hold nothing but what they may.
bool isPlainRest(QByteArrayView text, qsizetype at)
{
    bool inFragment = false;
    while ((at = skip(text, at, PathCharacter)) < text.size()) {
        const char c = text[at];
        const bool isEscape = c == '%' && at + 2 < text.size() && isHexDigit(text[at + 1]) && isHexDigit(text[at + 2]);
        if (c == '#' && !inFragment)
            inFragment = true;
        else if (c != '?' && !isEscape)
            return false;
        at += isEscape ? 3 : 1;
    }
    return true;
}
} // namespace

bool Url::isPlainAddress(QByteArrayView text, Host *host)
{
    const qsizetype schemeEnd = skip(text, 0, SchemeCharacter);
    if (schemeEnd == 0 || !std::isalpha(static_cast<unsigned char>(text[0])) ||
        !text.sliced(schemeEnd).startsWith("://"))
        return false;
    host->start = schemeEnd + 3;
    qsizetype at = skip(text, host->start, HostCharacter);
    host->length = at - host->start;
    if (host->length == 0)
        return false;
    if (at < text.size() && text[at] == ':')
        at = skip(text, at + 1, Digit);
    return at == text.size() || (strchr("/?#", text[at]) && text[at] != '\0' && isPlainRest(text, at));
}

Url::Data::Piece Url::Data::pathOf(const QByteArray &text, qsizetype schemeEnd)
{
    const qsizetype authorityEnd = authorityOf(text).end;
    const qsizetype start = qMax(authorityEnd, schemeEnd);
    // What follows a scheme without a slash, as in "mailto:ann", is no path.
    if (schemeEnd > 0 && authorityEnd == 0 && !text.mid(start).startsWith('/'))
        return {};
    qsizetype end = start;
    while (end < text.size() && text[end] != '?' && text[end] != '#')
        end++;
    return {start, end - start};
}

Url::Url() = default;
Url::Url(const Url &other) = default;
Url::Url(Url &&other) noexcept = default;
Url &Url::operator=(const Url &other) = default;
Url &Url::operator=(Url &&other) noexcept = default;
Url::~Url() = default;

Url Url::URLWithString(const QString &text)
{
    if (text.isEmpty() || !isAscii(text))
        return {};
    const QByteArray form = toleratedForm(text.toLatin1());
    Host host;
    if (isPlainAddress(form, &host)) {
        const qsizetype schemeLength = host.start - qsizetype(strlen("://"));
        Url url;
        url._data = new Data;
        url._data->text = text;
        url._data->scheme = {0, schemeLength};
        url._data->host = {host.start, host.length};
        url._data->path = Data::pathOf(form, schemeLength + 1);
        return url;
    }
    const char *begin = form.constData();
    const char *end = begin + form.size();
    UriUriA parsed;
    const char *errorPosition = nullptr;
    if (uriParseSingleUriExA(&parsed, begin, end, &errorPosition) != URI_SUCCESS)
        return {};

    Url url;
    url._data = new Data;
    url._data->text = text;
    const auto piece = [begin](const UriTextRangeA &range) {
        return range.first ? Data::Piece{range.first - begin, range.afterLast - range.first} : Data::Piece();
    };
    url._data->scheme = piece(parsed.scheme);
    url._data->host = piece(parsed.hostText);
    url._data->path = Data::pathOf(form, parsed.scheme.first ? url._data->scheme.length + 1 : 0);
    uriFreeUriMembersA(&parsed);
    return url;
}

Url Url::fileURLWithPath(const QString &path)
{
    if (path.isEmpty())
        return {};
    const QString absolute = path.startsWith(u'/') ? path : QDir::current().absoluteFilePath(path);
    return URLWithString(QStringLiteral("file://") +
                         QString::fromLatin1(QUrl::toPercentEncoding(absolute, "!$&'()*+,/:=@")));
}

bool Url::isNull() const
{
    return !_data;
}

QString Url::absoluteString() const
{
    return _data ? _data->text : QString();
}

QString Url::scheme() const
{
    return _data ? _data->view(_data->scheme).toString() : QString();
}

QString Url::host() const
{
    const QStringView view = hostView();
    return view.isNull() ? QString() : view.toString();
}

QStringView Url::hostView() const
{
    if (!_data || _data->host.length == 0)
        return {};
    return _data->view(_data->host);
}

QString Url::path() const
{
    if (!_data || _data->path.start < 0)
        return {};
    return StringRules::replacingPercentEscapes(_data->view(_data->path).toString());
}

bool Url::isFileURL() const
{
    return _data && _data->view(_data->scheme) == QLatin1String("file");
}

bool Url::isEqualTo(const Url &other) const
{
    if (_data == other._data)
        return true;
    return _data && other._data && _data->text == other._data->text;
}

QDebug operator<<(QDebug debug, const Url &url)
{
    const QDebugStateSaver saver(debug);
    debug.nospace() << "Url(" << url.absoluteString() << ")";
    return debug;
}
