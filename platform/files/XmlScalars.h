#pragma once

#include <QString>
#include <QVariant>

// The numbers, dates and data of the XML form of a property list, by the text of their elements; blanks around it do
// not matter. An invalid variant when the text is no such value.
namespace XmlScalars
{
// Decimal or hexadecimal, as far as 64 bits reach, with or without a sign.
QVariant integer(QString text);
QVariant real(QString text);
// As "2004-02-29T12:34:56Z"; with a minus sign before Christ.
QVariant date(const QString &text);
// In base 64, on any number of lines.
QVariant data(const QString &text);
} // namespace XmlScalars
