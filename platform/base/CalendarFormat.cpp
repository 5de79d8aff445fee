#include "platform/base/CalendarFormat.h"

#include <QLocale>
#include <QTimeZone>
#include <functional>

namespace
{
// A piece of a format: text that stands for itself, or one conversion.
struct Piece
{
    QStringView text;
    QChar conversion; // null: none
    int digits = -1;  // the least number of them, if the format says so
};

Piece pieceAt(QStringView format, qsizetype start)
{
    if (format[start] != u'%') {
        const qsizetype sign = format.indexOf(u'%', start);
        return {format.sliced(start, (sign < 0 ? format.size() : sign) - start), {}};
    }
    qsizetype end = start + 1;
    int digits = -1;
    if (end < format.size() && format[end] >= u'0' && format[end] <= u'9')
        digits = format[end++].digitValue();
    if (end == format.size())
        return {format.sliced(start), {}};
    return {format.sliced(start, end + 1 - start), format[end], digits};
}

void forEachPiece(QStringView format, const std::function<void(const Piece &piece)> &visit)
{
    for (qsizetype at = 0; at < format.size();) {
        const Piece piece = pieceAt(format, at);
        visit(piece);
        at += piece.text.size();
    }
}

QString offsetText(int seconds)
{
    const int minutes = std::abs(seconds) / 60;
    return QStringLiteral("%1%2%3")
        .arg(QLatin1Char(seconds < 0 ? '-' : '+'))
        .arg(minutes / 60, 2, 10, QLatin1Char('0'))
        .arg(minutes % 60, 2, 10, QLatin1Char('0'));
}

QString zoneName(const CalendarDate &date)
{
    const QString name = date.timeZone().displayName(date, QTimeZone::LongName);
    return name.isEmpty() ? date.timeZoneAbbreviation() : name;
}

QString half(const QTime &time)
{
    const QLocale locale;
    return time.hour() < 12 ? locale.amText() : locale.pmText();
}

// Null when that is no conversion to a number.
QString number(const CalendarDate &date, const Piece &piece)
{
    const QDate day = date.date();
    const QTime time = date.time();
    const auto digits = [&piece](int value, int usual) {
        return QString::number(value).rightJustified(piece.digits < 0 ? usual : piece.digits, u'0');
    };
    switch (piece.conversion.unicode()) {
    case u'd':
        return digits(day.day(), 2);
    case u'e':
        return digits(day.day(), 1);
    case u'F':
        return digits(time.msec(), 3);
    case u'H':
        return digits(time.hour(), 2);
    case u'I':
        return digits((time.hour() + 11) % 12 + 1, 2);
    case u'j':
        return digits(day.dayOfYear(), 3);
    case u'm':
        return digits(day.month(), 2);
    case u'M':
        return digits(time.minute(), 2);
    case u'S':
        return digits(time.second(), 2);
    case u'w':
        return digits(day.dayOfWeek() % 7, 1);
    case u'y':
        return digits(std::abs(day.year()) % 100, 2);
    case u'Y':
        return digits(day.year(), 1);
    default:
        return {};
    }
}

// What is no conversion stands for itself.
QString text(const CalendarDate &date, const Piece &piece)
{
    const QLocale locale;
    const QDate day = date.date();
    switch (piece.conversion.unicode()) {
    case u'a':
        return locale.dayName(day.dayOfWeek(), QLocale::ShortFormat);
    case u'A':
        return locale.dayName(day.dayOfWeek(), QLocale::LongFormat);
    case u'b':
        return locale.monthName(day.month(), QLocale::ShortFormat);
    case u'B':
        return locale.monthName(day.month(), QLocale::LongFormat);
    case u'c':
        return CalendarFormat::string(date, QStringLiteral("%X %x"));
    case u'p':
        return half(date.time());
    case u'x':
        return locale.toString(day, QLocale::ShortFormat) + u' ' + date.timeZoneAbbreviation();
    case u'X':
        return locale.toString(date.time(), QLocale::ShortFormat);
    case u'z':
        return offsetText(date.offsetFromUtc());
    case u'Z':
        return zoneName(date);
    case u'%':
        return QStringLiteral("%");
    default:
        return piece.text.toString();
    }
}
} // namespace

QString CalendarFormat::string(const CalendarDate &date, const QString &format)
{
    if (!date.isValid())
        return {};
    QString result;
    forEachPiece(format, [&](const Piece &piece) {
        const QString digits = number(date, piece);
        result += digits.isNull() ? text(date, piece) : digits;
    });
    return result;
}

bool CalendarFormat::dependsOnTimeOfDay(const QString &format)
{
    // The time zone changes on the days on which the clocks do.
    constexpr QStringView dependent = u"cFHIMpSxXzZ";
    bool depends = false;
    forEachPiece(format, [&](const Piece &piece) { depends |= dependent.contains(piece.conversion); });
    return depends;
}
