#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QByteArrayView>
#include <optional>

// A text with cards in it, taken apart into cards and their lines before anything in them is understood. Costs the
// length of the text, whatever it says. Line ends may be of any kind, and the text in UTF-8 or, where it begins with
// the mark of it, in UTF-16.
class CardText
{
public:
    // What is longer is left out of the card, line by line, and the rest of the card read: as many bytes in one line
    // that holds a picture, a sound or a key, and as many in all other lines together.
    static constexpr qsizetype maximumPictureLine = 8 * 1024 * 1024;
    static constexpr qsizetype maximumOtherLines = 1024 * 1024;

    struct Card
    {
        QByteArray text;      // as it stands, its line ends too, but in UTF-8 and without what was left out
        QByteArrayList lines; // those between its first and its last, unfolded, without line ends, in UTF-8
    };

    explicit CardText(const QByteArray &text);
    // The next card, none when there are no more. One without an end is none; neither is one within another.
    std::optional<Card> next();

    // The name of a line's property in capitals, "EMAIL" of "item1.email;type=home:...".
    static QByteArray nameOfLine(QByteArrayView line);

private:
    struct Line
    {
        QByteArrayView raw; // with its line ends
        QByteArray text;
    };

    QByteArrayView physicalLine();
    Line logicalLine();
    bool continues(QByteArrayView encoding, QByteArray &line);
    void skipInnerCard();

    QByteArray _text;
    qsizetype _at = 0;
};
