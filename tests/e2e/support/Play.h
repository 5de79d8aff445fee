#pragma once

#include "browser/Language.h"
#include "tests/e2e/support/PageServer.h"
#include "tests/e2e/support/Stage.h"
#include "tests/support/TemporaryHome.h"

#include <QApplication>
#include <QMap>
#include <QVariant>
#include <memory>

class Browser;
class BrowserWindow;
class QAbstractButton;
class QComboBox;
class QTreeView;

// One run of the browser with the real plug-in, and what its user does with it by pointer and keys. The browser is made
// on the main thread. Questions may be asked from either thread. What the user does is for his own, and is false (or
// null) when it did not come about in good time.
//
//     int main(int argc, char **argv)
//     {
//         return Play::perform<SiteFocusTest>(argc, argv, {{"WayfoldAutoFocusOnSiteChange", 1}});
//     }
class Play
{
public:
    using Settings = QMap<QString, QVariant>;

    // Runs a test class, made from the play, on a browser with a fresh home in which these settings are stored, and
    // gives back the test's exit code.
    template <class Test>
    static int perform(int argc, char **argv, const Settings &settings = {})
    {
        const TemporaryHome home;
        storeSettings(settings);
        return performAtHome<Test>(argc, argv);
    }

    // The same in the home that there is, in a palette of the desktop's own or in the one that is given.
    template <class Test>
    static int performAtHome(int argc, char **argv, const QPalette *palette = nullptr)
    {
        prepareProcess();
        const QApplication application(argc, argv);
        const Language language;
        if (palette)
            QApplication::setPalette(*palette);
        Play play;
        return Stage::perform([&] {
            Test test(play);
            return QTest::qExec(&test, argc, argv);
        });
    }

    // Writes the plug-in's settings into the home that there is.
    static void storeSettings(const Settings &settings);
    // Before the QApplication is made.
    static void prepareProcess();

    // Starts the browser, which opens its first window.
    Play();
    ~Play();

    PageServer &web() { return _web; }
    // Oldest first.
    QList<BrowserWindow *> windows() const;
    // The one that has the keyboard, itself or through a drawer or dialog of it; null when none has.
    BrowserWindow *window() const;

    // ---- What the user does with the browser

    // Ctrl+N; the new window.
    BrowserWindow *openWindow();
    bool closeWindow(BrowserWindow *window);
    bool bringToFront(BrowserWindow *window);
    // Leaves a single new window.
    BrowserWindow *startOver();
    // Ctrl+T.
    bool openTab();
    bool chooseTab(int index);
    // Types the address into the address field, and waits until the page is there.
    bool visit(const QString &address);
    // Clicks the link with that text in the page in front.
    bool clickLink(const QString &text);
    // Clicks the link at that place of the page in front, from its upper left corner, as soon as the page takes notice
    // of the pointer there.
    bool clickLinkAt(const QPoint &position, int button = 1);
    // Clicks through the menu bar, as in {"Wayfold", "New Note..."}.
    bool choose(const QStringList &titles);
    // Clicks an entry of the menu that is open, or about to be.
    static bool chooseEntry(const QString &title);
    // Right-clicks a row of a list, and clicks through the menu that comes.
    static bool chooseFromContextMenu(QTreeView *list, const QString &row, const QString &title);
    // Ctrl+0, the drawer's command, for the window in front.
    bool openDrawer();
    bool closeDrawer();
    // Clicks the header of a tab of that drawer.
    bool showDrawerTab(const QString &title);
    // Picks an entry of the Scratchpad's pop-up of the window in front.
    bool chooseSite(const QString &title);
    // Clicks a row of its list, which has the keyboard then.
    bool chooseRow(const QString &text);

    // Whether the window's front tab shows that page, and all of it.
    static bool isShown(const BrowserWindow *window, const QString &address);
    static QString address(const BrowserWindow *window);

    // ---- The drawer of a window; all none when it has no drawer

    static QWidget *drawer(const BrowserWindow *window);
    // Whether it has slid out, or in, completely.
    static bool isDrawerOpen(const BrowserWindow *window);
    static bool isDrawerClosed(const BrowserWindow *window);
    // What the Scratchpad's pop-up reads, whether it can be seen or not.
    static QString siteLabel(const BrowserWindow *window);
    static QComboBox *sitePopup(const BrowserWindow *window);
    // The button that can be seen and whose tool tip reads so; null when there is none.
    static QAbstractButton *drawerButton(const BrowserWindow *window, const QString &toolTip);
    static QTreeView *scratchList(const BrowserWindow *window);
    // What the user sees in the Scratchpad, from the top to the bottom.
    static QStringList scratchRows(const BrowserWindow *window);

private:
    PageServer _web;
    std::unique_ptr<Browser> _browser;
};
