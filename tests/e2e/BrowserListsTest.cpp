#include "browser/Browser.h"
#include "browser/BrowserWindow.h"
#include "platform/files/PropertyList.h"
#include "tests/e2e/support/Eyes.h"
#include "tests/e2e/support/Hands.h"
#include "tests/e2e/support/Play.h"

#include <QDir>
#include <QLineEdit>
#include <QLocale>
#include <QTreeView>

namespace
{
const QString garden = QStringLiteral("http://www.garden.localhost/");
const QString roses = QStringLiteral("http://www.garden.localhost/roses");
const QString harbour = QStringLiteral("http://www.harbour.localhost/");

QByteArray page(const char *title)
{
    return QByteArray("<!doctype html><title>") + title + "</title><h1>" + title + "</h1>";
}
} // namespace

// The browser's bookmarks and its history in the drawer, and what the smart folders make of them.
class BrowserListsTest : public QObject
{
    Q_OBJECT

public:
    explicit BrowserListsTest(Play &play) : _play(play) {}

private Q_SLOTS:
    void initTestCase();
    void init();

    void visitAppearsInTheHistory();
    void searchOpensAMatch();
    void typingInTheListSearches();
    void bookmarksFollowTheFile();
    void bookmarkOfTheBrowserAppears();
    void smartFoldersOfASite();
    void contextMenuOfTheBookmarks();
    void contextMenuOfTheHistory();

private:
    QTreeView *list(const char *name) const
    {
        return Eyes::widgetNamed<QTreeView>(Play::drawer(_window), QString::fromLatin1(name));
    }
    QTreeView *history() const { return list("historyOutlineView"); }
    QTreeView *bookmarks() const { return list("bookmarkOutlineView"); }
    QLineEdit *field(const char *name) const
    {
        return Eyes::widgetNamed<QLineEdit>(Play::drawer(_window), QString::fromLatin1(name));
    }
    // Selects a row of a list and opens it as the keyboard does.
    static bool expand(QTreeView *list, const QString &row);
    static QString today() { return QLocale().toString(QDate::currentDate(), QLocale::ShortFormat); }
    // As another program does.
    static bool writeBookmarks(const QString &extraTitle);

    Play &_play;
    BrowserWindow *_window = nullptr;
};

bool BrowserListsTest::expand(QTreeView *list, const QString &row)
{
    const qsizetype before = Eyes::rowTexts(list).size();
    return Hands::clickOnRow(list, row) && Stage::eventually([list] { return list->hasFocus(); }) &&
           Hands::press(QStringLiteral("Right")) &&
           Stage::eventually([&] { return Eyes::rowTexts(list).size() > before; });
}

bool BrowserListsTest::writeBookmarks(const QString &extraTitle)
{
    const auto link = [](const QString &title, const QString &address, const QString &uuid) {
        return QVariantMap{
            {QStringLiteral("WebBookmarkType"), QStringLiteral("WebBookmarkTypeLeaf")},
            {QStringLiteral("WebBookmarkUUID"), uuid},
            {QStringLiteral("URLString"), address},
            {QStringLiteral("URIDictionary"), QVariantMap{{QStringLiteral("title"), title}}},
        };
    };
    const QVariantMap folder{
        {QStringLiteral("WebBookmarkType"), QStringLiteral("WebBookmarkTypeList")},
        {QStringLiteral("WebBookmarkUUID"), QStringLiteral("PLACES")},
        {QStringLiteral("Title"), QStringLiteral("Places")},
        {QStringLiteral("Children"), QVariantList{link(QStringLiteral("The harbour"), harbour, QStringLiteral("H")),
                                                  link(extraTitle, garden, QStringLiteral("X"))}},
    };
    const QString path = QDir::homePath() + QStringLiteral("/Library/Safari/Bookmarks.plist");
    QVariantMap file = PropertyList::readDictionaryFile(path);
    QVariantList children = file.value(QStringLiteral("Children")).toList();
    children.removeIf([](const QVariant &child) {
        return child.toMap().value(QStringLiteral("WebBookmarkUUID")) == QLatin1String("PLACES");
    });
    children.append(folder);
    file.insert(QStringLiteral("Children"), children);
    return PropertyList::writeFile(file, path);
}

void BrowserListsTest::initTestCase()
{
    EVENTUALLY(_play.window());
    _play.web().setPage(QStringLiteral("www.garden.localhost"), QStringLiteral("/"), page("The garden"));
    _play.web().setPage(QStringLiteral("www.garden.localhost"), QStringLiteral("/roses"), page("Pruning roses"));
    _play.web().setPage(QStringLiteral("www.harbour.localhost"), QStringLiteral("/"), page("The harbour"));
}

