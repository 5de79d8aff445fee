#include "browser/SiteIcons.h"

#include "tests/support/TemporaryHome.h"

#include <QDir>
#include <QTest>

class SiteIconsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void neverSeen();
    void wholeSite();
    void sizes();
    void keptOnDisk();
    void latestIconCounts();
    void damagedFile();

private:
    static QIcon icon(const QColor &color);
    static QColor colorOf(const QImage &image) { return image.pixelColor(image.width() / 2, image.height() / 2); }

    std::unique_ptr<TemporaryHome> _home;
    std::unique_ptr<SiteIcons> _icons;
};

void SiteIconsTest::init()
{
    _home = std::make_unique<TemporaryHome>();
    _icons = std::make_unique<SiteIcons>(_home->path("icons"));
}

void SiteIconsTest::cleanup()
{
    _icons.reset();
    _home.reset();
}

QIcon SiteIconsTest::icon(const QColor &color)
{
    QPixmap pixmap(32, 32);
    pixmap.fill(color);
    return QIcon(pixmap);
}

void SiteIconsTest::neverSeen()
{
    QVERIFY(_icons->iconForAddress("http://a.example/", QSize(16, 16)).isNull());
    QVERIFY(_icons->iconForAddress("", QSize(16, 16)).isNull());
    QVERIFY(_icons->iconForAddress("file:///tmp/a", QSize(16, 16)).isNull());
    QVERIFY(_icons->iconForHost("a.example").isNull());
    _icons->add(QUrl("http://a.example/"), QIcon());
    _icons->add(QUrl("wayfold:start"), icon(Qt::red));
    QVERIFY(_icons->iconForAddress("http://a.example/", QSize(16, 16)).isNull());
    QVERIFY(_icons->iconForHost("").isNull());
}

void SiteIconsTest::wholeSite()
{
    QVERIFY(_icons->iconForAddress("http://a.example/x", QSize(16, 16)).isNull());
    _icons->add(QUrl("http://a.example/"), icon(Qt::red));
    QCOMPARE(colorOf(_icons->iconForAddress("http://a.example/x", QSize(16, 16))), QColor(Qt::red));
    QCOMPARE(colorOf(_icons->iconForAddress("https://A.Example:81/y", QSize(16, 16))), QColor(Qt::red));
    QVERIFY(_icons->iconForAddress("http://b.a.example/", QSize(16, 16)).isNull());
    QVERIFY(!_icons->iconForHost("A.example").isNull());
}

void SiteIconsTest::sizes()
{
    _icons->add(QUrl("http://a.example/"), icon(Qt::red));
    QCOMPARE(_icons->iconForAddress("http://a.example/", QSize(16, 16)).size(), QSize(16, 16));
    QCOMPARE(_icons->iconForAddress("http://a.example/", QSize(48, 48)).size(), QSize(48, 48));
}

void SiteIconsTest::keptOnDisk()
{
    _icons->add(QUrl("http://a.example/"), icon(Qt::red));
    _icons = std::make_unique<SiteIcons>(_home->path("icons"));
    QCOMPARE(colorOf(_icons->iconForAddress("http://a.example/", QSize(16, 16))), QColor(Qt::red));
}

void SiteIconsTest::latestIconCounts()
{
    _icons->add(QUrl("http://a.example/"), icon(Qt::red));
    _icons->add(QUrl("http://a.example/x"), icon(Qt::blue));
    QCOMPARE(colorOf(_icons->iconForAddress("http://a.example/", QSize(16, 16))), QColor(Qt::blue));
}

void SiteIconsTest::damagedFile()
{
    _icons->add(QUrl("http://a.example/"), icon(Qt::red));
    const QStringList files = QDir(_home->path("icons")).entryList(QDir::Files);
    QCOMPARE(files.size(), 1);
    _home->write("icons/" + files.first(), "no picture");
    _icons = std::make_unique<SiteIcons>(_home->path("icons"));
    QVERIFY(_icons->iconForAddress("http://a.example/", QSize(16, 16)).isNull());
}

QTEST_MAIN(SiteIconsTest)
#include "SiteIconsTest.moc"
