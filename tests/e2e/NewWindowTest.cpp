#include "browser/Browser.h"
#include "browser/BrowserWindow.h"
#include "tests/e2e/support/Play.h"

// Which windows get a drawer, and that it opens at once when the user has set it so.
class NewWindowTest : public QObject
{
    Q_OBJECT

public:
    explicit NewWindowTest(Play &play) : _play(play) {}

private Q_SLOTS:
    void firstWindow();
    void secondWindow();
    void smallPopUpHasNone();
    void largePopUpHasOne();

private:
    // A window of that size that a page has opened.
    BrowserWindow *popUpOfSize(const QSize &size);

    Play &_play;
};

void NewWindowTest::firstWindow()
{
    EVENTUALLY(_play.window());
    EVENTUALLY(Play::isDrawerOpen(_play.window()));
}

void NewWindowTest::secondWindow()
{
    BrowserWindow *first = _play.window();
    BrowserWindow *second = _play.openWindow();
    QVERIFY(second);
    EVENTUALLY(Play::isDrawerOpen(second));
    QVERIFY(Play::isDrawerOpen(first));
    QVERIFY(Play::drawer(first) != Play::drawer(second));
}

BrowserWindow *NewWindowTest::popUpOfSize(const QSize &size)
{
    const QString html = QStringLiteral("<!doctype html><title>opener</title>"
                                        "<a href='#' style='position:fixed;inset:0' onclick=\"window.open("
                                        "'http://pop.up.localhost/','_blank','popup,width=%1,height=%2');"
                                        "return false\">open</a>");
    _play.web().setPage(QStringLiteral("www.opener.localhost"), QStringLiteral("/"),
                        html.arg(size.width()).arg(size.height()).toUtf8());
    const QList<BrowserWindow *> before = _play.windows();
    if (!_play.visit(QStringLiteral("http://www.opener.localhost/")) || !_play.clickLinkAt(QPoint(100, 100)))
        return nullptr;
    const auto hasPoppedUp = [&] {
        BrowserWindow *front = _play.window();
        return front && !before.contains(front) && Play::isShown(front, QStringLiteral("http://pop.up.localhost/"));
    };
    return Stage::eventually(hasPoppedUp) ? _play.window() : nullptr;
}

void NewWindowTest::smallPopUpHasNone()
{
    QVERIFY(_play.startOver());
    BrowserWindow *popUp = popUpOfSize(QSize(300, 150));
    QVERIFY(popUp);
    Stage::settle();
    QVERIFY(!Play::drawer(popUp));
    const QSize size = Stage::onMain([&] { return popUp->frameGeometry().size(); });
    QVERIFY2(size.width() < 350, qPrintable(QString::number(size.width())));
}

void NewWindowTest::largePopUpHasOne()
{
    QVERIFY(_play.startOver());
    BrowserWindow *popUp = popUpOfSize(QSize(600, 400));
    QVERIFY(popUp);
    EVENTUALLY(Play::isDrawerOpen(popUp));
}

int main(int argc, char **argv)
{
    return Play::perform<NewWindowTest>(argc, argv, {{QStringLiteral("WayfoldOpenDrawerOnNewWindow"), 1}});
}

#include "NewWindowTest.moc"