void BrowserListsTest::init()
{
    QVERIFY(_window = _play.startOver());
    QVERIFY(_play.openDrawer());
}

void BrowserListsTest::visitAppearsInTheHistory()
{
    QVERIFY(_play.showDrawerTab(QStringLiteral("History")));
    QVERIFY(_play.visit(garden));
    EVENTUALLY(Eyes::rowTexts(history()).contains(QLatin1String("garden.localhost")));
    QVERIFY(expand(history(), QStringLiteral("garden.localhost")));
    QVERIFY(expand(history(), today()));
    EVENTUALLY(Eyes::rowTexts(history()).contains(QLatin1String("The garden")));
    // The next visit comes into the folders as they stand, and within two seconds.
    QVERIFY(_play.visit(roses));
    QElapsedTimer timer;
    timer.start();
    EVENTUALLY(Eyes::rowTexts(history()).mid(0, 4) ==
               QStringList({QStringLiteral("garden.localhost"), today(), QStringLiteral("Pruning roses"),
                            QStringLiteral("The garden")}));
    QVERIFY2(timer.elapsed() < 2000, qPrintable(QString::number(timer.elapsed())));
}

void BrowserListsTest::searchOpensAMatch()
{
    QVERIFY(_play.visit(garden));
    QVERIFY(_play.visit(roses));
    QVERIFY(_play.visit(harbour));
    QVERIFY(_play.showDrawerTab(QStringLiteral("History")));
    EVENTUALLY(Eyes::rowTexts(history()).contains(QLatin1String("harbour.localhost")));
    QVERIFY(Hands::clickOn(field("historySearchField")));
    QVERIFY(Hands::type(QStringLiteral("rOSE")));
    EVENTUALLY(Eyes::rowTexts(history()) == QStringList{QStringLiteral("Pruning roses")});
    QVERIFY(Hands::doubleClickOnRow(history(), QStringLiteral("Pruning roses")));
    EVENTUALLY(Play::isShown(_window, roses));
    // The field still holds the search; Return opens what is found first.
    QVERIFY(Hands::clickOn(field("historySearchField")));
    QVERIFY(Hands::press(QStringLiteral("ctrl+a")));
    QVERIFY(Hands::type(QStringLiteral("harbour")));
    EVENTUALLY(Eyes::rowTexts(history()) == QStringList{QStringLiteral("The harbour")});
    QVERIFY(Hands::press(QStringLiteral("Return")));
    EVENTUALLY(Play::isShown(_window, harbour));
}

void BrowserListsTest::typingInTheListSearches()
{
    QVERIFY(_play.visit(garden));
    QVERIFY(_play.showDrawerTab(QStringLiteral("History")));
    EVENTUALLY(Eyes::rowTexts(history()).contains(QLatin1String("garden.localhost")));
    QVERIFY(Hands::clickOnRow(history(), QStringLiteral("garden.localhost")));
    EVENTUALLY(history()->hasFocus());
    QVERIFY(Hands::type(QStringLiteral("zeppelin")));
    EVENTUALLY(field("historySearchField")->text() == QLatin1String("zeppelin"));
    EVENTUALLY(Eyes::rowTexts(history()).isEmpty());
    QVERIFY(Hands::press(QStringLiteral("Escape")));
    EVENTUALLY(Eyes::rowTexts(history()).contains(QLatin1String("garden.localhost")));
    EVENTUALLY(history()->hasFocus());
    // The browser finds in its page, the list among its rows.
    QVERIFY(Hands::press(QStringLiteral("ctrl+f")));
    EVENTUALLY(field("historySearchField")->hasFocus());
    EVENTUALLY(!Eyes::widgetNamed<QWidget>(_window, QStringLiteral("findBar")));
}

