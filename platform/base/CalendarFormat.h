#pragma once

#include "platform/base/CalendarDate.h"

#include <QString>

// Dates as text in a format of % conversions, which are mostly those of strftime; names are in the user's language.
//
//     CalendarFormat::string(date, "%A, %e. %B %Y")   // "Wednesday, 3. January 2001"
//
//     %a %A  day of the week, short and long        %H %I  hour of 24, and of 12
//     %b %B  month, short and long                  %M %S  minute, second
//     %d %e  day of the month, %e without a 0       %F     milliseconds
//     %j     day of the year                        %p     AM or PM
//     %m     month                                  %X %x  time and date as the locale has them, %x with the time zone
//     %w     day of the week, Sunday is 0           %c     %X and %x
//     %y %Y  year without and with century          %Z %z  time zone's name, and its offset as in "+0100"
//     %%     the sign itself
//
// A digit after the sign is the least number of digits: %1d leaves the 0 in front of a 3 away. What is no conversion
// stands as it is.
class CalendarFormat
{
public:
    // Empty for none as the date.
    static QString string(const CalendarDate &date, const QString &format);
    // Whether two points in time of one day can give different texts.
    static bool dependsOnTimeOfDay(const QString &format);
};
