#include "model/history/DayTitles.h"

#include "core/settings/WayfoldDefaults.h"
#include "platform/base/CalendarFormat.h"

#include <QLocale>
#include <QTimeZone>
#include <algorithm>

namespace
{
// What the titles depend on.
struct Circumstances
{
    QByteArray timeZone = QTimeZone::systemTimeZoneId();
    QLocale locale;
    QString format = WayfoldDefaults::fetchPrefObjectForKey(QStringLiteral("NSShortDateFormatString")).toString();

    bool operator==(const Circumstances &other) const
    {
        return timeZone == other.timeZone && locale == other.locale && format == other.format;
    }
};
} // namespace

DayTitles &DayTitles::current()
{
    static Circumstances known;
    static DayTitles titles(known.format);
    if (const Circumstances present; !(present == known)) {
        titles = DayTitles(present.format);
        known = present;
    }
    return titles;
}

DayTitles::DayTitles(const QString &format)
    : _format(format)
    , _dayHasOneTitle(!CalendarFormat::dependsOnTimeOfDay(format))
{}

QString DayTitles::titleAt(const CalendarDate &date) const
{
    return _format.isEmpty() ? QLocale().toString(date.date(), QLocale::ShortFormat)
                             : CalendarFormat::string(date, _format);
}

unsigned DayTitles::numberAt(qint64 milliseconds)
{
    if (const Day *known = knownDay(milliseconds))
        return known->number;
    const CalendarDate date = CalendarDate::fromMSecsSinceEpoch(milliseconds);
    const unsigned number = numberOfTitle(titleAt(date));
    if (!_dayHasOneTitle)
        return number;

    // A day on which the clocks change is shorter or longer; its entries are looked at one by one.
    constexpr qint64 wholeDay = qint64(24) * 60 * 60 * 1000;
    const qint64 begin = milliseconds - date.time().msecsSinceStartOfDay();
    const bool isWhole = CalendarDate::fromMSecsSinceEpoch(begin).date() == date.date() &&
                         CalendarDate::fromMSecsSinceEpoch(begin + wholeDay - 1).date() == date.date();
    if (isWhole) {
        const auto next = std::upper_bound(_days.begin(), _days.end(), begin,
                                           [](qint64 time, const Day &day) { return time < day.begin; });
        _latest = std::size_t(_days.insert(next, {begin, begin + wholeDay, number}) - _days.begin());
    }
    return number;
}

// Entries come in the order of their visits, so the day is mostly that of the last one, or one beside it.
const DayTitles::Day *DayTitles::knownDay(qint64 milliseconds)
{
    const auto isIn = [milliseconds](const Day &day) { return milliseconds >= day.begin && milliseconds < day.end; };
    if (_latest < _days.size() && isIn(_days[_latest]))
        return &_days[_latest];
    const auto next = std::upper_bound(_days.begin(), _days.end(), milliseconds,
                                       [](qint64 time, const Day &day) { return time < day.begin; });
    if (next == _days.begin() || !isIn(*std::prev(next)))
        return nullptr;
    _latest = std::size_t(std::prev(next) - _days.begin());
    return &_days[_latest];
}

unsigned DayTitles::numberOfTitle(const QString &title)
{
    const auto known = _numbers.constFind(title);
    if (known != _numbers.constEnd())
        return *known;
    const unsigned number = unsigned(_titles.size());
    _titles.push_back(title);
    _numbers.insert(title, number);
    return number;
}
