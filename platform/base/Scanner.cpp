#include "platform/base/Scanner.h"

Scanner::Scanner(const QString &text) : _text(text) {}

bool Scanner::isAtEnd() const
{
    Scanner ahead(*this);
    ahead.skipWhiteSpace();
    return ahead._position == _text.size();
}

bool Scanner::scanUpToString(const QString &delimiter, QString *piece)
{
    skipWhiteSpace();
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
    skipWhiteSpace();
    if (text.isEmpty() || !QStringView(_text).mid(_position).startsWith(text))
        return false;
    _position += text.size();
    return true;
}

void Scanner::skipWhiteSpace()
{
    while (_position < _text.size() && _text[_position].isSpace())
        _position++;
}
