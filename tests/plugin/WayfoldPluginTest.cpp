#include "platform/files/PropertyList.h"
#include "platform/host/HostObserver.h"
#include "platform/host/HostPlugin.h"
#include "tests/support/FakeHost.h"
#include "tests/support/TemporaryHome.h"

#include <QApplication>
#include <QFileInfo>
#include <QMenu>
#include <QPluginLoader>
#include <QtTest>

// The library as a host finds and starts it. It has its own copy of everything that is linked into this program, so
// only what passes through the host classes, and what can be seen on the screen and the disk, tells how it does.
class WayfoldPluginTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void startsEverything();
    void itemsThatHostsLookFor();
    void sitesWithList();
    void windowThatBecomesKeyGetsADrawer();
    void pageLoadIsHandled();
    void windowThatClosesLosesItsDrawer();
    void endsWithTheApplication();

private:
    // The drawers on the screen and off it.
    static int drawerCount()
    {
        const QWidgetList widgets = QApplication::allWidgets();
        return int(std::count_if(widgets.cbegin(), widgets.cend(),
                                 [](const QWidget *widget) { return widget->inherits("SiteDrawer"); }));
    }

    TemporaryHome _home;
    FakeHostApplication _host;
    HostPlugin *_plugin = nullptr;
    HostObserver *_observer = nullptr;
    std::shared_ptr<FakeHostWindow> _window;
};

void WayfoldPluginTest::initTestCase()
{
    const auto folder = [](const char *title) {
        return QVariantMap{{"WebBookmarkType", "WebBookmarkTypeList"}, {"Title", title}, {"Children", QVariantList()}};
    };
    const QVariantMap note{{"WebBookmarkType", "WebBookmarkTypeNote"}, {"Title", "note"}, {"Note", "text"}};
    const QVariantMap root{{"WebBookmarkType", "WebBookmarkTypeList"},
                           {"Title", ""},
                           {"Children", QVariantList{folder("b.example"), note, folder("<a>"), folder("b.example")}}};
    const QString items = _home.path(QStringLiteral("Library/Wayfold/Bookmarks.plist"));
    QVERIFY(QDir().mkpath(QFileInfo(items).path()));
    QVERIFY(PropertyList::writeFile(root, items));
    QPluginLoader loader(qEnvironmentVariable("WAYFOLD_BUNDLE") + QStringLiteral("/Contents/Plugin/libwayfold.so"));
    _plugin = qobject_cast<HostPlugin *>(loader.instance());
    QVERIFY2(_plugin, qPrintable(loader.errorString()));
    _observer = _plugin->load(&_host);
    QVERIFY(_observer);
}

void WayfoldPluginTest::startsEverything()
{
    QCOMPARE(_host.menuBar.menus.size(), 1);
    QCOMPARE(_host.menuBar.menus.constFirst()->title(), QStringLiteral("Wa&yfold"));
    QVERIFY(QFileInfo(_home.path(QStringLiteral("Library/Wayfold"))).isDir());
    const QString settings = _home.path(QStringLiteral("Library/Preferences/org.wayfold.Wayfold.plist"));
    QTRY_VERIFY(QFileInfo::exists(settings));
    QStringList keys = PropertyList::readDictionaryFile(settings).keys();
    keys.sort();
    QCOMPARE(keys,
             (QStringList{"WayfoldAutoFocusOnSiteChange", "WayfoldCloseDrawerForUnknownSite",
                          "WayfoldConfirmItemDelete", "WayfoldCreateAutoFolders", "WayfoldDefaultDrawerContentWidth",
                          "WayfoldDefaultFirstTab", "WayfoldHistoryGroupingKey", "WayfoldListViewFontName",
                          "WayfoldListViewFontSize", "WayfoldMenuItemShortcuts", "WayfoldOpenDrawerForKnownSite",
                          "WayfoldOpenDrawerOnNewWindow", "WayfoldShowBookmarkIcons", "WayfoldShowFavIcons"}));
}

void WayfoldPluginTest::itemsThatHostsLookFor()
{
    QHash<QString, QString> shortcuts;
    for (const QAction *item : _host.menuBar.menus.constFirst()->actions())
        shortcuts.insert(item->objectName(), item->shortcut().toString());
    QCOMPARE(shortcuts.value("toggleDrawerItem"), QString("Ctrl+0"));
    QCOMPARE(shortcuts.value("focusOnSiteItem"), QString("Ctrl+Shift+O"));
    QCOMPARE(shortcuts.value("newNoteItem"), QString("Ctrl+Shift+K"));
}

// Folders at the top are lists of sites; a note beside them is none.
void WayfoldPluginTest::sitesWithList()
{
    QCOMPARE(_plugin->sitesWithList(), QStringList({"b.example", "<a>", "b.example"}));
}

void WayfoldPluginTest::windowThatBecomesKeyGetsADrawer()
{
    QCOMPARE(drawerCount(), 0);
    _window = _host.openWindow();
    _window->makeWidget();
    _observer->windowDidBecomeKey(_window);
    QCOMPARE(drawerCount(), 1);
    _observer->windowDidBecomeKey(_window);
    QCOMPARE(drawerCount(), 1);
}

void WayfoldPluginTest::pageLoadIsHandled()
{
    const auto view = _window->addTab(QStringLiteral("http://news.example.com/"));
    _host.finishLoad(*view, view->frame);
    _host.draw(*view);
    QCOMPARE(_host.order, QStringLiteral("LD"));
    QMenu *menu = _host.menuBar.menus.constFirst();
    Q_EMIT menu->aboutToShow();
    QStringList texts;
    const QList<QAction *> items = menu->actions();
    for (const QAction *item : items)
        texts.append(item->text());
    QVERIFY2(texts.contains(QStringLiteral("Focus on news.example.com")), qPrintable(texts.join(QLatin1Char('\n'))));
    Q_EMIT menu->aboutToHide();
}

void WayfoldPluginTest::windowThatClosesLosesItsDrawer()
{
    _observer->windowFrameDidChange(_window);
    _observer->windowWillClose(_window);
    _host.key.reset();
    _host.windows.clear();
    _window.reset();
    QTRY_COMPARE(drawerCount(), 0);
}

void WayfoldPluginTest::endsWithTheApplication()
{
    const QString items = _home.path(QStringLiteral("Library/Wayfold/Bookmarks.plist"));
    QVERIFY(QFile::remove(items)); // written when the window closed
    _observer->applicationWillTerminate();
    QCoreApplication::processEvents();
    QVERIFY(!QFileInfo::exists(items)); // quitting itself saves nothing
}

QTEST_MAIN(WayfoldPluginTest)
#include "WayfoldPluginTest.moc"
