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
        qsizetype start = 0;         // of its first line
        QByteArray text;             // as it stands, with its line ends, but in UTF-8 and without what was left out
        std::vector<CardLine> lines; // those between its first and its last, in UTF-8
    };

    explicit CardText(const QByteArray &text);
    // The next card, none when there are no more. One without an end is none; neither is one within another.
    std::optional<Card> next();
    // The same, but goes through no more than so many bytes and the line that they end in; where there is more, the
    // next call goes on.
    std::optional<Card> next(qsizetype mostBytes);
    bool isAtEnd() const { return _at >= _text.size(); }
    // Goes to where a card starts.
    void setPosition(qsizetype position);

private:
    struct Line
    {
        QByteArrayView raw; // with its line ends
        QByteArray text;
    };

    // Where in a text the next line stands.
    enum Place {
        Outside, // of all cards
        Inside,
        BehindAgent, // in a card, where another may begin that is not looked at
        InnerCard,
    };

    bool takeLine();
    void takeLineOfCard(const Line &source);
    QByteArrayView physicalLine();
    Line logicalLine();
    bool continues(CardLine::Encoding encoding, QByteArray &line);

    QByteArray _text;
    qsizetype _at = 0;
    Place _place = Outside;
    Card _card;          // that is being read
    qsizetype _room = 0; // for its other lines
};
