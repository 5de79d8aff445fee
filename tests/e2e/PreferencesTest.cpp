#include "browser/Browser.h"
#include "browser/BrowserWindow.h"
#include "platform/files/PropertyList.h"
#include "tests/e2e/support/Desk.h"
#include "tests/e2e/support/Eyes.h"
#include "tests/e2e/support/Hands.h"
#include "tests/e2e/support/Play.h"

#include <QAbstractButton>
#include <QDir>
#include <QListView>
#include <QTabBar>
#include <QTabWidget>
#include <QTreeView>

// The preferences beside a browser window, under a window manager: what changes at once, and what makes them close.
class PreferencesTest : public QObject
{
    Q_OBJECT

public:
    explicit PreferencesTest(Play &play) : _play(play) {}

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void storeWhatIsClicked();
    void closeWhenTheBrowserIsClicked();
    void closeByKey();
    void stayForFontPanelAndDrawer();
    void stayForTheSheet();
    void openAgainForAnotherWindow();

private:
    // Null while they are not open.
    static QWidget *preferences();
    static QWidget *windowOfClass(const char *className);
    bool open();
    bool isClosed();
    bool showPage(int page);
    bool clickIntoThePage();
    static bool clickButton(const QString &name);
    static QVariant storedSetting(const QString &key);

    Play &_play;
    BrowserWindow *_window = nullptr;
};

QWidget *PreferencesTest::preferences()
{
    return Stage::onMain([]() -> QWidget * {
        for (QWidget *window : QApplication::topLevelWidgets()) {
            if (window->objectName() == u"prefsWindow" && window->isVisible())
                return window;
        }
        return nullptr;
    });
}

QWidget *PreferencesTest::windowOfClass(const char *className)
{
    return Stage::onMain([className]() -> QWidget * {
        for (QWidget *window : QApplication::topLevelWidgets()) {
            if (window->inherits(className) && window->isVisible())
                return window;
        }
        return nullptr;
    });
}

bool PreferencesTest::open()
{
    return _play.choose({QStringLiteral("Wayfold"), QStringLiteral("Preferences...")}) &&
           Stage::eventually([] { return preferences() && preferences()->isActiveWindow(); });
}

bool PreferencesTest::isClosed()
{
    return Stage::eventually([] { return !preferences(); }) &&
           Stage::eventually([this] { return _window->isActiveWindow(); });
}

bool PreferencesTest::showPage(int page)
{
    auto *pages = Eyes::firstOf<QTabWidget>(preferences());
    auto *bar = Eyes::firstOf<QTabBar>(preferences());
    return Hands::pointAt(bar, [&] { return std::optional(bar->mapToGlobal(bar->tabRect(page).center())); }) &&
           Hands::click() && Stage::eventually([&] { return pages->currentIndex() == page; });
}

// Where nothing is in front of it.
bool PreferencesTest::clickIntoThePage()
{
    return Hands::clickAt(Stage::onMain([this] { return _window->mapToGlobal(QPoint(60, _window->height() / 2)); }));
}

bool PreferencesTest::clickButton(const QString &name)
{
    auto *button = Eyes::widgetNamed<QAbstractButton>(preferences(), name);
    const auto left = [&] { return std::optional(button->mapToGlobal(QPoint(10, button->height() / 2))); };
    return button && Hands::pointAt(button, left) && Hands::click();
}

QVariant PreferencesTest::storedSetting(const QString &key)
{
    const QString file = QDir::homePath() + QStringLiteral("/Library/Preferences/org.wayfold.Wayfold.plist");
    return PropertyList::readDictionaryFile(file).value(key);
}

void PreferencesTest::initTestCase()
{
    EVENTUALLY(_play.window());
}

void PreferencesTest::init()
{
    QVERIFY(_window = _play.startOver());
    Stage::onMain([this] { _window->setGeometry(10, 40, 900, 700); });
    EVENTUALLY(_window->geometry() == QRect(10, 40, 900, 700));
    EVENTUALLY(Play::isDrawerClosed(_window));
}

void PreferencesTest::cleanup()
{
    Stage::onMain([] {
        if (preferences())
            preferences()->close();
    });
}

void PreferencesTest::storeWhatIsClicked()
{
    QVERIFY(open());
    QVERIFY(clickButton(QStringLiteral("autoFocusField")));
    EVENTUALLY(storedSetting(QStringLiteral("WayfoldAutoFocusOnSiteChange")) == 1);
    QVERIFY(clickButton(QStringLiteral("openOnKnownSitesCell")));
    EVENTUALLY(storedSetting(QStringLiteral("WayfoldOpenDrawerForKnownSite")) == 1);
    QVERIFY(clickButton(QStringLiteral("closeOnUnknownField")));
    EVENTUALLY(storedSetting(QStringLiteral("WayfoldCloseDrawerForUnknownSite")) == 1);
    QVERIFY(Hands::press(QStringLiteral("alt+o"))); // the letter of "Only when you ask for it"
    EVENTUALLY(storedSetting(QStringLiteral("WayfoldCloseDrawerForUnknownSite")) == 0);
    EVENTUALLY(storedSetting(QStringLiteral("WayfoldOpenDrawerForKnownSite")) == 0);
    QVERIFY(clickButton(QStringLiteral("autoFocusField")));
    EVENTUALLY(storedSetting(QStringLiteral("WayfoldAutoFocusOnSiteChange")) == 0);
    QVERIFY(preferences());
}

