#pragma once

#include <QString>
#include <QStringList>

// What telephone numbers and e-mail addresses are for, in words that are the same whatever program wrote the card:
// "home", "work", "mobile", "main", "fax", "home fax", "work fax", "pager", "car", "video", "text", "other". Everything
// else is the user's own word.
namespace ContactLabels
{
// By the types of a value, in small letters; empty when they say nothing about it.
QString ofTypes(const QStringList &types);
// By the label that stands beside the value: the program's own words ("_$!<Home>!$_") as those above, where they are
// among them, and what the user wrote as it stands.
QString ofText(const QString &text);
} // namespace ContactLabels
