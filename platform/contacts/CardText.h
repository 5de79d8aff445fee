#pragma once

#include "platform/contacts/CardLine.h"

#include <optional>

// A text with cards in it, taken apart into cards and their lines. Costs the length of the text, whatever it says. Line
// ends may be of any kind, and the text in UTF-8 or, where it begins with the mark of it, in UTF-16.
class CardText
{
public:
    // Bytes of one line that holds a picture, a sound or a key, and of all other lines of a card together. A line that
    // does not fit is left out, and the rest of the card read.
    static constexpr qsizetype maximumBulkyLine = qsizetype(8) * 1024 * 1024;
    static constexpr qsizetype maximumOtherLines = qsizetype(1024) * 1024;

    struct Card
    {
        QByteArray text;             // as it stands, with its line ends, but in UTF-8 and without what was left out
        std::vector<CardLine> lines; // those between its first and its last, in UTF-8
    };

    explicit CardText(const QByteArray &text);
    // The next card, none when there are no more. One without an end is none; neither is one within another.
    std::optional<Card> next();
    // How many bytes have been gone through; where the next card begins, or something before it.
    qsizetype position() const { return _at; }
    void setPosition(qsizetype position) { _at = qBound(qsizetype(0), position, _text.size()); }

private:
    struct Line
    {
        QByteArrayView raw; // with its line ends
        QByteArray text;
    };

    QByteArrayView physicalLine();
    Line logicalLine();
    bool continues(CardLine::Encoding encoding, QByteArray &line);
    void skipInnerCard();

    QByteArray _text;
    qsizetype _at = 0;
};
