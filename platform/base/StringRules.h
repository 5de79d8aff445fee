#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringView>

// The platform's rules for text, by Unicode and never by the locale.
namespace StringRules
{
// Whether `part` occurs in `text`, without regard to letter case, canonically equivalent spellings counting as the
// same (an e with an acute accent is found as one character and as two). An empty `part` occurs nowhere; a null text
// holds nothing.
bool containsIgnoringCase(const QString &text, const QString &part);
// The form in which a text is searched without regard to letter case, as UTF-8: texts that `containsIgnoringCase`
// cannot tell apart have the same. Whoever searches many texts often keeps this form of them.
QByteArray searchForm(const QString &text);
// The same for text in UTF-8, appended to `form`. Text in the common scripts costs next to nothing.
void appendSearchForm(QByteArrayView text, QByteArray &form);
// What `containsIgnoringCase` answers for the texts that have these search forms.
bool searchFormContains(QByteArrayView text, QByteArrayView part);
// Compares without regard to letter case: negative, 0 or positive.
int compareIgnoringCase(const QString &a, const QString &b);
// The form in which texts compare, by their code units, as `compareIgnoringCase` compares the texts themselves. Whoever
// sorts many texts makes it once of each.
QString comparisonForm(const QString &text);
// Replaces percent escapes, reading the escaped bytes as UTF-8; plus signs stay. Null when an escape is broken or the
// bytes are not UTF-8.
QString replacingPercentEscapes(const QString &text);
// Writes every character that may not stand in an address as percent escapes of its UTF-8 bytes. The reserved
// characters (@ , & = ? : / ; + $ !) stay; "%" itself, "#", "[" and "]" are escaped.
QString addingPercentEscapes(const QString &text);
// The text that the bytes stand for; damaged ones as U+FFFD. QString's own call takes a U+FEFF at the beginning for a
// mark of a file's and drops it.
QString fromUtf8(QByteArrayView bytes);
// The same for one value among others in an address: the signs that would end it there, or be taken for others
// (& = ? ; +), are escaped too.
QString escapedValue(const QString &text);
// The text without the white space and line ends around it.
QString trimmed(const QString &text);
// The first `length` UTF-16 units, one less where the cut would leave half a character.
QString beginning(const QString &text, qsizetype length);
// The leading decimal integer after blanks, 0 when there is none, clamped to int's range.
int integerValue(const QString &text);
// The leading decimal number after blanks, 0 when there is none.
double doubleValue(const QString &text);
double doubleValue(QByteArrayView text);
} // namespace StringRules
