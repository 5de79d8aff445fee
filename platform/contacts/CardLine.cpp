#include "platform/contacts/CardLine.h"

#include "platform/base/StringRules.h"

#include <QStringDecoder>
#include <algorithm>

namespace
{
bool isLetterOrDigit(char sign)
{
    return (sign >= 'A' && sign <= 'Z') || (sign >= 'a' && sign <= 'z') || (sign >= '0' && sign <= '9');
}

bool isHexDigit(char sign)
{
    return (sign >= 'A' && sign <= 'F') || (sign >= 'a' && sign <= 'f') || (sign >= '0' && sign <= '9');
}

bool isName(QByteArrayView text)
{
    return !text.isEmpty() && std::all_of(text.cbegin(), text.cend(), [](char sign) {
        return isLetterOrDigit(sign) || sign == '-' || sign == '_';
    });
}

// The pieces of a line's head, up to the first colon that is in no quotes. Empty when there is no such colon, or when
// the head has too many pieces.
std::vector<QByteArrayView> piecesOfHead(QByteArrayView line)
{
    std::vector<QByteArrayView> pieces;
    bool isQuoted = false;
    int parts = 0;
    qsizetype start = 0;
    for (qsizetype i = 0; i < line.size() && parts <= CardLine::maximumParts; ++i) {
        const char sign = line[i];
        if (sign == '"')
            isQuoted = !isQuoted;
        parts += sign == ';' || sign == ',' ? 1 : 0;
        if (isQuoted || (sign != ';' && sign != ':'))
            continue;
        pieces.push_back(line.sliced(start, i - start));
        start = i + 1;
        if (sign == ':')
            return pieces;
    }
    return {};
}

CardLine::Parameter parameterOf(QByteArrayView piece)
{
    const qsizetype equals = piece.indexOf('=');
    if (equals < 0)
        return {{}, piece.trimmed().toByteArray()};
    return {piece.first(equals).trimmed().toByteArray().toUpper(), piece.sliced(equals + 1).trimmed().toByteArray()};
}

bool isEncoding(const CardLine::Parameter &parameter)
{
    return parameter.name == "ENCODING" ||
           (parameter.name.isEmpty() && (parameter.value.compare("BASE64", Qt::CaseInsensitive) == 0 ||
                                         parameter.value.compare("QUOTED-PRINTABLE", Qt::CaseInsensitive) == 0));
}
// The signs of base64 alone, also of an address that has it inside ("data:image/png;base64,...").
QByteArray strictBase64(const QByteArray &value)
{
    QByteArray strict = value.left(5).toLower() == "data:" ? value.mid(value.indexOf(',') + 1) : value;
    strict.removeIf([](char sign) { return !CardLine::isBase64Sign(sign); });
    return strict;
}

// An equals sign that encodes nothing is one, except at the end, where it would take the next line with it.
QByteArray strictQuotedPrintable(const QByteArray &value)
{
    QByteArray strict;
    strict.reserve(value.size());
    for (qsizetype i = 0; i < value.size(); ++i) {
        const bool isCode = i + 2 < value.size() && isHexDigit(value.at(i + 1)) && isHexDigit(value.at(i + 2));
        if (value.at(i) != '=' || isCode)
            strict += value.at(i);
        else if (i + 1 < value.size())
            strict += "=3D";
    }
    return strict;
}

// A backslash that escapes nothing is one.
QByteArray withStrictEscapes(const QByteArray &value)
{
    QByteArray strict;
    strict.reserve(value.size());
    for (qsizetype i = 0; i < value.size(); ++i) {
        const char sign = value.at(i);
        const char next = i + 1 < value.size() ? value.at(i + 1) : '\0';
        if (sign != '\\') {
            strict += sign;
        } else if (next != '\0' && QByteArrayView("nNrR;,\\").contains(next)) {
            strict += sign;
            strict += next;
            ++i;
        } else if (next != ':') {
            strict += "\\\\";
        }
    }
    return strict;
}
} // namespace

bool CardLine::isBase64Sign(char sign)
{
    return isLetterOrDigit(sign) || sign == '+' || sign == '/' || sign == '=';
}

CardLine CardLine::fromText(const QByteArray &text)
{
    CardLine line;
    const std::vector<QByteArrayView> pieces = piecesOfHead(text);
    if (pieces.empty())
        return line;
    const QByteArrayView whole = pieces.front().trimmed();
    const qsizetype dot = whole.lastIndexOf('.');
    if (!isName(whole.sliced(dot + 1)))
        return line;
    line.name = whole.sliced(dot + 1).toByteArray().toUpper();
    line.group = dot > 0 ? whole.first(dot).toByteArray().toLower() : QByteArray();
    for (std::size_t i = 1; i < pieces.size(); ++i)
        line.parameters.push_back(parameterOf(pieces[i]));
    line.value = text.mid(pieces.back().end() - text.cbegin() + 1);
    return line;
}

QString CardLine::decoded(QByteArrayView bytes, const QByteArray &characterSet)
{
    if (bytes.isValidUtf8())
        return StringRules::fromUtf8(bytes);
    if (QStringDecoder decoder(characterSet.constData()); !characterSet.isEmpty() && decoder.isValid())
        return decoder.decode(bytes);
    QString damaged = StringRules::fromUtf8(bytes);
    const bool isUtf8 = std::any_of(damaged.cbegin(), damaged.cend(), [](QChar sign) {
        return sign.unicode() > 0x7F && sign != QChar(QChar::ReplacementCharacter);
    });
    if (isUtf8)
        return damaged;
    QStringDecoder decoder("windows-1252");
    return decoder.isValid() ? decoder.decode(bytes) : QString::fromLatin1(bytes);
}

CardLine::Encoding CardLine::encoding() const
{
    for (const Parameter &parameter : parameters) {
        const QByteArray value = isEncoding(parameter) ? parameter.value.toUpper() : QByteArray();
        if (value == "QUOTED-PRINTABLE")
            return QuotedPrintable;
        if (value == "BASE64" || value == "B")
            return Base64;
    }
    return Plain;
}

QByteArray CardLine::characterSet() const
{
    const auto found = std::find_if(parameters.cbegin(), parameters.cend(),
                                    [](const Parameter &parameter) { return parameter.name == "CHARSET"; });
    return found == parameters.cend() ? QByteArray() : found->value;
}

void CardLine::removeCharacterSet()
{
    std::erase_if(parameters, [](const Parameter &parameter) { return parameter.name == "CHARSET"; });
}

QByteArray CardLine::decodedBase64() const
{
    return QByteArray::fromBase64(strictBase64(value));
}

QByteArray CardLine::strictText() const
{
    QByteArray text = isName(group) ? group + '.' + name : name;
    for (const Parameter &parameter : parameters) {
        if (isEncoding(parameter))
            continue;
        const QByteArray name = parameter.name.isEmpty() ? QByteArrayLiteral("TYPE") : parameter.name;
        if (isName(name) && !parameter.value.isEmpty())
            text += ';' + name + '=' + parameter.value;
    }
    if (encoding() != Plain)
        text += encoding() == Base64 ? ";ENCODING=b" : ";ENCODING=QUOTED-PRINTABLE";
    return text + ':' + strictValue();
}

QByteArray CardLine::strictValue() const
{
    if (encoding() == Base64)
        return strictBase64(value);
    return withStrictEscapes(encoding() == QuotedPrintable ? strictQuotedPrintable(value) : value);
}
