#include "browser/Browser.h"
#include "browser/BrowserWindow.h"
#include "browser/WebPage.h"
#include "browser/WebView.h"
#include "tests/e2e/support/Eyes.h"
#include "tests/e2e/support/Hands.h"
#include "tests/e2e/support/Play.h"

#include <QComboBox>
#include <QTemporaryFile>

// The Scratchpad follows the site of the page in front, and nothing else.
class SiteFocusTest : public QObject
{
    Q_OBJECT

public:
    explicit SiteFocusTest(Play &play) : _play(play) {}

private Q_SLOTS:
    void initTestCase();
    void init();

    void focusesOnLoad_data();
    void focusesOnLoad();
    void followsLinks();
    void followsTabsWithoutLoading();
    void ignoresSubFrames();
    void ignoresBackgroundTabs();
    void reloadingChangesNothing();
    void pageWithoutHostShowsAllSites();
    void startPageShowsAllSites();
    void windowsHaveLabelsOfTheirOwn();

private:
    // The page opens the way to another in the whole of its area.
    void setLinkPage(const QString &host, const QString &target);

    Play &_play;
    BrowserWindow *_window = nullptr;
};

void SiteFocusTest::setLinkPage(const QString &host, const QString &target)
{
    const QString html = QStringLiteral("<!doctype html><title>%1</title>"
                                        "<a href='%2' style='position:fixed;inset:0;background:#eef'>go</a>");
    _play.web().setPage(host, QStringLiteral("/"), html.arg(host, target).toUtf8());
}

void SiteFocusTest::initTestCase()
{
    EVENTUALLY(_play.window());
}

void SiteFocusTest::init()
{
    QVERIFY(_window = _play.startOver());
    EVENTUALLY(Play::drawer(_window));
}

void SiteFocusTest::focusesOnLoad_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("label");
    QTest::newRow("three labels") << "http://news.garden.localhost/"
                                  << "garden.localhost";
    QTest::newRow("two labels") << "http://garden.localhost/"
                                << "garden.localhost";
    QTest::newRow("four labels") << "http://a.b.garden.localhost/x"
                                 << "b.garden.localhost";
    QTest::newRow("one label") << "http://localhost/"
                               << "localhost";
    QTest::newRow("numeric") << "http://127.0.0.1/"
                             << "127.0.0.1";
}

void SiteFocusTest::focusesOnLoad()
{
    QFETCH(QString, address);
    QFETCH(QString, label);
    QVERIFY(_play.visit(address));
    EVENTUALLY(Play::siteLabel(_window) == label);
}

void SiteFocusTest::followsLinks()
{
    setLinkPage(QStringLiteral("from.links.localhost"), QStringLiteral("http://to.elsewhere.localhost/"));
    QVERIFY(_play.visit(QStringLiteral("http://from.links.localhost/")));
    EVENTUALLY(Play::siteLabel(_window) == QLatin1String("links.localhost"));
    QVERIFY(_play.clickLinkAt(QPoint(100, 100)));
    EVENTUALLY(Play::isShown(_window, QStringLiteral("http://to.elsewhere.localhost/")));
    EVENTUALLY(Play::siteLabel(_window) == QLatin1String("elsewhere.localhost"));
}

void SiteFocusTest::followsTabsWithoutLoading()
{
    QVERIFY(_play.visit(QStringLiteral("http://www.first.localhost/")));
    QVERIFY(_play.openTab());
    QVERIFY(_play.visit(QStringLiteral("http://www.second.localhost/")));
    EVENTUALLY(Play::siteLabel(_window) == QLatin1String("second.localhost"));
    QVERIFY(_play.chooseTab(0));
    EVENTUALLY(Play::siteLabel(_window) == QLatin1String("first.localhost"));
    QVERIFY(_play.chooseTab(1));
    EVENTUALLY(Play::siteLabel(_window) == QLatin1String("second.localhost"));
    QCOMPARE(_play.web().requests(QStringLiteral("www.first.localhost"), QStringLiteral("/")), 1);
    QCOMPARE(_play.web().requests(QStringLiteral("www.second.localhost"), QStringLiteral("/")), 1);
}

void SiteFocusTest::ignoresSubFrames()
{
    // The link loads another page into the frame; a click into the frame itself may be thrown away by the web engine
    // while the frame is new.
    _play.web().setPage(QStringLiteral("www.outer.localhost"), QStringLiteral("/"),
                        "<!doctype html><title>outer</title>"
                        "<p><a href='http://www.deeper.localhost/' target='frame'>deeper</a></p>"
                        "<iframe name='frame' src='http://www.inner.localhost/'></iframe>");
    QStringList loadedFrames;
    Stage::onMain([&] {
        auto *page = qobject_cast<WebPage *>(_window->currentWebView()->page());
        connect(page, &WebPage::subFrameFinished, _window, [&](const QUrl &url) { loadedFrames += url.host(); });
    });
    QVERIFY(_play.visit(QStringLiteral("http://www.outer.localhost/")));
    EVENTUALLY(loadedFrames.contains(QLatin1String("www.inner.localhost")));
    EVENTUALLY(Play::siteLabel(_window) == QLatin1String("outer.localhost"));
    QVERIFY(_play.clickLink(QStringLiteral("deeper")));
    EVENTUALLY(loadedFrames.contains(QLatin1String("www.deeper.localhost")));
    Stage::settle();
    QCOMPARE(Play::siteLabel(_window), QStringLiteral("outer.localhost"));
}

