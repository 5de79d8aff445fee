#include "browser/BrowserHostSettings.h"

#include "platform/files/PropertyList.h"
#include "platform/files/UserDefaults.h"
#include "tests/support/TemporaryHome.h"

#include <QTest>

class BrowserHostSettingsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void firstStart();
    void keepsTheUsersChoice();
    void objects();
    void windowSize();

private:
    std::unique_ptr<TemporaryHome> _home;
};

void BrowserHostSettingsTest::init()
{
    _home = std::make_unique<TemporaryHome>();
    UserDefaults::standardUserDefaults().reset();
}

void BrowserHostSettingsTest::cleanup()
{
    UserDefaults::standardUserDefaults().reset();
    _home.reset();
}

void BrowserHostSettingsTest::firstStart()
{
    const BrowserHostSettings settings;
    QVERIFY(settings.tabbedBrowsing());
    QVERIFY(UserDefaults::standardUserDefaults().synchronize());
    const QString path = _home->path("Library/Preferences/org.wayfold.Browser.plist");
    QCOMPARE(PropertyList::readDictionaryFile(path).value("TabbedBrowsing"), QVariant(true));
}

void BrowserHostSettingsTest::keepsTheUsersChoice()
{
    BrowserHostSettings().setObjectForKey(false, "TabbedBrowsing");
    const BrowserHostSettings settings;
    QVERIFY(!settings.tabbedBrowsing());
}

void BrowserHostSettingsTest::objects()
{
    BrowserHostSettings settings;
    QVERIFY(!settings.objectForKey("Other").isValid());
    settings.setObjectForKey("x", "Other");
    QCOMPARE(settings.objectForKey("Other"), QVariant("x"));
    QVERIFY(settings.tabbedBrowsing());
    settings.setObjectForKey(QVariant(), "Other");
    QVERIFY(!settings.objectForKey("Other").isValid());
}

void BrowserHostSettingsTest::windowSize()
{
    BrowserHostSettings settings;
    QVERIFY(!settings.windowSize().isValid());
    settings.setWindowSize(QSize(800, 600));
    QCOMPARE(settings.windowSize(), QSize(800, 600));
}

QTEST_GUILESS_MAIN(BrowserHostSettingsTest)
#include "BrowserHostSettingsTest.moc"
