#include "browser/Browser.h"
#include "browser/BrowserWindow.h"
#include "platform/files/PropertyList.h"
#include "tests/e2e/support/Desk.h"
#include "tests/e2e/support/Eyes.h"
#include "tests/e2e/support/Hands.h"
#include "tests/e2e/support/Play.h"

#include <QComboBox>
#include <QTabBar>
#include <QTreeView>

namespace
{
QVariantMap link(const QString &title)
{
    return {
        {QStringLiteral("WebBookmarkType"), QStringLiteral("WebBookmarkTypeLeaf")},
        {QStringLiteral("WebBookmarkUUID"), QUuid::createUuid().toString()},
        {QStringLiteral("URLString"), QStringLiteral("http://www.drag.localhost/") + title.section(u' ', -1)},
        {QStringLiteral("URIDictionary"), QVariantMap{{QStringLiteral("title"), title}}},
    };
}

QVariantMap folder(const QString &title, const QVariantList &children)
{
    return {
        {QStringLiteral("WebBookmarkType"), QStringLiteral("WebBookmarkTypeList")},
        {QStringLiteral("WebBookmarkUUID"), QUuid::createUuid().toString()},
        {QStringLiteral("Title"), title},
        {QStringLiteral("Children"), children},
    };
}

QString ownFile()
{
    return QDir::homePath() + QStringLiteral("/Library/Wayfold/Bookmarks.plist");
}

QString browsersFile()
{
    return QDir::homePath() + QStringLiteral("/Library/Safari/Bookmarks.plist");
}

bool write(const QVariantMap &root, const QString &file)
{
    return QDir().mkpath(QFileInfo(file).path()) && PropertyList::writeFile(root, file);
}

QString titleOf(const QVariantMap &item)
{
    return item.value(QStringLiteral("Title"), item.value(QStringLiteral("URIDictionary")).toMap()["title"]).toString();
}

// In the item file, of the folder at the end of the path.
QStringList saved(const QStringList &path)
{
    QVariantMap place = PropertyList::readDictionaryFile(ownFile());
    for (const QString &step : path) {
        const QVariantList children = place.value(QStringLiteral("Children")).toList();
        place.clear();
        for (const QVariant &child : children) {
            if (titleOf(child.toMap()) == step)
                place = child.toMap();
        }
    }
    QStringList titles;
    for (const QVariant &child : place.value(QStringLiteral("Children")).toList())
        titles.append(titleOf(child.toMap()));
    return titles;
}
} // namespace

// What a user drags within the drawer, from tab to tab and from window to window.
class DragTest : public QObject
{
    Q_OBJECT

public:
    explicit DragTest(Play &play) : _play(play) {}

    // A site for each test, and one more: "One" to "Four", and a box with something in it.
    static bool writeFiles();

private Q_SLOTS:
    void initTestCase();
    void init();

    void severalRows();
    void betweenTwoRows();
    void overTheSitePopup();
    void overATabsHeader();
    void fromAnotherWindow();

private:
    QTreeView *list() const { return Play::scratchList(_window); }
    // The first ones of the site's list, which ends with its smart folders.
    QStringList rows(int count) const { return Play::scratchRows(_window).mid(0, count); }
    bool liftRow(QTreeView *from, const QString &row)
    {
        return Hands::pointAt(from->viewport(), [&] { return Eyes::rowWithText(from, row); }) && Hands::lift();
    }
    bool carryOnto(QTreeView *onto, const QString &row)
    {
        const std::optional<QPoint> place = Eyes::rowWithText(onto, row);
        return place && Hands::carryTo(*place);
    }

    Play &_play;
    BrowserWindow *_window = nullptr;
    QString _site;
};

bool DragTest::writeFiles()
{
    QVariantList sites;
    for (const char *site :
         {"severalrows", "betweentworows", "overthesitepopup", "overatabsheader", "fromanotherwindow"})
        sites.append(folder(QLatin1String(site),
                            {link("One"), link("Two"), link("Three"), link("Four"), folder("Box", {link("Inside")})}));
    sites.append(folder("target", {link("Aim")}));
    return write(folder(QString(), sites), ownFile()) &&
           write(folder(QString(), {link("The harbour"), link("The garden")}), browsersFile());
}

void DragTest::initTestCase()
{
    EVENTUALLY(_play.window());
}

void DragTest::init()
{
    _site = QString::fromLatin1(QTest::currentTestFunction()).toLower();
    QVERIFY(_window = _play.startOver());
    QVERIFY(_play.openDrawer());
    QVERIFY(_play.chooseSite(_site));
    EVENTUALLY(rows(5) == QStringList({"One", "Two", "Three", "Four", "Box"}));
}

void DragTest::severalRows()
{
    QVERIFY(_play.chooseRow(QStringLiteral("One")));
    QVERIFY(Hands::clickOnAnotherRow(list(), QStringLiteral("Three")));
    EVENTUALLY(list()->selectionModel()->selectedRows().size() == 2);
    QVERIFY(liftRow(list(), QStringLiteral("Three")));
    QVERIFY(carryOnto(list(), QStringLiteral("Box")));
    QVERIFY(Hands::drop());
    EVENTUALLY(saved({_site}) == QStringList({"Two", "Four", "Box"}));
    QCOMPARE(saved({_site, "Box"}), QStringList({"One", "Three", "Inside"}));
    EVENTUALLY(rows(3) == QStringList({"Two", "Four", "Box"}));
}

