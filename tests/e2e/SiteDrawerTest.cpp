#include "browser/Browser.h"
#include "browser/BrowserWindow.h"
#include "browser/WebView.h"
#include "tests/e2e/support/Hands.h"
#include "tests/e2e/support/Play.h"
#include "tests/e2e/support/StillStyle.h"

// The drawer opens for a site that is known and closes for one that is not, when the user has set it so.
class SiteDrawerTest : public QObject
{
    Q_OBJECT

public:
    explicit SiteDrawerTest(Play &play) : _play(play) {}

private Q_SLOTS:
    void initTestCase();
    void init();

    void opensForKnownSite();
    void closesForUnknownSite();
    void staysOpenWhenTheUserOpenedIt();
    void reloadingDoesNotCloseAgain();
    void switchingTabsOpensAndCloses();

private:
    Play &_play;
    BrowserWindow *_window = nullptr;
    const QString _known = QStringLiteral("http://www.known.localhost/");
    const QString _unknown = QStringLiteral("http://www.unknown.localhost/");
};

// Makes the site known, by what any user would do: saving a page of it.
void SiteDrawerTest::initTestCase()
{
    Stage::onMain([] { QApplication::setStyle(new StillStyle); });
    EVENTUALLY(_play.window() && Play::drawer(_play.window()));
    QVERIFY(_play.visit(_known));
    QVERIFY(_play.choose({QStringLiteral("Wayfold"), QStringLiteral("Save Current Page")}));
    EVENTUALLY(Play::isDrawerOpen(_play.window()));
    EVENTUALLY(Play::scratchRows(_play.window()).contains(QLatin1String("www.known.localhost/")));
}

void SiteDrawerTest::init()
{
    QVERIFY(_window = _play.startOver());
    EVENTUALLY(Play::isDrawerClosed(_window));
}

void SiteDrawerTest::opensForKnownSite()
{
    QVERIFY(_play.visit(_unknown));
    Stage::settle();
    QVERIFY(Play::isDrawerClosed(_window));
    QVERIFY(_play.visit(_known));
    EVENTUALLY(Play::isDrawerOpen(_window));
    EVENTUALLY(Play::siteLabel(_window) == QLatin1String("known.localhost"));
    EVENTUALLY(Play::scratchRows(_window).contains(QLatin1String("www.known.localhost/")));
}

void SiteDrawerTest::closesForUnknownSite()
{
    QVERIFY(_play.visit(_known));
    EVENTUALLY(Play::isDrawerOpen(_window));
    QVERIFY(_play.visit(_unknown));
    EVENTUALLY(Play::isDrawerClosed(_window));
    EVENTUALLY(Play::siteLabel(_window) == QLatin1String("unknown.localhost"));
}

void SiteDrawerTest::staysOpenWhenTheUserOpenedIt()
{
    QVERIFY(_play.openDrawer());
    QVERIFY(_play.visit(_unknown));
    EVENTUALLY(Play::siteLabel(_window) == QLatin1String("unknown.localhost"));
    Stage::settle();
    QVERIFY(Play::isDrawerOpen(_window));
    // Once closed, it is the site's again.
    QVERIFY(_play.closeDrawer());
    QVERIFY(_play.visit(_known));
    EVENTUALLY(Play::isDrawerOpen(_window));
    QVERIFY(_play.visit(_unknown));
    EVENTUALLY(Play::isDrawerClosed(_window));
}

void SiteDrawerTest::reloadingDoesNotCloseAgain()
{
    QVERIFY(_play.visit(_unknown));
    EVENTUALLY(Play::siteLabel(_window) == QLatin1String("unknown.localhost"));
    // The command opens the drawer without making it the user's.
    QVERIFY(_play.choose({QStringLiteral("Wayfold"), QStringLiteral("Focus on www.unknown.localhost")}));
    EVENTUALLY(Play::isDrawerOpen(_window));
    int loads = 0;
    Stage::onMain([&] { connect(_window->currentWebView(), &WebView::pageFinished, _window, [&] { ++loads; }); });
    QVERIFY(Hands::press(QStringLiteral("ctrl+r")));
    EVENTUALLY(loads == 1);
    Stage::settle();
    QVERIFY(Play::isDrawerOpen(_window));
    QVERIFY(_play.visit(QStringLiteral("http://www.another.localhost/")));
    EVENTUALLY(Play::isDrawerClosed(_window));
}

void SiteDrawerTest::switchingTabsOpensAndCloses()
{
    QVERIFY(_play.visit(_unknown));
    QVERIFY(_play.openTab());
    QVERIFY(_play.visit(_known));
    EVENTUALLY(Play::isDrawerOpen(_window));
    QVERIFY(_play.chooseTab(0));
    EVENTUALLY(Play::isDrawerClosed(_window));
    QVERIFY(_play.chooseTab(1));
    EVENTUALLY(Play::isDrawerOpen(_window));
}

int main(int argc, char **argv)
{
    return Play::perform<SiteDrawerTest>(argc, argv,
                                         {{QStringLiteral("WayfoldAutoFocusOnSiteChange"), 1},
                                          {QStringLiteral("WayfoldOpenDrawerForKnownSite"), 1},
                                          {QStringLiteral("WayfoldCloseDrawerForUnknownSite"), 1}});
}

#include "SiteDrawerTest.moc"
