#pragma once

#include <QString>

// A person's name in parts; null for those that it has not.
struct PersonName
{
    QString first;
    QString last;
    QString suffix;

    bool isNone() const { return first.isNull() && last.isNull(); }
    // Out of a name in one piece: "Dr. Ann van Beek Jr.", "Miller, Ann".
    static PersonName fromText(const QString &text);
};
