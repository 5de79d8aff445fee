#include "browser/Browser.h"
#include "browser/BrowserWindow.h"
#include "browser/WebView.h"
#include "tests/e2e/support/Hands.h"
#include "tests/e2e/support/Play.h"

// The browser's own part, as far as the drawer's tests build on it.
class BrowsingTest : public QObject
{
    Q_OBJECT

public:
    explicit BrowsingTest(Play &play) : _play(play) {}

private Q_SLOTS:
    void initTestCase();
    void init();

    void visitsByAddress();
    void followsLinks();
    void goesBackByKey();
    void opensAndChoosesTabs();
    void menuBar();
    void windowsComeAndGo();

private:
    Play &_play;
    BrowserWindow *_window = nullptr;
};

void BrowsingTest::initTestCase()
{
    EVENTUALLY(_play.window());
    _play.web().setPage(QStringLiteral("www.links.localhost"), QStringLiteral("/"),
                        "<!doctype html><title>Links</title><p style='margin-top:120px'>Go "
                        "<a href='http://far.away.localhost/'>far away</a> or stay.");
}

void BrowsingTest::init()
{
    QVERIFY(_window = _play.startOver());
}

void BrowsingTest::visitsByAddress()
{
    QVERIFY(_play.visit(QStringLiteral("http://www.links.localhost/")));
    EVENTUALLY(_window->windowTitle().startsWith(QLatin1String("Links")));
}

void BrowsingTest::followsLinks()
{
    QVERIFY(_play.visit(QStringLiteral("http://www.links.localhost/")));
    QVERIFY(_play.clickLink(QStringLiteral("far away")));
    EVENTUALLY(Play::isShown(_window, QStringLiteral("http://far.away.localhost/")));
}

void BrowsingTest::goesBackByKey()
{
    QVERIFY(_play.visit(QStringLiteral("http://one.localhost/")));
    QVERIFY(_play.visit(QStringLiteral("http://two.localhost/")));
    QVERIFY(Hands::press(QStringLiteral("alt+Left")));
    EVENTUALLY(Play::isShown(_window, QStringLiteral("http://one.localhost/")));
}

void BrowsingTest::opensAndChoosesTabs()
{
    QVERIFY(_play.visit(QStringLiteral("http://one.localhost/")));
    QVERIFY(_play.openTab());
    QVERIFY(_play.visit(QStringLiteral("http://two.localhost/")));
    QVERIFY(_play.chooseTab(0));
    EVENTUALLY(Play::isShown(_window, QStringLiteral("http://one.localhost/")));
    QCOMPARE(_play.web().requests(QStringLiteral("two.localhost"), QStringLiteral("/")), 2);
}

void BrowsingTest::menuBar()
{
    QVERIFY(_play.choose({QStringLiteral("File"), QStringLiteral("New Tab")}));
    EVENTUALLY(_window->tabCount() == 2);
}

void BrowsingTest::windowsComeAndGo()
{
    BrowserWindow *other = _play.openWindow();
    QVERIFY(other && other != _window);
    QCOMPARE(_play.windows().size(), 2);
    QVERIFY(_play.closeWindow(other));
    EVENTUALLY(_play.window() == _window);
}

int main(int argc, char **argv)
{
    return Play::perform<BrowsingTest>(argc, argv);
}

#include "BrowsingTest.moc"
