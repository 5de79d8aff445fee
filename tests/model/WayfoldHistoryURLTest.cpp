#include "tests/model/ModelTestSupport.h"
#include "tests/support/FakeHost.h"

#include <QtTest>
#include <ctime>

namespace
{
// Where the user is, until this goes.
class TimeZone
{
public:
    explicit TimeZone(const QByteArray &name) { set(name); }
    ~TimeZone() { set(_before); }
    TimeZone(const TimeZone &) = delete;
    TimeZone &operator=(const TimeZone &) = delete;

private:
    static void set(const QByteArray &name)
    {
        qputenv("TZ", name);
        ::tzset();
    }

    QByteArray _before = qgetenv("TZ");
};
} // namespace

class WayfoldHistoryURLTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<FreshHome> _home;

private Q_SLOTS:
    void init();
    void cleanup();

    void makers();
    void readsDictionary();
    void visitTime_data();
    void visitTime();
    void trackedHostName_data();
    void trackedHostName();
    void unusableEntriesAreLeftOut_data();
    void unusableEntriesAreLeftOut();
    void sameAddressTwice();
    void dictionaryIsEmpty();
    void copyKeepsTheSite();
    void tooltip();
    void tooltipOfAVisitWithoutATime_data();
    void tooltipOfAVisitWithoutATime();
    void tooltipInTheUsersFormat();
    void search();
};

void WayfoldHistoryURLTest::init()
{
    _home = std::make_unique<FreshHome>();
}

void WayfoldHistoryURLTest::cleanup()
{
    _home.reset();
}

static QVariantMap entry(const QString &title, const QString &address, const QString &seconds = "100000000.5")
{
    return {{"", address}, {"title", title}, {"lastVisitedDate", seconds}};
}

void WayfoldHistoryURLTest::makers()
{
    QCOMPARE(WayfoldHistoryURL::bookmarkWithTitle("T")->title(), "T");
    const auto made = WayfoldHistoryURL::bookmarkWithTitleAndURL("T", Url::URLWithString("mailto:ann"));
    QCOMPARE(made->valueAsString(), "mailto:ann");
    QVERIFY(made->trackedHostName().isNull());
    QCOMPARE(made->uuid().size(), 36);
    QCOMPARE(made->lastVisitedDate(), made->timestamp());
    made->setTrackedHostName("a.example");
    QCOMPARE(made->trackedHostName(), "a.example");
    made->initFromDictionary(entry("New", "http://www.b.example/"));
    QCOMPARE(made->title(), "New");
    QCOMPARE(made->trackedHostName(), "b.example");
    made->init();
    QVERIFY(made->trackedHostName().isNull());
}

void WayfoldHistoryURLTest::readsDictionary()
{
    const auto made = WayfoldHistoryURL::bookmarkFromDictionary(entry("Title", "http://www.a.example/x"));
    QCOMPARE(made->title(), "Title");
    QCOMPARE(made->valueAsString(), "http://www.a.example/x");
    QCOMPARE(made->uuid(), "http://www.a.example/x");
    QCOMPARE(made->trackedHostName(), "a.example");
    QCOMPARE(made->lastVisitedDate(), QDateTime::fromMSecsSinceEpoch(qint64(1078307200500), Qt::UTC));
    // Kept as text even where it is no address.
    const auto odd = WayfoldHistoryURL::bookmarkFromDictionary(entry("Title", "no address"));
    QVERIFY(odd->url().isNull());
    QCOMPARE(odd->uuid(), "no address");
    QVERIFY(odd->trackedHostName().isNull());
}

void WayfoldHistoryURLTest::visitTime_data()
{
    QTest::addColumn<QVariant>("seconds");
    QTest::addColumn<QDateTime>("time");
    const QDateTime reference(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC);
    QTest::newRow("reference date") << QVariant("0") << reference;
    QTest::newRow("a day later") << QVariant("86400") << reference.addDays(1);
    QTest::newRow("parts of a second") << QVariant("0.25") << reference.addMSecs(250);
    QTest::newRow("before it") << QVariant("-86400.0") << reference.addDays(-1);
    QTest::newRow("no number") << QVariant("yesterday") << reference;
    QTest::newRow("missing") << QVariant() << reference;
    QTest::newRow("another type") << QVariant(5) << reference;
    QTest::newRow("beyond all calendars") << QVariant("1e300") << QDateTime();
    QTest::newRow("not finite") << QVariant("1e999") << QDateTime();
}

