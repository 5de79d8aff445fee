#include "browser/BrowserHostMenuBar.h"

#include <QTest>

class BrowserHostMenuBarTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void appendsToEveryWindow();
    void windowsThatComeLater();
    void windowsAndMenusThatHaveGone();
    void shortcutsWithoutMenuBar();
    void shortcutOfAnItem();
};

namespace
{
QStringList titles(const QMenuBar &bar)
{
    QStringList result;
    for (const QAction *action : bar.actions())
        result.append(action->text());
    return result;
}
} // namespace

void BrowserHostMenuBarTest::appendsToEveryWindow()
{
    QMenu own("File");
    QMenu appended("Drawer");
    QMenuBar one;
    QMenuBar other;
    one.addMenu(&own);
    BrowserHostMenuBar host;
    host.addMenuBar(&one);
    host.addMenuBar(&other);
    host.appendMenu(&appended);
    host.appendMenu(nullptr);
    QCOMPARE(titles(one), QStringList({"File", "Drawer"}));
    QCOMPARE(titles(other), QStringList("Drawer"));
}

void BrowserHostMenuBarTest::windowsThatComeLater()
{
    QMenu first("One");
    QMenu second("Two");
    BrowserHostMenuBar host;
    host.appendMenu(&first);
    host.appendMenu(&second);
    QMenuBar bar;
    bar.addMenu("File");
    host.addMenuBar(&bar);
    QCOMPARE(titles(bar), QStringList({"File", "One", "Two"}));
}

void BrowserHostMenuBarTest::windowsAndMenusThatHaveGone()
{
    BrowserHostMenuBar host;
    auto bar = std::make_unique<QMenuBar>();
    host.addMenuBar(bar.get());
    bar.reset();
    auto menu = std::make_unique<QMenu>("Gone");
    host.appendMenu(menu.get());
    menu.reset();
    QMenuBar later;
    host.addMenuBar(&later);
    QCOMPARE(titles(later), QStringList());
}

// A pop-up window has no menu bar to be seen, and obeys the shortcuts all the same.
void BrowserHostMenuBarTest::shortcutsWithoutMenuBar()
{
    QMenu menu("Drawer");
    int triggered = 0;
    QAction *action = menu.addAction("Open", [&] { ++triggered; });
    action->setShortcut(QKeySequence("Ctrl+0"));
    QWidget window;
    auto *bar = new QMenuBar(&window);
    bar->hide();
    BrowserHostMenuBar host;
    host.addMenuBar(bar);
    host.appendMenu(&menu);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QTest::keyClick(&window, Qt::Key_0, Qt::ControlModifier);
    QCOMPARE(triggered, 1);
}

void BrowserHostMenuBarTest::shortcutOfAnItem()
{
    BrowserHostMenuBar host;
    QCOMPARE(host.shortcutOf("open"), QString());
    auto gone = std::make_unique<QMenu>();
    host.appendMenu(gone.get());
    QMenu menu;
    host.appendMenu(&menu);
    gone.reset();
    menu.addAction("Other")->setShortcut(QKeySequence("Ctrl+1"));
    QAction *open = menu.addAction("Open");
    open->setObjectName("open");
    QCOMPARE(host.shortcutOf("open"), QString());
    open->setShortcut(QKeySequence("Ctrl+Shift+O"));
    QCOMPARE(host.shortcutOf("open"), QString("Ctrl+Shift+O"));
    QCOMPARE(host.shortcutOf("close"), QString());
}

QTEST_MAIN(BrowserHostMenuBarTest)
#include "BrowserHostMenuBarTest.moc"
