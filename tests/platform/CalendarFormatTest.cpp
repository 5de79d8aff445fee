#include "platform/base/CalendarFormat.h"

#include <QLocale>
#include <QTest>
#include <QTimeZone>

namespace
{
// Early in the morning of the third day of the year, in Berlin.
const CalendarDate morning(QDate(2001, 1, 3), QTime(4, 5, 6, 7), QTimeZone("Europe/Berlin"));
const CalendarDate evening(QDate(2001, 1, 3), QTime(16, 45, 56, 789), QTimeZone("Europe/Berlin"));
const CalendarDate sunday(QDate(2024, 12, 29), QTime(12, 0), QTimeZone::utc());
} // namespace

class CalendarFormatTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }

    void conversions_data();
    void conversions();
    void namesAreInTheUsersLanguage();
    void noDateGivesNoText();
    void timeOfDay_data();
    void timeOfDay();
};

void CalendarFormatTest::conversions_data()
{
    QTest::addColumn<CalendarDate>("date");
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("expected");
    QTest::newRow("%a") << morning << "%a"
                        << "Wed";
    QTest::newRow("%A") << morning << "%A"
                        << "Wednesday";
    QTest::newRow("%A, a Sunday") << sunday << "%A"
                                  << "Sunday";
    QTest::newRow("%b") << morning << "%b"
                        << "Jan";
    QTest::newRow("%B") << morning << "%B"
                        << "January";
    QTest::newRow("%d") << morning << "%d"
                        << "03";
    QTest::newRow("%1d") << morning << "%1d"
                         << "3";
    QTest::newRow("%1d of two digits") << sunday << "%1d"
                                       << "29";
    QTest::newRow("%e") << morning << "%e"
                        << "3";
    QTest::newRow("%2e") << morning << "%2e"
                         << "03";
    QTest::newRow("%F") << morning << "%F"
                        << "007";
    QTest::newRow("%F of three digits") << evening << "%F"
                                        << "789";
    QTest::newRow("%1F") << morning << "%1F"
                         << "7";
    QTest::newRow("%H") << morning << "%H"
                        << "04";
    QTest::newRow("%1H") << morning << "%1H"
                         << "4";
    QTest::newRow("%H in the evening") << evening << "%H"
                                       << "16";
    QTest::newRow("%I") << morning << "%I"
                        << "04";
    QTest::newRow("%1I in the evening") << evening << "%1I"
                                        << "4";
    QTest::newRow("%I at noon") << sunday << "%I"
                                << "12";
    QTest::newRow("%I at midnight") << sunday.addSecs(-12 * 3600) << "%I"
                                    << "12";
    QTest::newRow("%j") << morning << "%j"
                        << "003";
    QTest::newRow("%1j") << morning << "%1j"
                         << "3";
    QTest::newRow("%j of a leap year") << sunday << "%j"
                                       << "364";
    QTest::newRow("%m") << morning << "%m"
                        << "01";
    QTest::newRow("%1m") << morning << "%1m"
                         << "1";
    QTest::newRow("%M") << morning << "%M"
                        << "05";
    QTest::newRow("%p") << morning << "%p"
                        << "AM";
    QTest::newRow("%p in the evening") << evening << "%p"
                                       << "PM";
    QTest::newRow("%p at noon") << sunday << "%p"
                                << "PM";
    QTest::newRow("%S") << morning << "%S"
                        << "06";
    QTest::newRow("%w") << morning << "%w"
                        << "3";
    QTest::newRow("%w of a Sunday") << sunday << "%w"
                                    << "0";
    QTest::newRow("%x") << morning << "%x"
                        << "1/3/01 CET";
    QTest::newRow("%X") << morning << "%X" << QLocale().toString(QTime(4, 5), QLocale::ShortFormat);
    QTest::newRow("%c") << morning << "%c" << QLocale().toString(QTime(4, 5), QLocale::ShortFormat) + " 1/3/01 CET";
    QTest::newRow("%y") << morning << "%y"
                        << "01";
    QTest::newRow("%1y") << morning << "%1y"
                         << "1";
    QTest::newRow("%Y") << morning << "%Y"
                        << "2001";
    QTest::newRow("%Z") << morning << "%Z"
                        << "Central European Standard Time";
    QTest::newRow("%z") << morning << "%z"
                        << "+0100";
    QTest::newRow("%z in the west") << CalendarDate(QDate(2001, 1, 3), QTime(4, 5), QTimeZone(-(3 * 60 + 30) * 60))
                                    << "%z"
                                    << "-0330";
    QTest::newRow("%%") << morning << "100%%"
                        << "100%";
    QTest::newRow("several") << evening << "%A, %1d. %B %Y, %H:%M"
                             << "Wednesday, 3. January 2001, 16:45";
    QTest::newRow("text alone") << morning << "today"
                                << "today";
    QTest::newRow("nothing") << morning << ""
                             << "";
    QTest::newRow("no conversion") << morning << "%q %d"
                                   << "%q 03";
    QTest::newRow("a sign at the end") << morning << "%d %"
                                       << "03 %";
    QTest::newRow("a digit at the end") << morning << "%d %1"
                                        << "03 %1";
    QTest::newRow("sign, then a conversion's letter") << morning << "%%d"
                                                      << "%d";
}

void CalendarFormatTest::conversions()
{
    QFETCH(CalendarDate, date);
    QFETCH(QString, format);
    QFETCH(QString, expected);
    QCOMPARE(CalendarFormat::string(date, format), expected);
}

void CalendarFormatTest::namesAreInTheUsersLanguage()
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    const QString text = CalendarFormat::string(morning, "%A, %1d. %B %Y, %x");
    QLocale::setDefault(before);
    QCOMPARE(text, QString("Mittwoch, 3. Januar 2001, 03.01.01 CET").replace("CET", morning.timeZoneAbbreviation()));
}

void CalendarFormatTest::noDateGivesNoText()
{
    QVERIFY(CalendarFormat::string(CalendarDate(), "%d today").isEmpty());
}

void CalendarFormatTest::timeOfDay_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<bool>("depends");
    for (const char *conversion : {"%c", "%F", "%H", "%I", "%M", "%p", "%S", "%x", "%X", "%Z", "%z", "%1H"})
        QTest::newRow(conversion) << QString("%d ") + conversion << true;
    for (const char *conversion :
         {"%a", "%A", "%b", "%B", "%d", "%e", "%j", "%m", "%w", "%y", "%Y", "%%H", "%q", "H", "", "%", "%1d"})
        QTest::newRow(conversion) << QString::fromLatin1(conversion) << false;
}

void CalendarFormatTest::timeOfDay()
{
    QFETCH(QString, format);
    QFETCH(bool, depends);
    QCOMPARE(CalendarFormat::dependsOnTimeOfDay(format), depends);
}

QTEST_MAIN(CalendarFormatTest)
#include "CalendarFormatTest.moc"