void WayfoldHistoryURLTest::visitTime()
{
    QFETCH(QVariant, seconds);
    QFETCH(QDateTime, time);
    QVariantMap dictionary = entry("T", "http://a.example/");
    dictionary["lastVisitedDate"] = seconds;
    const auto made = WayfoldHistoryURL::bookmarkFromDictionary(dictionary);
    QCOMPARE(made->lastVisitedDate().isValid(), time.isValid());
    if (time.isValid()) {
        QCOMPARE(made->lastVisitedDate().toUTC(), time);
        QCOMPARE(made->lastVisitedDate().timeSpec(), Qt::LocalTime);
    }
}

void WayfoldHistoryURLTest::trackedHostName_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("site");
    QTest::newRow("three labels") << "http://news.a.example/"
                                  << "a.example";
    QTest::newRow("two labels") << "http://a.example:8080/"
                                << "a.example";
    QTest::newRow("numbers") << "http://10.0.0.1/"
                             << "10.0.0.1";
    QTest::newRow("file") << "file:///tmp/a" << QString();
    QTest::newRow("mail") << "mailto:ann" << QString();
}

void WayfoldHistoryURLTest::trackedHostName()
{
    QFETCH(QString, address);
    QFETCH(QString, site);
    const QString tracked = WayfoldHistoryURL::bookmarkFromDictionary(entry("T", address))->trackedHostName();
    QCOMPARE(tracked, site);
    QCOMPARE(tracked.isNull(), site.isNull());
}

void WayfoldHistoryURLTest::unusableEntriesAreLeftOut_data()
{
    QTest::addColumn<QVariantMap>("dictionary");
    QTest::addColumn<bool>("kept");
    QTest::newRow("whole") << entry("T", "http://a.example/") << true;
    QTest::newRow("no address to parse") << entry("T", "no address") << true;
    QTest::newRow("empty title") << entry("", "http://a.example/") << false;
    QTest::newRow("no title") << QVariantMap{{"", "http://a.example/"}, {"lastVisitedDate", "1"}} << false;
    QTest::newRow("title of another type") << QVariantMap{{"", "http://a.example/"}, {"title", 7}} << false;
    QTest::newRow("empty address") << entry("T", "") << false;
    QTest::newRow("no address") << QVariantMap{{"title", "T"}, {"lastVisitedDate", "1"}} << false;
    QTest::newRow("address of another type") << QVariantMap{{"", QVariantList{"x"}}, {"title", "T"}} << false;
    QTest::newRow("nothing") << QVariantMap() << false;
    QTest::newRow("no date") << QVariantMap{{"", "http://a.example/"}, {"title", "T"}} << true;
}

void WayfoldHistoryURLTest::unusableEntriesAreLeftOut()
{
    QFETCH(QVariantMap, dictionary);
    QFETCH(bool, kept);
    const auto history = makeFolder("History");
    history->parseHistoryDictionary(dictionary);
    QCOMPARE(history->childCount(), kept ? 1u : 0u);
    if (kept) {
        QCOMPARE(int(history->lastChild()->type()), 6);
        QCOMPARE(history->lastChild()->parent(), history);
    }
}

void WayfoldHistoryURLTest::sameAddressTwice()
{
    const auto history = makeFolder("History");
    history->parseHistoryDictionary(entry("First", "http://a.example/"));
    history->parseHistoryDictionary(entry("Second", "http://a.example/"));
    QCOMPARE(childTitles(*history), (QStringList{"First", "Second"}));
    QCOMPARE(history->childAtIndex(0)->uuid(), history->childAtIndex(1)->uuid());
    QCOMPARE(history->findByUUID("http://a.example/"), history->childAtIndex(0));
}