void SiteFocusTest::ignoresBackgroundTabs()
{
    setLinkPage(QStringLiteral("www.front.localhost"), QStringLiteral("http://www.behind.localhost/"));
    QVERIFY(_play.visit(QStringLiteral("http://www.front.localhost/")));
    EVENTUALLY(Play::siteLabel(_window) == QLatin1String("front.localhost"));
    QVERIFY(_play.clickLinkAt(QPoint(100, 100), 2));
    const auto hasLoaded = [this] {
        const WebView *behind = _window->webViewAt(1);
        return behind && behind->url().host() == QLatin1String("www.behind.localhost") && !behind->isLoading();
    };
    EVENTUALLY(hasLoaded());
    Stage::settle();
    QCOMPARE(Stage::onMain([this] { return _window->currentTab(); }), 0);
    QCOMPARE(Play::siteLabel(_window), QStringLiteral("front.localhost"));
    QVERIFY(_play.chooseTab(1));
    EVENTUALLY(Play::siteLabel(_window) == QLatin1String("behind.localhost"));
}

void SiteFocusTest::reloadingChangesNothing()
{
    QVERIFY(_play.visit(QStringLiteral("http://www.again.localhost/")));
    EVENTUALLY(Play::siteLabel(_window) == QLatin1String("again.localhost"));
    int labelChanges = 0;
    int loads = 0;
    Stage::onMain([&] {
        connect(Play::sitePopup(_window), &QComboBox::currentTextChanged, _window, [&] { ++labelChanges; });
        connect(_window->currentWebView(), &WebView::pageFinished, _window, [&] { ++loads; });
    });
    QVERIFY(Hands::press(QStringLiteral("ctrl+r")));
    EVENTUALLY(loads == 1);
    Stage::settle();
    QCOMPARE(_play.web().requests(QStringLiteral("www.again.localhost"), QStringLiteral("/")), 2);
    QCOMPARE(labelChanges, 0);
    QCOMPARE(Play::siteLabel(_window), QStringLiteral("again.localhost"));
}

void SiteFocusTest::pageWithoutHostShowsAllSites()
{
    QTemporaryFile file(QDir::homePath() + QStringLiteral("/pageXXXXXX.html"));
    QVERIFY(file.open());
    QVERIFY(file.write("<!doctype html><title>local</title>") > 0);
    QVERIFY(file.flush());
    QVERIFY(_play.visit(QStringLiteral("http://www.host.localhost/")));
    EVENTUALLY(Play::siteLabel(_window) == QLatin1String("host.localhost"));
    QVERIFY(_play.visit(QUrl::fromLocalFile(file.fileName()).toString()));
    EVENTUALLY(Play::siteLabel(_window) == QLatin1String("Sites"));
}

void SiteFocusTest::startPageShowsAllSites()
{
    QVERIFY(_play.visit(QStringLiteral("http://www.host.localhost/")));
    EVENTUALLY(Play::siteLabel(_window) == QLatin1String("host.localhost"));
    QVERIFY(_play.openTab());
    EVENTUALLY(Play::siteLabel(_window) == QLatin1String("Sites"));
    QVERIFY(_play.chooseTab(0));
    EVENTUALLY(Play::siteLabel(_window) == QLatin1String("host.localhost"));
}

void SiteFocusTest::windowsHaveLabelsOfTheirOwn()
{
    QVERIFY(_play.visit(QStringLiteral("http://www.left.localhost/")));
    EVENTUALLY(Play::siteLabel(_window) == QLatin1String("left.localhost"));
    BrowserWindow *other = _play.openWindow();
    QVERIFY(other);
    QVERIFY(_play.visit(QStringLiteral("http://www.right.localhost/")));
    EVENTUALLY(Play::siteLabel(other) == QLatin1String("right.localhost"));
    QCOMPARE(Play::siteLabel(_window), QStringLiteral("left.localhost"));
    QVERIFY(_play.bringToFront(_window));
    Stage::settle();
    QCOMPARE(Play::siteLabel(_window), QStringLiteral("left.localhost"));
    QCOMPARE(Play::siteLabel(other), QStringLiteral("right.localhost"));
    QVERIFY(_play.visit(QStringLiteral("http://www.third.localhost/")));
    EVENTUALLY(Play::siteLabel(_window) == QLatin1String("third.localhost"));
    QCOMPARE(Play::siteLabel(other), QStringLiteral("right.localhost"));
}

int main(int argc, char **argv)
{
    return Play::perform<SiteFocusTest>(argc, argv, {{QStringLiteral("WayfoldAutoFocusOnSiteChange"), 1}});
}

#include "SiteFocusTest.moc"
