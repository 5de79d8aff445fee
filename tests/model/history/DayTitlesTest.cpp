#include "model/history/DayTitles.h"
#include "platform/base/CalendarDate.h"

#include <QLocale>
#include <QRandomGenerator>
#include <QTest>
#include <ctime>

namespace
{
constexpr qint64 hour = qint64(60) * 60 * 1000;

void setTimeZone(const QByteArray &zone)
{
    qputenv("TZ", zone);
    tzset();
}

qint64 millisecondsAt(const char *text)
{
    return QDateTime::fromString(QLatin1String(text), Qt::ISODate).toMSecsSinceEpoch();
}

QString dayAt(qint64 milliseconds)
{
    return QLocale().toString(QDateTime::fromMSecsSinceEpoch(milliseconds).date(), QLocale::ShortFormat);
}
} // namespace

class DayTitlesTest : public QObject
{
    Q_OBJECT

private:
    QByteArray _zone = qgetenv("TZ");

private Q_SLOTS:
    void init() { QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany)); }
    void cleanup() { setTimeZone(_zone); }

    void titlesOfDays();
    void sameDaySameNumber();
    void daysOfTheSameTitleAreOne();
    void clocksChange_data();
    void clocksChange();
    void manyTimesInAnyOrder_data();
    void manyTimesInAnyOrder();
    void farAway();
    void currentOnesFollowTheTimeZone();
    void currentOnesFollowTheFormat();
};

void DayTitlesTest::titlesOfDays()
{
    setTimeZone("UTC");
    DayTitles titles;
    QCOMPARE(titles.title(titles.numberAt(0)), QString("01.01.70"));
    QCOMPARE(titles.title(titles.numberAt(-1)), QString("31.12.69"));
    QCOMPARE(titles.title(titles.numberAt(millisecondsAt("2004-02-29T12:00:00Z"))), QString("29.02.04"));
}

void DayTitlesTest::sameDaySameNumber()
{
    setTimeZone("UTC");
    DayTitles titles;
    const qint64 midnight = millisecondsAt("2004-02-29T00:00:00Z");
    const unsigned day = titles.numberAt(midnight);
    QCOMPARE(titles.numberAt(midnight + 24 * hour - 1), day);
    QVERIFY(titles.numberAt(midnight - 1) != day);
    QVERIFY(titles.numberAt(midnight + 24 * hour) != day);
    QCOMPARE(titles.numberAt(midnight + 12 * hour), day);
    QCOMPARE(titles.title(day), QString("29.02.04"));
}

void DayTitlesTest::daysOfTheSameTitleAreOne()
{
    setTimeZone("UTC");
    DayTitles titles;
    // The user's short form has two digits for the year.
    QCOMPARE(titles.numberAt(millisecondsAt("2004-02-29T12:00:00Z")),
             titles.numberAt(millisecondsAt("1904-02-29T12:00:00Z")));
}

void DayTitlesTest::clocksChange_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<qint64>("around");
    const auto row = [](const QByteArray &zone, const char *time) {
        QTest::newRow(zone + " " + time) << zone << millisecondsAt(time);
    };
    row("Europe/Berlin", "2004-03-28T01:00:00Z");     // forward
    row("Europe/Berlin", "2004-10-31T01:00:00Z");     // back
    row("America/Sao_Paulo", "2004-11-02T03:00:00Z"); // forward at midnight: the day begins at one
    row("America/Sao_Paulo", "2005-02-20T02:00:00Z"); // back at midnight: an hour of the day before comes twice
    row("Asia/Beirut", "2004-03-27T22:00:00Z");
    row("Australia/Lord_Howe", "2004-10-30T15:30:00Z"); // by half an hour
    row("Pacific/Apia", "2011-12-30T10:00:00Z");        // a day that there was not
    row("America/Juneau", "1867-10-19T00:00:00Z");      // a day that there was twice
    row("Asia/Kathmandu", "1985-12-31T18:30:00Z");
    row("Europe/Amsterdam", "1937-06-30T23:40:00Z");
    row("Africa/Monrovia", "1972-01-07T00:44:30Z");
}

void DayTitlesTest::clocksChange()
{
    QFETCH(QByteArray, zone);
    QFETCH(qint64, around);
    setTimeZone(zone);
    for (const int step : {1, -1}) {
        DayTitles titles;
        for (qint64 offset = -60 * hour; offset <= 60 * hour; offset += hour / 4) {
            for (const qint64 time : {around + step * offset, around + step * offset - 1}) {
                const QString title = titles.title(titles.numberAt(time));
                QVERIFY2(title == dayAt(time), qPrintable(QDateTime::fromMSecsSinceEpoch(time).toString() + title));
            }
        }
    }
}

void DayTitlesTest::manyTimesInAnyOrder_data()
{
    QTest::addColumn<QByteArray>("zone");
    for (const char *zone : {"UTC", "Europe/Berlin", "America/Sao_Paulo", "Asia/Kolkata", "Pacific/Kiritimati",
                             "America/St_Johns", "Antarctica/Troll"})
        QTest::newRow(zone) << QByteArray(zone);
}

void DayTitlesTest::manyTimesInAnyOrder()
{
    QFETCH(QByteArray, zone);
    setTimeZone(zone);
    QRandomGenerator random(1);
    DayTitles titles;
    for (int round = 0; round < 5000; ++round) {
        // Four years about 2004, then any time between 1900 and 2100.
        const double share = random.generateDouble() - 0.5;
        const qint64 time = round < 3000 ? qint64(1.08e12 + share * 1.26e11) : qint64(9.46e11 + share * 6.3e12);
        const unsigned number = titles.numberAt(time);
        QCOMPARE(titles.title(number), dayAt(time));
        QCOMPARE(titles.numberAt(time), number);
    }
}

void DayTitlesTest::farAway()
{
    for (const char *zone : {"UTC", "Europe/Berlin"}) {
        setTimeZone(zone);
        DayTitles titles;
        for (const double seconds : {2.5e11, -2.5e11, 1e11, -1e11, 1e10, -1e10, -6.3e10}) {
            for (const qint64 offset : {0, 1, -1}) {
                const qint64 time = qint64(seconds * 1000.0) + offset * 24 * hour;
                QCOMPARE(titles.title(titles.numberAt(time)), dayAt(time));
            }
        }
        QVERIFY(!titles.title(titles.numberAt(0)).isEmpty());
    }
}

void DayTitlesTest::currentOnesFollowTheTimeZone()
{
    const qint64 time = millisecondsAt("2004-02-29T23:30:00Z");
    const auto title = [time] { return DayTitles::current().title(DayTitles::current().numberAt(time)); };
    setTimeZone("UTC");
    QCOMPARE(title(), QString("29.02.04"));
    QCOMPARE(title(), QString("29.02.04"));
    setTimeZone("Europe/Berlin");
    QCOMPARE(title(), QString("01.03.04"));
    setTimeZone("UTC");
    QCOMPARE(title(), QString("29.02.04"));
}

void DayTitlesTest::currentOnesFollowTheFormat()
{
    setTimeZone("UTC");
    const auto title = [] { return DayTitles::current().title(DayTitles::current().numberAt(0)); };
    QCOMPARE(title(), QString("01.01.70"));
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    QCOMPARE(title(), dayAt(0));
    QVERIFY(title() != QString("01.01.70"));
}

QTEST_APPLESS_MAIN(DayTitlesTest)
#include "DayTitlesTest.moc"
