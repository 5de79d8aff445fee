#include "platform/contacts/CardText.h"

#include <QStringDecoder>
#include <algorithm>

namespace
{
constexpr QByteArrayView quotedPrintable = "QUOTED-PRINTABLE";
constexpr QByteArrayView base64 = "BASE64";

bool isEqual(QByteArrayView a, QByteArrayView b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

// Without marks of its encoding, and without what no C string can hold.
QByteArray plainText(const QByteArray &text)
{
    const auto encoding = QStringConverter::encodingForData(text);
    if (encoding && *encoding != QStringConverter::Utf8)
        return QString(QStringDecoder(*encoding).decode(text)).toUtf8().replace('\0', QByteArray());
    QByteArray plain = encoding ? text.mid(3) : text;
    return plain.contains('\0') ? plain.replace('\0', QByteArray()) : plain;
}

// Where the parameters end: at the first colon that is in no quotes. -1: there is none.
qsizetype headLength(QByteArrayView line)
{
    bool isQuoted = false;
    for (qsizetype i = 0; i < line.size(); ++i) {
        if (line[i] == '"')
            isQuoted = !isQuoted;
        else if (line[i] == ':' && !isQuoted)
            return i;
    }
    return -1;
}

QByteArrayList headOf(QByteArrayView line)
{
    return line.first(std::max<qsizetype>(0, headLength(line))).toByteArray().toUpper().split(';');
}

// The encoding that the line names, of those that go on in the next lines in a way of their own.
QByteArrayView encodingOf(QByteArrayView line)
{
    const QByteArrayList head = headOf(line);
    for (qsizetype i = 1; i < head.size(); ++i) {
        const QByteArray parameter = head.at(i).trimmed();
        const QByteArray value = parameter.startsWith("ENCODING=") ? parameter.mid(9) : parameter;
        if (value == quotedPrintable)
            return quotedPrintable;
        if (value == base64 || parameter == "ENCODING=B")
            return base64;
    }
    return {};
}

// Bytes that are no UTF-8 are in the character set that the line names, else in the one that programs of that time
// wrote without naming it.
QByteArray inUtf8(const QByteArray &line)
{
    if (line.isValidUtf8())
        return line;
    const QByteArrayList head = headOf(line);
    for (qsizetype i = 1; i < head.size(); ++i) {
        const QByteArray parameter = head.at(i).trimmed();
        if (parameter.startsWith("CHARSET=")) {
            QStringDecoder decoder(parameter.mid(8).constData());
            if (decoder.isValid())
                return QString(decoder.decode(line)).toUtf8();
        }
    }
    return QString::fromUtf8(line).toUtf8();
}

bool isBeginning(QByteArrayView line)
{
    return isEqual(line.trimmed(), "BEGIN:VCARD");
}

bool isEnd(QByteArrayView line)
{
    return isEqual(line.trimmed(), "END:VCARD");
}

bool isBulky(const QByteArray &name)
{
    return name == "PHOTO" || name == "LOGO" || name == "SOUND" || name == "KEY";
}
} // namespace

CardText::CardText(const QByteArray &text) : _text(plainText(text)) {}

QByteArray CardText::nameOfLine(QByteArrayView line)
{
    const auto *const end =
        std::find_if(line.cbegin(), line.cend(), [](char sign) { return sign == ';' || sign == ':'; });
    const QByteArrayView name = line.first(end - line.cbegin());
    return name.sliced(name.lastIndexOf('.') + 1).trimmed().toByteArray().toUpper();
}

std::optional<CardText::Card> CardText::next()
{
    Card card;
    qsizetype room = maximumOtherLines;
    bool isInside = false;
    bool isAgent = false;
    while (_at < _text.size()) {
        const Line line = logicalLine();
        if (isBeginning(line.text)) {
            if (isAgent) {
                skipInnerCard();
                continue;
            }
            card = {line.raw.toByteArray(), {}};
            room = maximumOtherLines;
            isInside = true;
            continue;
        }
        if (!isInside)
            continue;
        if (isEnd(line.text)) {
            card.text += line.raw;
            return card;
        }
        const QByteArray name = nameOfLine(line.text);
        isAgent = name == "AGENT" && line.text.trimmed().endsWith(':');
        if (name.isEmpty() || isAgent)
            continue;
        if (isBulky(name) ? line.text.size() > maximumPictureLine : line.text.size() > room)
            continue;
        if (!isBulky(name))
            room -= line.text.size();
        const QByteArray text = inUtf8(line.text);
        card.text += line.raw.isValidUtf8() ? line.raw.toByteArray() : text + "\r\n";
        card.lines.append(text);
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
    const QByteArray encoding = encodingOf(line).toByteArray();
    while (_at < _text.size() && continues(encoding, line)) {
    }
    return {QByteArrayView(_text).sliced(start, _at - start), line};
}

// Appends the next physical line when it belongs to the one before.
bool CardText::continues(QByteArrayView encoding, QByteArray &line)
{
    const qsizetype before = _at;
    const QByteArrayView next = physicalLine();
    const bool isFolded = next.startsWith(' ') || next.startsWith('\t');
    const bool isSoft = encoding == quotedPrintable && line.endsWith('=') && !isEnd(next);
    // Some phones do not set the lines of a picture in.
    const bool isUnindented = encoding == base64 && !next.trimmed().isEmpty() && !next.contains(':');
    if (isSoft)
        line.chop(1);
    if (isSoft || isUnindented)
        line += next;
    else if (isFolded)
        line += next.sliced(1);
    else
        _at = before;
    return isSoft || isFolded || isUnindented;
}

// A card in a card of version 2.1 is that of somebody's secretary.
void CardText::skipInnerCard()
{
    while (_at < _text.size()) {
        if (isEnd(logicalLine().text))
            return;
    }
}
