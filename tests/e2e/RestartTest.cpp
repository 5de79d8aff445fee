#include "browser/Browser.h"
#include "browser/BrowserWindow.h"
#include "platform/files/PropertyList.h"
#include "tests/e2e/support/Eyes.h"
#include "tests/e2e/support/Hands.h"
#include "tests/e2e/support/Play.h"

#include <QAbstractButton>
#include <QLineEdit>
#include <QProcess>
#include <QTextEdit>
#include <QTreeView>

// What was kept is found again after a real quit and a real start: each session of the browser is a process of its own,
// which this program starts from itself, with the same home.
class RestartTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsWhatWasSaved();
    void findsItAgain();
    void findsItOnceMore();
    void keepsAShortcut();

private:
    // The site folders of the item file.
    QVariantList sites() const
    {
        const QString file = QDir::homePath() + QStringLiteral("/Library/Wayfold/Bookmarks.plist");
        return PropertyList::readDictionaryFile(file).value(QStringLiteral("Children")).toList();
    }
    static QVariant kept(const QVariant &site) { return site.toMap().value(QStringLiteral("Children")); }
    // Its exit code.
    int session(const QString &name)
    {
        QProcess browser;
        browser.setProcessChannelMode(QProcess::ForwardedChannels);
        browser.setStandardInputFile(QProcess::nullDevice());
        browser.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--session"), name});
        return browser.waitForFinished(240000) && browser.exitStatus() == QProcess::NormalExit ? browser.exitCode()
                                                                                               : -1;
    }

    TemporaryHome _home;
};

// One session: plays a function of this and quits.
class Session : public QObject
{
    Q_OBJECT

public:
    explicit Session(Play &play) : _play(play) {}

private Q_SLOTS:
    void initTestCase();
    void save();
    void find();
    void changeShortcut();
    void useShortcut();
    void cleanupTestCase();

private:
    Play &_play;
    BrowserWindow *_window = nullptr;
};

void RestartTest::keepsWhatWasSaved()
{
    QCOMPARE(session(QStringLiteral("save")), 0);
    QCOMPARE(sites().size(), 1);
    QCOMPARE(sites().first().toMap().value(QStringLiteral("Title")), QVariant(QStringLiteral("garden.localhost")));
    QCOMPARE(kept(sites().first()).toList().size(), 2);
}

void RestartTest::findsItAgain()
{
    const QVariant before = kept(sites().value(0));
    QCOMPARE(session(QStringLiteral("find")), 0);
    QCOMPARE(sites().size(), 1);
    QCOMPARE(kept(sites().first()), before);
}

void RestartTest::findsItOnceMore()
{
    QCOMPARE(session(QStringLiteral("find")), 0);
}

// Nothing else is changed before the browser quits.
void RestartTest::keepsAShortcut()
{
    QCOMPARE(session(QStringLiteral("changeShortcut")), 0);
    QCOMPARE(session(QStringLiteral("useShortcut")), 0);
}

void Session::initTestCase()
{
    EVENTUALLY(_play.window());
    _window = _play.window();
    _play.web().setPage(QStringLiteral("www.garden.localhost"), QStringLiteral("/"),
                        "<!doctype html><title>The garden</title>");
    QVERIFY(_play.visit(QStringLiteral("http://www.garden.localhost/")));
    QVERIFY(Hands::press(QStringLiteral("ctrl+shift+o")));
    EVENTUALLY(Play::isDrawerOpen(_window));
    EVENTUALLY(Play::siteLabel(_window) == QLatin1String("garden.localhost"));
}