void BrowserListsTest::bookmarksFollowTheFile()
{
    QVERIFY(writeBookmarks(QStringLiteral("A gate")));
    QVERIFY(_play.showDrawerTab(QStringLiteral("Bookmarks")));
    EVENTUALLY(Eyes::rowTexts(bookmarks()).contains(QLatin1String("Places")));
    QVERIFY(expand(bookmarks(), QStringLiteral("Places")));
    EVENTUALLY(Eyes::rowTexts(bookmarks()).contains(QLatin1String("A gate")));
    QVERIFY(writeBookmarks(QStringLiteral("A fence")));
    EVENTUALLY(Eyes::rowTexts(bookmarks()).contains(QLatin1String("A fence")));
    QVERIFY(!Eyes::rowTexts(bookmarks()).contains(QLatin1String("A gate")));
    QVERIFY(Eyes::rowTexts(bookmarks()).contains(QLatin1String("The harbour")));
    QVERIFY(Hands::doubleClickOnRow(bookmarks(), QStringLiteral("The harbour")));
    EVENTUALLY(Play::isShown(_window, harbour));
}

void BrowserListsTest::bookmarkOfTheBrowserAppears()
{
    QVERIFY(_play.showDrawerTab(QStringLiteral("Bookmarks")));
    QVERIFY(_play.bringToFront(_window));
    QVERIFY(_play.visit(roses));
    QVERIFY(Hands::press(QStringLiteral("ctrl+d")));
    EVENTUALLY(Eyes::dialog());
    QVERIFY(Hands::press(QStringLiteral("Return")));
    EVENTUALLY(!Eyes::dialog());
    QElapsedTimer timer;
    timer.start();
    QVERIFY(Hands::clickOn(field("bookmarkSearchField")));
    QVERIFY(Hands::type(QStringLiteral("pruning")));
    EVENTUALLY(Eyes::rowTexts(bookmarks()) == QStringList{QStringLiteral("Pruning roses")});
    QVERIFY2(timer.elapsed() < 2000, qPrintable(QString::number(timer.elapsed())));
}

void BrowserListsTest::smartFoldersOfASite()
{
    QVERIFY(writeBookmarks(QStringLiteral("A fence")));
    QVERIFY(_play.visit(garden));
    QVERIFY(_play.choose({QStringLiteral("Wayfold"), QStringLiteral("Focus on www.garden.localhost")}));
    EVENTUALLY(Play::siteLabel(_window) == QLatin1String("garden.localhost"));
    const QString relatedBookmarks = QStringLiteral("Related Bookmarks");
    const QString relatedHistory = QStringLiteral("Related History");
    EVENTUALLY(Play::scratchRows(_window).contains(relatedBookmarks));
    QVERIFY(expand(Play::scratchList(_window), relatedBookmarks));
    EVENTUALLY(Play::scratchRows(_window).contains(QLatin1String("A fence")));
    QVERIFY(!Play::scratchRows(_window).contains(QLatin1String("The harbour")));
    QVERIFY(expand(Play::scratchList(_window), relatedHistory));
    EVENTUALLY(Play::scratchRows(_window).contains(today()));
    QVERIFY(expand(Play::scratchList(_window), today()));
    EVENTUALLY(Play::scratchRows(_window).contains(QLatin1String("The garden")));
    QVERIFY(!Play::scratchRows(_window).contains(QLatin1String("The harbour")));
}

void BrowserListsTest::contextMenuOfTheBookmarks()
{
    QVERIFY(writeBookmarks(QStringLiteral("A gate")));
    QVERIFY(_play.showDrawerTab(QStringLiteral("Bookmarks")));
    EVENTUALLY(Eyes::rowTexts(bookmarks()).contains(QLatin1String("Places")));
    QVERIFY(expand(bookmarks(), QStringLiteral("Places")));
    QVERIFY(Play::chooseFromContextMenu(bookmarks(), QStringLiteral("The harbour"), QStringLiteral("Open Item")));
    EVENTUALLY(Play::isShown(_window, harbour));
    NOW(_window->tabCount() == 1);
}

void BrowserListsTest::contextMenuOfTheHistory()
{
    QVERIFY(_play.visit(harbour));
    QVERIFY(_play.visit(garden));
    QVERIFY(_play.showDrawerTab(QStringLiteral("History")));
    QVERIFY(Hands::clickOn(field("historySearchField")));
    QVERIFY(Hands::type(QStringLiteral("harbour")));
    EVENTUALLY(Eyes::rowTexts(history()) == QStringList{QStringLiteral("The harbour")});
    QVERIFY(
        Play::chooseFromContextMenu(history(), QStringLiteral("The harbour"), QStringLiteral("Open Item in New Tab")));
    EVENTUALLY(_window->tabCount() == 2 && _window->currentTab() == 1);
    EVENTUALLY(Play::isShown(_window, harbour));
}

int main(int argc, char **argv)
{
    return Play::perform<BrowserListsTest>(argc, argv);
}

#include "BrowserListsTest.moc"
