#include "platform/contacts/CardText.h"

#include <QStringDecoder>
#include <algorithm>

namespace
{
// Bytes of a line up to which a fold may stand before its value.
constexpr qsizetype maximumHead = 4096;

// Without marks of its encoding, and without what no C string can hold.
QByteArray plainText(const QByteArray &text)
{
    const auto encoding = QStringConverter::encodingForData(text);
    if (encoding && *encoding != QStringConverter::Utf8)
        return QString(QStringDecoder(*encoding).decode(text)).toUtf8().replace('\0', QByteArray());
    QByteArray plain = encoding ? text.mid(3) : text;
    return plain.contains('\0') ? plain.replace('\0', QByteArray()) : plain;
}

bool isBeginning(QByteArrayView line)
{
    return line.trimmed().compare("BEGIN:VCARD", Qt::CaseInsensitive) == 0;
}

bool isEnd(QByteArrayView line)
{
    return line.trimmed().compare("END:VCARD", Qt::CaseInsensitive) == 0;
}

bool isAscii(QByteArrayView text)
{
    return std::all_of(text.cbegin(), text.cend(), [](char sign) { return uchar(sign) < 0x80; });
}

bool isBase64(QByteArrayView line)
{
    return !line.isEmpty() && std::all_of(line.cbegin(), line.cend(), CardLine::isBase64Sign);
}

bool isBulky(const CardLine &line)
{
    return line.name == "PHOTO" || line.name == "LOGO" || line.name == "SOUND" || line.name == "KEY";
}

// The line in UTF-8, whatever it is in. Only bytes of ASCII may still stand for something in another character set.
CardLine lineInUtf8(const QByteArray &text)
{
    CardLine line = CardLine::fromText(text);
    if (isAscii(text))
        return line;
    if (!text.isValidUtf8())
        line = CardLine::fromText(CardLine::decoded(text, line.characterSet()).toUtf8());
    line.removeCharacterSet();
    return line;
}
} // namespace

CardText::CardText(const QByteArray &text) : _text(plainText(text)) {}

std::optional<CardText::Card> CardText::next()
{
    Card card;
    qsizetype room = maximumOtherLines;
    bool isInside = false;
    bool isAgent = false;
    while (_at < _text.size()) {
        const Line source = logicalLine();
        if (isBeginning(source.text)) {
            if (isAgent) {
                skipInnerCard();
                continue;
            }
            card = {source.raw.toByteArray(), {}};
            room = maximumOtherLines;
            isInside = true;
            continue;
        }
        if (!isInside)
            continue;
        if (isEnd(source.text)) {
            card.text += source.raw;
            return card;
        }
        CardLine line = lineInUtf8(source.text);
        isAgent = line.name == "AGENT" && line.value.trimmed().isEmpty();
        if (line.name.isEmpty() || isAgent)
            continue;
        qsizetype bulk = maximumBulkyLine;
        qsizetype &left = isBulky(line) ? bulk : room;
        if (source.raw.size() > left)
            continue;
        left -= source.raw.size();
        card.text += source.raw.isValidUtf8() ? source.raw.toByteArray() : line.strictText() + "\r\n";
        card.lines.push_back(std::move(line));
    }
    return std::nullopt;
}

QByteArrayView CardText::physicalLine()
{
    const auto isLineEnd = [](char sign) { return sign == '\n' || sign == '\r'; };
    const qsizetype start = _at;
    const qsizetype end = std::find_if(_text.cbegin() + start, _text.cend(), isLineEnd) - _text.cbegin();
    _at = std::min(end + 1, _text.size());
    if (end + 1 < _text.size() && _text.at(end) == '\r' && _text.at(end + 1) == '\n')
        ++_at;
    return QByteArrayView(_text).sliced(start, end - start);
}

CardText::Line CardText::logicalLine()
{
    const qsizetype start = _at;
    QByteArray line = physicalLine().toByteArray();
    CardLine::Encoding encoding = CardLine::fromText(line).encoding();
    while (_at < _text.size() && continues(encoding, line)) {
        if (encoding == CardLine::Plain && line.size() <= maximumHead)
            encoding = CardLine::fromText(line).encoding();
    }
    return {QByteArrayView(_text).sliced(start, _at - start), line};
}

// Appends the next physical line when it belongs to the one before.
bool CardText::continues(CardLine::Encoding encoding, QByteArray &line)
{
    const qsizetype before = _at;
    const QByteArrayView next = physicalLine();
    const bool isFolded = (next.startsWith(' ') || next.startsWith('\t')) && !isBeginning(line) && !isEnd(line);
    const bool isSoft = encoding == CardLine::QuotedPrintable && line.endsWith('=') && !isEnd(next);
    // Some phones do not set the lines of a picture in.
    const bool isUnindented = encoding == CardLine::Base64 && isBase64(next.trimmed());
    if (isSoft) {
        line.chop(1);
        line += next;
    } else if (isFolded) {
        line += next.sliced(1);
    } else if (isUnindented) {
        line += next;
    } else {
        _at = before;
        return false;
    }
    return true;
}

// A card in a card of version 2.1 is that of somebody's secretary.
void CardText::skipInnerCard()
{
    while (_at < _text.size()) {
        if (isEnd(logicalLine().text))
            return;
    }
}