void Session::save()
{
    QVERIFY(_play.choose({QStringLiteral("Wayfold"), QStringLiteral("Save Current Page")}));
    EVENTUALLY(Play::scratchRows(_window).contains(QLatin1String("The garden")));
    QVERIFY(Hands::press(QStringLiteral("ctrl+shift+k")));
    EVENTUALLY(Eyes::dialog());
    QVERIFY(Hands::clickInto(Eyes::firstOf<QLineEdit>(Eyes::dialog())));
    QVERIFY(Hands::press(QStringLiteral("ctrl+a")));
    QVERIFY(Hands::type(QStringLiteral("Seeds")));
    QVERIFY(Hands::clickInto(Eyes::firstOf<QTextEdit>(Eyes::dialog())));
    QVERIFY(Hands::type(QStringLiteral("Beans, peas & <beets>")));
    QVERIFY(Hands::clickOn(Eyes::dialogButton(QStringLiteral("OK"))));
    EVENTUALLY(!Eyes::dialog());
    EVENTUALLY(Play::scratchRows(_window).contains(QLatin1String("Seeds")));
}

void Session::find()
{
    EVENTUALLY(Play::scratchRows(_window).contains(QLatin1String("The garden")));
    EVENTUALLY(Play::scratchRows(_window).contains(QLatin1String("Seeds")));
    // The note still says what it said.
    QVERIFY(_play.chooseRow(QStringLiteral("Seeds")));
    QVERIFY(Hands::press(QStringLiteral("Return")));
    EVENTUALLY(Eyes::dialog());
    EVENTUALLY(Eyes::firstOf<QTextEdit>(Eyes::dialog())->toPlainText() == QLatin1String("Beans, peas & <beets>"));
    QVERIFY(Hands::press(QStringLiteral("Escape")));
    EVENTUALLY(!Eyes::dialog());
    // And the link still leads to its page.
    QVERIFY(_play.visit(QStringLiteral("http://www.elsewhere.localhost/")));
    // By key: the list is read anew when the browser has written its history, perhaps between the clicks of two.
    QVERIFY(_play.chooseRow(QStringLiteral("The garden")));
    QVERIFY(Hands::press(QStringLiteral("space")));
    EVENTUALLY(Play::isShown(_window, QStringLiteral("http://www.garden.localhost/")));
}

void Session::changeShortcut()
{
    const auto isInFront = [](const char *className) {
        const QWidget *window = QApplication::activeWindow();
        return window && window->inherits(className);
    };
    QVERIFY(_play.choose({QStringLiteral("Wayfold"), QStringLiteral("Preferences...")}));
    EVENTUALLY(QApplication::activeWindow() && QApplication::activeWindow()->objectName() == u"prefsWindow");
    QVERIFY(Hands::press(QStringLiteral("alt+t"))); // the page of the shortcuts
    QVERIFY(Hands::press(QStringLiteral("alt+m"))); // its table, on the drawer's command
    QVERIFY(Hands::press(QStringLiteral("Return")));
    EVENTUALLY(isInFront("WayfoldShortcutPanel"));
    QVERIFY(Hands::press(QStringLiteral("alt+Escape")));
    EVENTUALLY(isInFront("WayfoldShortcutPanel"));
    QVERIFY(Hands::press(QStringLiteral("Return")));
    EVENTUALLY(!isInFront("WayfoldShortcutPanel"));
    QVERIFY(Hands::press(QStringLiteral("Escape")));
    EVENTUALLY(_window->isActiveWindow());
}

void Session::useShortcut()
{
    QVERIFY(Hands::press(QStringLiteral("alt+Escape")));
    EVENTUALLY(Play::isDrawerClosed(_window));
    QVERIFY(Hands::press(QStringLiteral("alt+Escape")));
    EVENTUALLY(Play::isDrawerOpen(_window));
}

void Session::cleanupTestCase()
{
    bool hasQuit = false;
    Stage::onMain([&] { QObject::connect(qApp, &QCoreApplication::aboutToQuit, qApp, [&] { hasQuit = true; }); });
    QVERIFY(_play.bringToFront(_window));
    QVERIFY(Hands::press(QStringLiteral("ctrl+q")));
    EVENTUALLY(_play.windows().isEmpty());
    EVENTUALLY(hasQuit);
}

int main(int argc, char **argv)
{
    if (argc == 3 && qstrcmp(argv[1], "--session") == 0) {
        argv[1] = argv[2]; // the one function to play
        return Play::performAtHome<Session>(2, argv);
    }
    const QCoreApplication application(argc, argv);
    RestartTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "RestartTest.moc"
