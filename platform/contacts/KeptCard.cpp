#include "platform/contacts/KeptCard.h"

#include <QHash>
#include <algorithm>

namespace
{
constexpr qsizetype longLine = 1024;          // bytes; an address of a picture is shorter
constexpr qsizetype largestPackedText = 8192; // bytes
constexpr qsizetype lineLength = 75;          // of a card, as its form has it

// In capitals, "PHOTO" of "item1.photo;encoding=b:...".
QByteArray nameOf(QByteArrayView line)
{
    const auto *const end =
        std::find_if(line.cbegin(), line.cend(), [](char sign) { return sign == ';' || sign == ':'; });
    const QByteArrayView name = line.first(end - line.cbegin());
    return name.sliced(name.lastIndexOf('.') + 1).toByteArray().toUpper();
}

bool isBulky(const QByteArray &name)
{
    return name == "PHOTO" || name == "LOGO" || name == "SOUND" || name == "KEY";
}

// The card without the properties for which this says no. What folds a line goes with the line.
template <class Predicate>
QByteArray linesOf(const QByteArray &card, Predicate isKept)
{
    QByteArray kept;
    qsizetype start = 0;
    while (start < card.size()) {
        qsizetype end = start;
        do {
            end = card.indexOf('\n', end);
            end = end < 0 ? card.size() : end + 1;
        } while (end < card.size() && (card.at(end) == ' ' || card.at(end) == '\t'));
        const QByteArrayView line = QByteArrayView(card).sliced(start, end - start);
        if (isKept(line))
            kept += line;
        start = end;
    }
    return kept;
}

// With line ends, and blanks at the beginning of all lines but the first.
QByteArray folded(const QByteArray &line)
{
    QByteArray lines = line.first(std::min(lineLength, line.size())) + "\r\n";
    for (qsizetype at = lineLength; at < line.size(); at += lineLength - 1)
        lines += ' ' + line.mid(at, lineLength - 1) + "\r\n";
    return lines;
}

QByteArray typeOf(const QByteArray &picture)
{
    if (picture.startsWith("\x89PNG"))
        return ";TYPE=PNG";
    if (picture.startsWith("\xff\xd8"))
        return ";TYPE=JPEG";
    return picture.startsWith("GIF8") ? ";TYPE=GIF" : "";
}
} // namespace

KeptCard::KeptCard(ContactCards::Card card, const QString &serviceIdentifier)
    : _serviceIdentifier(serviceIdentifier)
    , _hash(qHash(card.text))
{
    const QByteArray text = linesOf(card.text, [this](QByteArrayView line) {
        const QByteArray name = nameOf(line);
        if (!isBulky(name))
            return true;
        _hasPicture = _hasPicture || name == "PHOTO";
        _isCut = _isCut || line.size() > longLine;
        return line.size() <= longLine;
    });
    _packedText = qCompress(text);
    if (_packedText.size() > largestPackedText) {
        _packedText.clear();
        _isCut = true;
    }
    _packedText.squeeze();
    _record = std::make_shared<const ContactRecord>(std::move(card.record));
    if (_serviceIdentifier == _record->uniqueId)
        _serviceIdentifier = _record->uniqueId; // one text for both
}

bool KeptCard::isSameAs(const KeptCard &other) const
{
    return _hash == other._hash && _packedText == other._packedText;
}

QByteArray KeptCard::withPicture(const QByteArray &card, const QByteArray &picture)
{
    const QByteArray line = "PHOTO;ENCODING=b" + typeOf(picture) + ":" + picture.toBase64();
    const QByteArray others = linesOf(card, [](QByteArrayView part) { return nameOf(part) != "PHOTO"; });
    const qsizetype end = others.lastIndexOf("END:VCARD");
    return end < 0 ? card : others.first(end) + folded(line) + others.sliced(end);
}
