#pragma once

#include <QString>
#include <QUrl>

// What a user types into the address field, made an address, and back.
namespace Address
{
// "example.com" gets "https://"; "localhost:8000", numeric hosts and single names get "http://"; paths become file
// addresses; what has a scheme already is left as it is. Invalid (`!isValid()`) when the text is no address, as several
// words are not, or is a script.
QUrl fromUserInput(const QString &text);
// As the address field shows it: "" for an empty page and for the built-in start page.
QString displayText(const QUrl &url);
} // namespace Address