void PreferencesTest::closeWhenTheBrowserIsClicked()
{
    QVERIFY(open());
    QVERIFY(clickIntoThePage());
    QVERIFY(isClosed());
    QVERIFY(open()); // the command is there again
}

void PreferencesTest::closeByKey()
{
    QVERIFY(open());
    QVERIFY(Hands::press(QStringLiteral("Escape")));
    QVERIFY(isClosed());
}

void PreferencesTest::stayForFontPanelAndDrawer()
{
    QVERIFY(open());
    QVERIFY(showPage(1));
    QVERIFY(clickButton(QStringLiteral("setDrawerFontButton")));
    EVENTUALLY(windowOfClass("FontPanel"));
    EVENTUALLY(Play::isDrawerOpen(_window));
    QWidget *panel = windowOfClass("FontPanel");
    Stage::onMain([&] { panel->move(20, 100); });
    auto *sizes = Stage::onMain([&] { return panel->findChildren<QListView *>().value(2); });
    const auto fourteen = [&]() -> std::optional<QPoint> {
        const QModelIndexList found = sizes->model()->match(sizes->model()->index(0, 0), Qt::DisplayRole, "14");
        if (found.isEmpty())
            return std::nullopt;
        return sizes->viewport()->mapToGlobal(sizes->visualRect(found.constFirst()).center());
    };
    QVERIFY(Hands::pointAt(sizes->viewport(), fourteen) && Hands::click());
    EVENTUALLY(storedSetting(QStringLiteral("WayfoldListViewFontSize")) == 14.0);
    QVERIFY(preferences());

    QVERIFY(Hands::clickOn(Eyes::firstOf<QTabBar>(Play::drawer(_window))));
    EVENTUALLY(Play::drawer(_window)->isActiveWindow());
    Stage::settle();
    QVERIFY(preferences() && windowOfClass("FontPanel"));

    const WId panelId = Stage::onMain([&] { return panel->winId(); });
    QVERIFY(Desk::activate(panelId));
    EVENTUALLY(panel->isActiveWindow());
    QVERIFY(Hands::press(QStringLiteral("Escape")));
    EVENTUALLY(!windowOfClass("FontPanel"));
    QVERIFY(preferences());
    QVERIFY(clickIntoThePage());
    QVERIFY(isClosed());
    EVENTUALLY(Play::isDrawerClosed(_window)); // as it was before
}

void PreferencesTest::stayForTheSheet()
{
    QVERIFY(open());
    QVERIFY(showPage(2));
    auto *table = Eyes::widgetNamed<QTreeView>(preferences(), QStringLiteral("menuItemTableView"));
    const QString first = Stage::onMain([&] { return table->model()->index(0, 0).data().toString(); });
    QVERIFY(Hands::clickOnRow(table, first));
    QVERIFY(Hands::press(QStringLiteral("End"))); // the table is longer than the page
    QVERIFY(Hands::doubleClickOnRow(table, QStringLiteral("About Wayfold")));
    EVENTUALLY(windowOfClass("WayfoldShortcutPanel"));
    EVENTUALLY(windowOfClass("WayfoldShortcutPanel")->isActiveWindow());
    QVERIFY(Hands::press(QStringLiteral("ctrl+i")));
    QVERIFY(Hands::clickOn(Eyes::dialogButton(QStringLiteral("OK"))));
    EVENTUALLY(!windowOfClass("WayfoldShortcutPanel"));
    Stage::settle();
    QVERIFY(preferences());
    const int last = Stage::onMain([&] { return table->model()->rowCount() - 1; });
    EVENTUALLY(table->model()->index(last, 1).data().toString().trimmed() == QString::fromUtf8("\u2318I"));
    QVERIFY(clickIntoThePage());
    QVERIFY(isClosed());

    QVERIFY(Hands::press(QStringLiteral("ctrl+i"))); // works from now on
    const auto aboutWindow = [] {
        for (QWidget *window : QApplication::topLevelWidgets()) {
            if (window->isVisible() && window->windowTitle() == u"About Wayfold")
                return window;
        }
        return static_cast<QWidget *>(nullptr);
    };
    EVENTUALLY(aboutWindow() && aboutWindow()->isActiveWindow());
    QVERIFY(Hands::press(QStringLiteral("Escape")));
    EVENTUALLY(!aboutWindow());
}

void PreferencesTest::openAgainForAnotherWindow()
{
    QVERIFY(open());
    QVERIFY(clickIntoThePage());
    QVERIFY(isClosed());
    QVERIFY(_window = _play.openWindow());
    QVERIFY(open());
    QVERIFY(showPage(1));
    QVERIFY(clickButton(QStringLiteral("setDrawerFontButton")));
    EVENTUALLY(Play::isDrawerOpen(_window)); // that of the window in front
    QVERIFY(Hands::press(QStringLiteral("Escape")));
    EVENTUALLY(!windowOfClass("FontPanel"));
    Stage::onMain([] { preferences()->close(); });
    EVENTUALLY(Play::isDrawerClosed(_window));
}

int main(int argc, char **argv)
{
    return Play::perform<PreferencesTest>(argc, argv);
}

#include "PreferencesTest.moc"
