#include "browser/Browser.h"
#include "browser/BrowserWindow.h"
#include "browser/WebView.h"
#include "platform/files/PropertyList.h"
#include "tests/e2e/support/Eyes.h"
#include "tests/e2e/support/Hands.h"
#include "tests/e2e/support/Play.h"
#include "tests/e2e/support/Process.h"

#include <QAbstractButton>
#include <QLineEdit>
#include <QTextEdit>
#include <QTreeView>

// What a user keeps for a site: saving, writing, opening and deleting with the real controls.
class ScratchpadTest : public QObject
{
    Q_OBJECT

public:
    explicit ScratchpadTest(Play &play) : _play(play) {}

private Q_SLOTS:
    void initTestCase();
    void init();

    void savesThePage();
    void writesANote();
    void cancelledNoteLeavesNothing();
    void makesASubfolder();
    void dragsIntoASubfolder();
    void takesALinkOfThePage();
    void dragsIntoAnotherProgram();
    void opensByDoubleClick();
    void opensBySpace();
    void deletesAfterConfirmation();
    void deletesByKey();
    void listHasTheKeyboardBehindADialog();
    void contextMenu();
    void switchesBack();
    void choosesASite();

private:
    // Visits the site and asks for its list, as a user does who has not told the list to follow him.
    bool focusOn(const QString &site);
    QAbstractButton *button(const QString &toolTip) { return Play::drawerButton(_window, toolTip); }
    bool save();
    bool makeSubfolder(const QString &title);
    // The titles of what the item file holds for the site that is shown now.
    QStringList savedTitles();

    Play &_play;
    BrowserWindow *_window = nullptr;
    QString _host; // one for each test
};

void ScratchpadTest::initTestCase()
{
    EVENTUALLY(_play.window());
}

void ScratchpadTest::init()
{
    _host = QString::fromLatin1(QTest::currentTestFunction()).toLower() + QStringLiteral(".localhost");
    _play.web().setPage(QStringLiteral("www.") + _host, QStringLiteral("/"),
                        "<!doctype html><title>Front page</title>");
    _play.web().setPage(QStringLiteral("www.") + _host, QStringLiteral("/two"),
                        "<!doctype html><title>Page two</title>");
    QVERIFY(_window = _play.startOver());
    QVERIFY(focusOn(_host));
    EVENTUALLY(Play::isDrawerOpen(_window));
}

bool ScratchpadTest::focusOn(const QString &site)
{
    return _play.visit(QStringLiteral("http://www.%1/").arg(site)) && Hands::press(QStringLiteral("ctrl+shift+o")) &&
           Stage::eventually([&] { return Play::siteLabel(_window) == site; });
}

bool ScratchpadTest::save()
{
    return _play.choose({QStringLiteral("Wayfold"), QStringLiteral("Save Current Page")}) &&
           Stage::eventually([this] { return Play::scratchRows(_window).contains(QLatin1String("Front page")); });
}

QStringList ScratchpadTest::savedTitles()
{
    const QString file = QDir::homePath() + QStringLiteral("/Library/Wayfold/Bookmarks.plist");
    QStringList titles;
    for (const QVariant &site : PropertyList::readDictionaryFile(file).value(QStringLiteral("Children")).toList()) {
        if (site.toMap().value(QStringLiteral("Title")).toString() != _host)
            continue;
        for (const QVariant &child : site.toMap().value(QStringLiteral("Children")).toList()) {
            const QVariantMap item = child.toMap();
            const QVariantMap uri = item.value(QStringLiteral("URIDictionary")).toMap();
            titles += uri.value(QStringLiteral("title"), item.value(QStringLiteral("Title"))).toString();
        }
    }
    return titles;
}

void ScratchpadTest::savesThePage()
{
    QVERIFY(savedTitles().isEmpty());
    QVERIFY(save());
    EVENTUALLY(savedTitles() == QStringList{QStringLiteral("Front page")});
}

void ScratchpadTest::writesANote()
{
    QVERIFY(Hands::clickOn(button(QStringLiteral("New Note"))));
    EVENTUALLY(Eyes::dialog());
    QVERIFY(Hands::clickInto(Eyes::firstOf<QLineEdit>(Eyes::dialog())));
    QVERIFY(Hands::press(QStringLiteral("ctrl+a")));
    QVERIFY(Hands::type(QStringLiteral("Remember")));
    QVERIFY(Hands::clickInto(Eyes::firstOf<QTextEdit>(Eyes::dialog())));
    QVERIFY(Hands::type(QStringLiteral("Good shoes, a red light.")));
    EVENTUALLY(Eyes::firstOf<QTextEdit>(Eyes::dialog())->toPlainText() == QLatin1String("Good shoes, a red light."));
    QVERIFY(Hands::clickOn(Eyes::dialogButton(QStringLiteral("OK"))));
    EVENTUALLY(!Eyes::dialog());
    EVENTUALLY(Play::scratchRows(_window).contains(QLatin1String("Remember")));
    EVENTUALLY(savedTitles() == QStringList{QStringLiteral("Remember")});
}

