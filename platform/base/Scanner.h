#pragma once

#include <QString>

// Reads a text piece by piece, as the mail-address parser does. White space and line ends before each piece are
// skipped.
class Scanner
{
public:
    explicit Scanner(const QString &text);

    // Whether nothing but white space is left.
    bool isAtEnd() const;
    // Takes the text up to (not including) `delimiter`, or all that is left when it does not occur, into `piece`.
    // False, and `piece` untouched, when that would be empty.
    bool scanUpToString(const QString &delimiter, QString *piece);
    // Steps over `text` when it stands next; false otherwise.
    bool scanString(const QString &text);

private:
    qsizetype nextPosition() const;

    QString _text;
    qsizetype _position = 0;
};
