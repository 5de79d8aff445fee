#include "platform/base/Scanner.h"

Scanner::Scanner(const QString &text) : _text(text) {}

bool Scanner::isAtEnd() const
{
    return nextPosition() == _text.size();
}

bool Scanner::scanUpToString(const QString &delimiter, QString *piece)
{
    _position = nextPosition();
    qsizetype end = delimiter.isEmpty() ? -1 : _text.indexOf(delimiter, _position);
    if (end < 0)
        end = _text.size();
    if (end == _position)
        return false;
    *piece = _text.mid(_position, end - _position);
    _position = end;
    return true;
}

bool Scanner::scanString(const QString &text)
{
    _position = nextPosition();
    if (text.isEmpty() || !QStringView(_text).mid(_position).startsWith(text))
        return false;
    _position += text.size();
    return true;
}

// Where the next piece begins: behind the white space.
qsizetype Scanner::nextPosition() const
{
    qsizetype position = _position;
    while (position < _text.size() && _text[position].isSpace())
        ++position;
    return position;
}