void ScratchpadTest::cancelledNoteLeavesNothing()
{
    const QStringList before = Play::scratchRows(_window);
    QVERIFY(Hands::clickOn(button(QStringLiteral("New Note"))));
    EVENTUALLY(Eyes::dialog());
    QVERIFY(Hands::clickInto(Eyes::firstOf<QTextEdit>(Eyes::dialog())));
    QVERIFY(Hands::type(QStringLiteral("Forget")));
    QVERIFY(Hands::clickOn(Eyes::dialogButton(QStringLiteral("Cancel"))));
    EVENTUALLY(!Eyes::dialog());
    Stage::settle();
    QCOMPARE(Play::scratchRows(_window), before);
    QVERIFY(savedTitles().isEmpty());
}

void ScratchpadTest::makesASubfolder()
{
    QVERIFY(makeSubfolder(QStringLiteral("To read")));
    EVENTUALLY(savedTitles() == QStringList{QStringLiteral("To read")});
}

bool ScratchpadTest::makeSubfolder(const QString &title)
{
    return Hands::clickOn(button(QStringLiteral("New Subfolder"))) &&
           Stage::eventually([] { return Eyes::dialog() != nullptr; }) &&
           Hands::clickInto(Eyes::firstOf<QLineEdit>(Eyes::dialog())) && Hands::press(QStringLiteral("ctrl+a")) &&
           Hands::type(title) && Hands::press(QStringLiteral("Return")) &&
           Stage::eventually([&] { return !Eyes::dialog() && Play::scratchRows(_window).contains(title); });
}

void ScratchpadTest::dragsIntoASubfolder()
{
    QVERIFY(save());
    QVERIFY(makeSubfolder(QStringLiteral("To read")));
    QCOMPARE(savedTitles(), QStringList({QStringLiteral("Front page"), QStringLiteral("To read")}));
    QTreeView *list = Play::scratchList(_window);
    QVERIFY(Hands::drag(Eyes::rowWithText(list, QStringLiteral("Front page")).value(),
                        Eyes::rowWithText(list, QStringLiteral("To read")).value()));
    EVENTUALLY(savedTitles() == QStringList{QStringLiteral("To read")});
    QVERIFY(_play.chooseRow(QStringLiteral("To read")));
    QVERIFY(Hands::press(QStringLiteral("Right")));
    EVENTUALLY(Play::scratchRows(_window).contains(QLatin1String("Front page")));
}

void ScratchpadTest::takesALinkOfThePage()
{
    _play.web().setPage(QStringLiteral("www.") + _host, QStringLiteral("/links"),
                        "<!doctype html><title>Links</title><body style='margin:0'>"
                        "<a href='/two' style='display:block;height:200px'>The second page</a>");
    QVERIFY(_play.visit(QStringLiteral("http://www.%1/links").arg(_host)));
    QTreeView *list = Play::scratchList(_window);
    const QPoint link = Stage::onMain([this] { return _window->currentWebView()->mapToGlobal(QPoint(40, 12)); });
    QVERIFY(Hands::drag(link, Eyes::middleOf(list->viewport())));
    EVENTUALLY(savedTitles() == QStringList{QStringLiteral("The second page")});
}

void ScratchpadTest::dragsIntoAnotherProgram()
{
    QVERIFY(save());
    Process neighbour(QStringLiteral(WAYFOLD_DROP_TARGET), {});
    QVERIFY(neighbour.writes("ready\n"));
    QVERIFY(Hands::drag(Eyes::rowWithText(Play::scratchList(_window), QStringLiteral("Front page")).value(),
                        QPoint(80, 60)));
    QVERIFY(neighbour.writes("dropped\n"));
    const QByteArray told = neighbour.output();
    const QByteArray address = "http://www." + _host.toUtf8() + "/";
    QVERIFY2(told.contains("address: " + address + '\n'), told);
    QVERIFY2(told.contains("text: " + address + '\n'), told);
    QCOMPARE(savedTitles(), QStringList({QStringLiteral("Front page")}));
}

void ScratchpadTest::opensByDoubleClick()
{
    QVERIFY(save());
    QVERIFY(_play.visit(QStringLiteral("http://www.%1/two").arg(_host)));
    QVERIFY(Hands::doubleClickOnRow(Play::scratchList(_window), QStringLiteral("Front page")));
    EVENTUALLY(Play::isShown(_window, QStringLiteral("http://www.%1/").arg(_host)));
    QCOMPARE(Stage::onMain([this] { return _window->tabCount(); }), 1);
}

