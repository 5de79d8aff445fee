#include "browser/AddressField.h"
#include "browser/BrowserWindow.h"
#include "tests/e2e/support/Eyes.h"
#include "tests/e2e/support/Hands.h"
#include "tests/e2e/support/Play.h"
#include "tests/e2e/support/PlayedRelease.h"

#include <QAbstractButton>

// The release check, as its user sees it.
class ReleaseAlertTest : public QObject
{
    Q_OBJECT

public:
    explicit ReleaseAlertTest(Play &play) : _play(play) {}

private Q_SLOTS:
    void whatIsDoneMeanwhileReachesNothing();

private:
    Play &_play;
    const PlayedRelease _release{_play.web(), QStringLiteral("1.2.3")};
};

void ReleaseAlertTest::whatIsDoneMeanwhileReachesNothing()
{
    EVENTUALLY(_play.window());
    const BrowserWindow *window = _play.window();
    const QString before = QStringLiteral("http://site.localhost/");
    QVERIFY(_play.visit(before));
    QVERIFY(Hands::press(QStringLiteral("ctrl+l")));
    EVENTUALLY(window->addressField()->hasFocus());
    _release.publish(QStringLiteral("1.2.3"), 10203);
    _play.web().hold(PlayedRelease::host, PlayedRelease::path);
    QVERIFY(_play.choose({QStringLiteral("Wayfold"), QStringLiteral("Check for New Release...")}));
    EVENTUALLY(_play.web().requests(PlayedRelease::host, PlayedRelease::path) == 1);
    // Text, a command of the browser, one of the drawer, a click, and what would answer the alert.
    const QString text = Stage::onMain([&] { return window->addressField()->text(); });
    QVERIFY(Hands::type(QStringLiteral("meanwhile")));
    QVERIFY(Hands::press(QStringLiteral("ctrl+t")));
    QVERIFY(Hands::press(QStringLiteral("ctrl+0")));
    QVERIFY(Hands::clickAt(Eyes::middleOf(window->addressField())));
    QVERIFY(Hands::press(QStringLiteral("Return")));
    _play.web().release(PlayedRelease::host, PlayedRelease::path);

    EVENTUALLY(Eyes::dialog());
    QVERIFY(Eyes::dialogText().contains(QStringLiteral("Your Wayfold version 1.2.3 is up to date.")));
    Stage::settle();
    NOW(Eyes::dialog());
    QVERIFY(Hands::clickOn(Eyes::dialogButton(QStringLiteral("OK"))));
    EVENTUALLY(!Eyes::dialog());
    NOW(window->addressField()->text() == text);
    NOW(window->tabCount() == 1);
    QVERIFY(Play::isDrawerClosed(window));
    QCOMPARE(Play::address(window), before);
}

int main(int argc, char **argv)
{
    return Play::perform<ReleaseAlertTest>(argc, argv);
}

#include "ReleaseAlertTest.moc"
