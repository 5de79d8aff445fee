#pragma once

#include <QString>
#include <QStringList>

// The labels of telephone numbers and e-mail addresses, in the words of ContactValue.
namespace ContactLabels
{
// By the types of a value; empty when they say nothing about it.
QString ofTypes(const QStringList &types);
// By the label that stands beside the value: the program's own words ("_$!<Home>!$_") as those above, where they are
// among them, and what the user wrote as it stands.
QString ofText(const QString &text);
} // namespace ContactLabels
