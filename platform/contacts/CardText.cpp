#include "platform/contacts/CardText.h"

#include <QStringDecoder>
#include <algorithm>
#include <utility>

namespace
{
// Bytes of a line that begins or ends a card, with blanks around it.
constexpr qsizetype longestMark = 200;

// Without marks of its encoding, and without what no C string can hold.
QByteArray plainText(const QByteArray &text)
{
    const auto encoding = QStringConverter::encodingForData(text);
    if (encoding && *encoding != QStringConverter::Utf8)
        return QString(QStringDecoder(*encoding).decode(text)).toUtf8().replace('\0', QByteArray());
    QByteArray plain = encoding ? text.mid(3) : text;
    return plain.contains('\0') ? plain.replace('\0', QByteArray()) : plain;
}

bool isMark(QByteArrayView line, QByteArrayView mark)
{
    return line.size() <= longestMark && line.trimmed().compare(mark, Qt::CaseInsensitive) == 0;
}

bool isBeginning(QByteArrayView line)
{
    return isMark(line, "BEGIN:VCARD");
}

bool isEnd(QByteArrayView line)
{
    return isMark(line, "END:VCARD");
}

// Whether the head of a line ends in this part of it.
bool endsHead(QByteArrayView part, bool &isQuoted)
{
    for (const char sign : part) {
        if (sign == ':' && !isQuoted)
            return true;
        isQuoted = isQuoted != (sign == '"');
    }
    return false;
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
    return next(_text.size());
}

std::optional<CardText::Card> CardText::next(qsizetype mostBytes)
{
    const qsizetype start = _at;
    while (!isAtEnd() && _at - start < mostBytes) {
        if (takeLine())
            return std::exchange(_card, {});
    }
    return std::nullopt;
}

void CardText::setPosition(qsizetype position)
{
    _at = qBound(qsizetype(0), position, _text.size());
    _place = Outside;
}

// True when a card ends with it.
bool CardText::takeLine()
{
    const qsizetype start = _at;
    const Line source = logicalLine();
    if (_place == InnerCard) {
        _place = isEnd(source.text) ? Inside : InnerCard;
    } else if (_place == BehindAgent && isBeginning(source.text)) {
        _place = InnerCard;
    } else if (isBeginning(source.text)) {
        _card = {start, source.raw.toByteArray(), {}};
        _room = maximumOtherLines;
        _place = Inside;
    } else if (_place != Outside && isEnd(source.text)) {
        _card.text += source.raw;
        _place = Outside;
        return true;
    } else if (_place != Outside) {
        takeLineOfCard(source);
    }
    return false;
}

void CardText::takeLineOfCard(const Line &source)
{
    CardLine line = lineInUtf8(source.text);
    // A card in a card of version 2.1 is that of somebody's secretary.
    const bool isAgent = line.name == "AGENT" && line.value.trimmed().isEmpty();
    _place = isAgent ? BehindAgent : Inside;
    qsizetype bulk = maximumBulkyLine;
    qsizetype &left = isBulky(line) ? bulk : _room;
    if (line.name.isEmpty() || isAgent || source.raw.size() > left)
        return;
    left -= source.raw.size();
    _card.text += source.raw.isValidUtf8() ? source.raw.toByteArray() : line.strictText() + "\r\n";
    _card.lines.push_back(std::move(line));
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
    bool isQuoted = false;
    bool isHeadOver = endsHead(line, isQuoted);
    CardLine::Encoding encoding = isHeadOver ? CardLine::fromText(line).encoding() : CardLine::Plain;
    qsizetype before = line.size();
    while (!isAtEnd() && continues(encoding, line)) {
        if (!isHeadOver && endsHead(QByteArrayView(line).sliced(before), isQuoted)) {
            isHeadOver = true;
            encoding = CardLine::fromText(line).encoding();
        }
        before = line.size();
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