void ScratchpadTest::opensBySpace()
{
    QVERIFY(save());
    QVERIFY(_play.visit(QStringLiteral("http://www.%1/two").arg(_host)));
    QVERIFY(_play.chooseRow(QStringLiteral("Front page")));
    QVERIFY(Hands::press(QStringLiteral("space")));
    EVENTUALLY(Play::isShown(_window, QStringLiteral("http://www.%1/").arg(_host)));
}

void ScratchpadTest::deletesAfterConfirmation()
{
    QVERIFY(save());
    QVERIFY(_play.chooseRow(QStringLiteral("Front page")));
    QVERIFY(Hands::clickOn(button(QStringLiteral("Delete Item"))));
    EVENTUALLY(Eyes::dialog());
    QVERIFY2(Eyes::dialogText().contains(QLatin1String("Are you sure you want to delete \"Front page\"?")),
             qPrintable(Eyes::dialogText()));
    QVERIFY(Hands::clickOn(Eyes::dialogButton(QStringLiteral("Cancel"))));
    EVENTUALLY(!Eyes::dialog());
    Stage::settle();
    QVERIFY(Play::scratchRows(_window).contains(QLatin1String("Front page")));
    QCOMPARE(savedTitles(), QStringList{QStringLiteral("Front page")});

    QVERIFY(Hands::clickOn(button(QStringLiteral("Delete Item"))));
    EVENTUALLY(Eyes::dialog());
    QVERIFY(Hands::clickOn(Eyes::dialogButton(QStringLiteral("OK"))));
    EVENTUALLY(!Play::scratchRows(_window).contains(QLatin1String("Front page")));
    EVENTUALLY(savedTitles().isEmpty());
}

void ScratchpadTest::deletesByKey()
{
    QVERIFY(save());
    QVERIFY(_play.chooseRow(QStringLiteral("Front page")));
    QVERIFY(Hands::press(QStringLiteral("Delete")));
    EVENTUALLY(Eyes::dialog());
    QVERIFY(Hands::clickOn(Eyes::dialogButton(QStringLiteral("OK"))));
    EVENTUALLY(!Play::scratchRows(_window).contains(QLatin1String("Front page")));
    EVENTUALLY(savedTitles().isEmpty());
}

void ScratchpadTest::listHasTheKeyboardBehindADialog()
{
    QVERIFY(save());
    QVERIFY(_play.chooseRow(QStringLiteral("Front page")));
    for (const QString &key : {QStringLiteral("Return"), QStringLiteral("Delete"), QStringLiteral("Return")}) {
        QVERIFY(Hands::press(key));
        EVENTUALLY(Eyes::dialog());
        QVERIFY(Hands::press(QStringLiteral("Escape")));
        EVENTUALLY(!Eyes::dialog());
        EVENTUALLY(Play::drawer(_window)->isActiveWindow() && Play::scratchList(_window)->hasFocus());
    }
}

void ScratchpadTest::contextMenu()
{
    QVERIFY(save());
    QVERIFY(_play.visit(QStringLiteral("http://www.%1/two").arg(_host)));
    QTreeView *list = Play::scratchList(_window);
    QVERIFY(Play::chooseFromContextMenu(list, QStringLiteral("Front page"), QStringLiteral("Open Item")));
    EVENTUALLY(Play::isShown(_window, QStringLiteral("http://www.%1/").arg(_host)));
    QVERIFY(Play::chooseFromContextMenu(list, QStringLiteral("Front page"), QStringLiteral("Delete Item...")));
    EVENTUALLY(Eyes::dialog());
    QVERIFY(Hands::clickOn(Eyes::dialogButton(QStringLiteral("OK"))));
    EVENTUALLY(savedTitles().isEmpty());
}

void ScratchpadTest::switchesBack()
{
    QVERIFY(save());
    QVERIFY(focusOn(QStringLiteral("elsewhere.localhost")));
    EVENTUALLY(!Play::scratchRows(_window).contains(QLatin1String("Front page")));
    QVERIFY(Hands::clickOn(button(QStringLiteral("Show Previous Site List"))));
    EVENTUALLY(Play::siteLabel(_window) == _host);
    EVENTUALLY(Play::scratchRows(_window).contains(QLatin1String("Front page")));
}

void ScratchpadTest::choosesASite()
{
    QVERIFY(save());
    QVERIFY(focusOn(QStringLiteral("elsewhere.localhost")));
    EVENTUALLY(!Play::scratchRows(_window).contains(QLatin1String("Front page")));
    QVERIFY(_play.chooseSite(_host));
    EVENTUALLY(Play::scratchRows(_window).contains(QLatin1String("Front page")));
}

int main(int argc, char **argv)
{
    return Play::perform<ScratchpadTest>(argc, argv);
}

#include "ScratchpadTest.moc"