void WayfoldHistoryURLTest::dictionaryIsEmpty()
{
    const auto made = WayfoldHistoryURL::bookmarkFromDictionary(entry("T", "http://a.example/"));
    QVERIFY(made->createDictionary(true).isEmpty());
    QVERIFY(made->createDictionary(false).isEmpty());
    QVariantMap dictionary{{"Key", "Value"}};
    made->writeToDictionaryForSaving(dictionary, false);
    QCOMPARE(dictionary, (QVariantMap{{"Key", "Value"}}));
}

void WayfoldHistoryURLTest::copyKeepsTheSite()
{
    const auto made = WayfoldHistoryURL::bookmarkFromDictionary(entry("T", "http://www.a.example/"));
    const auto copy = std::dynamic_pointer_cast<WayfoldHistoryURL>(made->copy());
    QVERIFY(copy);
    QCOMPARE(copy->trackedHostName(), "a.example");
    QCOMPARE(copy->lastVisitedDate(), made->lastVisitedDate());
    QCOMPARE(copy->uuid(), made->uuid());
    QVERIFY(made->isEqual(copy));
}

void WayfoldHistoryURLTest::tooltip()
{
    const auto made = WayfoldHistoryURL::bookmarkFromDictionary(entry("T", "http://a.example/"));
    const QLocale oldLocale;
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    made->setURL(Url::URLWithString("http://a.example/%20%31"));
    made->setTimestamp(QDateTime(QDate(2004, 5, 1), QTime(14, 30)));
    QCOMPARE(made->tooltipText(), "http://a.example/%20%31\n\nSaturday, May 1, 2004\n2:30 PM");
    made->setTimestamp({});
    made->setURL({});
    QCOMPARE(made->tooltipText(), "\n\n\n");
    QLocale::setDefault(oldLocale);
}

void WayfoldHistoryURLTest::tooltipOfAVisitWithoutATime_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QString>("shown");
    QTest::newRow("Greenwich") << QByteArray("UTC") << "Monday, January 1, 2001\n12:00 AM";
    QTest::newRow("west of it") << QByteArray("America/New_York") << "Sunday, December 31, 2000\n7:00 PM";
    QTest::newRow("east of it") << QByteArray("Asia/Tokyo") << "Monday, January 1, 2001\n9:00 AM";
}

// The user sees it in the time of the place.
void WayfoldHistoryURLTest::tooltipOfAVisitWithoutATime()
{
    QFETCH(QByteArray, zone);
    QFETCH(QString, shown);
    const TimeZone there(zone);
    const UserLanguage language("en_US");
    const auto made = WayfoldHistoryURL::bookmarkFromDictionary(entry("T", "http://a.example/", "0"));
    QCOMPARE(made->tooltipText(), "http://a.example/\n\n" + shown);
}

void WayfoldHistoryURLTest::tooltipInTheUsersFormat()
{
    FakeHostApplication host;
    host.hostSettings.values = {{"NSDateFormatString", "%e. %m %Y"}, {"NSTimeFormatString", "%1I:%M %p"}};
    const auto made = WayfoldHistoryURL::bookmarkFromDictionary(entry("T", "http://a.example/"));
    made->setTimestamp(QDateTime(QDate(2004, 5, 1), QTime(14, 30)));
    QCOMPARE(made->tooltipText(), "http://a.example/\n\n1. 05 2004\n2:30 " + QLocale().pmText());
    made->setTimestamp({});
    QCOMPARE(made->tooltipText(), "http://a.example/\n\n\n");
}

void WayfoldHistoryURLTest::search()
{
    const auto made = WayfoldHistoryURL::bookmarkFromDictionary(entry("Title", "http://a.example/path"));
    QVERIFY(made->matchesSubstring("TITLE"));
    QVERIFY(made->matchesSubstring("EXAMPLE/PATH"));
    QVERIFY(!made->matchesSubstring("other"));
}

QTEST_MAIN(WayfoldHistoryURLTest)
#include "WayfoldHistoryURLTest.moc"