void DragTest::betweenTwoRows()
{
    QVERIFY(liftRow(list(), QStringLiteral("Four")));
    const std::optional<QRect> row = Eyes::rectOfRow(list(), QStringLiteral("One"));
    QVERIFY(row);
    QVERIFY(Hands::carryTo(QPoint(row->center().x(), row->bottom())));
    QVERIFY(Hands::drop());
    EVENTUALLY(saved({_site}) == QStringList({"One", "Four", "Two", "Three", "Box"}));
    EVENTUALLY(rows(5) == QStringList({"One", "Four", "Two", "Three", "Box"}));
}

// Which shows all sites, one of which opens when the drag rests on it.
void DragTest::overTheSitePopup()
{
    QVERIFY(liftRow(list(), QStringLiteral("One")));
    QVERIFY(Hands::carryTo(Eyes::middleOf(Play::sitePopup(_window))));
    EVENTUALLY(Play::siteLabel(_window) == QLatin1String("Sites"));
    EVENTUALLY(Play::scratchRows(_window).contains(QLatin1String("target")));
    QVERIFY(carryOnto(list(), QStringLiteral("target")));
    EVENTUALLY(Play::scratchRows(_window).contains(QLatin1String("Aim")));
    QVERIFY(carryOnto(list(), QStringLiteral("target")));
    QVERIFY(Hands::drop());
    EVENTUALLY(saved({"target"}) == QStringList({"One", "Aim"}));
    QCOMPARE(saved({_site}), QStringList({"Two", "Three", "Four", "Box"}));
}

// Which brings the tab to the front; on the way to the list the drag crosses the pop-up.
void DragTest::overATabsHeader()
{
    QVERIFY(_play.showDrawerTab(QStringLiteral("Bookmarks")));
    auto *bookmarks = Eyes::widgetNamed<QTreeView>(Play::drawer(_window), QStringLiteral("bookmarkOutlineView"));
    QVERIFY(bookmarks);
    EVENTUALLY(Eyes::rowTexts(bookmarks).contains(QLatin1String("The harbour")));
    QVERIFY(liftRow(bookmarks, QStringLiteral("The harbour")));
    auto *tabs = Eyes::firstOf<QTabBar>(Play::drawer(_window));
    QVERIFY(Hands::carryTo(Stage::onMain([&] { return tabs->mapToGlobal(tabs->tabRect(0).center()); })));
    EVENTUALLY(tabs->currentIndex() == 0 && list()->isVisible());
    QVERIFY(Hands::carryTo(Eyes::middleOf(list()->viewport())));
    EVENTUALLY(Play::scratchRows(_window).contains(_site));
    QVERIFY(carryOnto(list(), _site));
    QVERIFY(Hands::drop());
    EVENTUALLY(saved({_site}) == QStringList({"The harbour", "One", "Two", "Three", "Four", "Box"}));
    QVERIFY(_play.showDrawerTab(QStringLiteral("Bookmarks")));
    EVENTUALLY(Eyes::rowTexts(bookmarks).contains(QLatin1String("The harbour"))); // a copy was made
}

// An item moves, also into a list that shows all sites.
void DragTest::fromAnotherWindow()
{
    BrowserWindow *other = _play.openWindow();
    QVERIFY(other);
    // With room on both sides, wherever the drawer is.
    const auto place = [](BrowserWindow *window, const QPoint &position) {
        const WId id = Stage::onMain([&] { return window->winId(); });
        return Desk::resize(id, QSize(500, 300)) && Desk::moveTo(id, position) &&
               Stage::eventually([&] { return window->geometry() == Desk::geometryOf(id); });
    };
    QVERIFY(_play.openDrawer());
    QVERIFY(place(_window, QPoint(400, 30)));
    QVERIFY(place(other, QPoint(400, 430)));
    EVENTUALLY(Play::siteLabel(other) == QLatin1String("Sites"));
    QTreeView *otherList = Play::scratchList(other);
    EVENTUALLY(Eyes::rowTexts(otherList).contains(_site));
    QVERIFY(_play.bringToFront(_window));
    QVERIFY(liftRow(list(), QStringLiteral("Two")));
    QVERIFY(carryOnto(otherList, QStringLiteral("target")));
    QVERIFY(Hands::drop());
    EVENTUALLY(saved({"target"}).contains(QLatin1String("Two")));
    QCOMPARE(saved({_site}), QStringList({"One", "Three", "Four", "Box"}));
    EVENTUALLY(rows(4) == QStringList({"One", "Three", "Four", "Box"}));
}

int main(int argc, char **argv)
{
    const TemporaryHome home;
    if (!DragTest::writeFiles())
        qFatal("cannot write the files");
    return Play::performAtHome<DragTest>(argc, argv);
}

#include "DragTest.moc"
