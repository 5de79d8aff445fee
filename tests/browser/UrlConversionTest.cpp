#include "browser/UrlConversion.h"

#include <QTest>

class UrlConversionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void roundTrip_data();
    void roundTrip();
    void none();
};

void UrlConversionTest::roundTrip_data()
{
    QTest::addColumn<QString>("address");

    QTest::newRow("page") << "http://www.example.com:8000/a/b.html?q=1&r=2#part";
    QTest::newRow("escapes") << "http://example.com/a%20b/%C3%A4?x=%25";
    QTest::newRow("other alphabets") << "https://xn--bcher-kva.example/";
    QTest::newRow("file") << "file:///tmp/a%20b";
    QTest::newRow("mail") << "mailto:ann@example.com";
    QTest::newRow("start page") << "wayfold:start";
}

void UrlConversionTest::roundTrip()
{
    QFETCH(QString, address);
    const QUrl url = UrlConversion::toQUrl(Url::URLWithString(address));
    QVERIFY(url.isValid());
    QCOMPARE(UrlConversion::fromQUrl(url).absoluteString(), address);
}

void UrlConversionTest::none()
{
    QVERIFY(UrlConversion::fromQUrl(QUrl()).isNull());
    QVERIFY(UrlConversion::toQUrl(Url()).isEmpty());
}

QTEST_GUILESS_MAIN(UrlConversionTest)
#include "UrlConversionTest.moc"
