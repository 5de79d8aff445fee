#pragma once

#include <QString>

// What a telephone number or an e-mail address is for, as the user reads it.
namespace ContactLabel
{
// A label that cards have in common ("home", "work fax", ...) in the user's language, the user's own as it stands, and
// in place of an empty one the word for its kind, which is a key of the translations.
QString readable(const QString &label, const QString &kind);
} // namespace ContactLabel
