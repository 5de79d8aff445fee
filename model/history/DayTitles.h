#pragma once

#include "platform/base/CalendarDate.h"

#include <QHash>
#include <QString>
#include <deque>
#include <vector>

// The titles of the days that entries were visited on, each with a number. Entries whose days have the same title
// belong to the same day.
//
// One table serves all lists, since a grouping asks it for a hundred thousand points in time in a row, and again after
// every visit: it keeps when each day that it was asked for begins and ends.
class DayTitles
{
public:
    // Days are written in the user's short format (see CalendarFormat) or, when that is empty, in the locale's.
    explicit DayTitles(const QString &format = QString());
    // In the format of the user's settings. Anew whenever the time zone, or the way in which the user writes a day, is
    // another than before.
    static DayTitles &current();

    // Of the local day of a point in time, in milliseconds since 1970, GMT.
    unsigned numberAt(qint64 milliseconds);
    const QString &title(unsigned number) const { return _titles[number]; }

private:
    struct Day
    {
        qint64 begin = 0;
        qint64 end = 0; // exclusive
        unsigned number = 0;
    };

    const Day *knownDay(qint64 milliseconds);
    QString titleAt(const CalendarDate &date) const;
    unsigned numberOfTitle(const QString &title);

    QString _format;
    bool _dayHasOneTitle;    // whatever the time of day
    std::deque<Day> _days;   // ascending; most are added in front
    std::size_t _latest = 0; // the day that was asked for last
    std::vector<QString> _titles;
    QHash<QString, unsigned> _numbers;
};
