#include "platform/widgets/MenuItem.h"

#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QTest>

namespace
{
class Target : public MenuItemTarget
{
public:
    bool enabled = true;
    QString newTitle;
    QList<QAction *> validated;
    QList<QAction *> performed;

    bool validateMenuItem(QAction *item) override
    {
        validated.append(item);
        if (!newTitle.isNull())
            item->setText(newTitle);
        return enabled;
    }
    void performMenuItem(QAction *item) override { performed.append(item); }
};

constexpr unsigned command = MenuItem::NSCommandKeyMask;
constexpr unsigned shift = MenuItem::NSShiftKeyMask;
constexpr unsigned control = MenuItem::NSControlKeyMask;
constexpr unsigned option = MenuItem::NSAlternateKeyMask;
} // namespace

class MenuItemTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hasNothingAtFirst();
    void titleIsWithoutMarks_data();
    void titleIsWithoutMarks();
    void keepsTagAndAction();
    void readsWhatAnInterfaceFileSets();
    void findsItemsByTag();
    void findsItemsByKeyEquivalent();
    void commandsOfAWindow();
    void commandWithShortcut_data();
    void commandWithShortcut();
    void commandsOfOtherWindowsDoNotCount();

    void masksHaveThePlatformsValues();
    void keyEquivalentIsAShortcut_data();
    void keyEquivalentIsAShortcut();
    void whatIsNoKeyRemovesTheShortcut_data();
    void whatIsNoKeyRemovesTheShortcut();
    void keyEquivalentOfAShortcut_data();
    void keyEquivalentOfAShortcut();

    void targetPerforms();
    void refusedItemIsNotPerformed();
    void targetCanBeExchanged();
    void validatesEachTimeTheMenuShows();
    void keyEquivalentsWorkAfterAMenuWithDisabledItems();
};

void MenuItemTest::hasNothingAtFirst()
{
    QAction item;
    QCOMPARE(MenuItem::tag(&item), 0);
    QVERIFY(MenuItem::action(&item).isNull());
    QVERIFY(!MenuItem::target(&item));
    QVERIFY(MenuItem::keyEquivalent(&item).isEmpty());
    QCOMPARE(MenuItem::keyEquivalentModifierMask(&item), 0U);
}

void MenuItemTest::titleIsWithoutMarks_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("title");
    QTest::newRow("plain") << "New Note..."
                           << "New Note...";
    QTest::newRow("shortcut letter") << "New &Note..."
                                     << "New Note...";
    QTest::newRow("first letter") << "&Open"
                                  << "Open";
    QTest::newRow("shown") << "Bed && Breakfast"
                           << "Bed & Breakfast";
    QTest::newRow("both") << "&Bed &&& &Breakfast"
                          << "Bed & Breakfast";
    QTest::newRow("at the end") << "Bed &"
                                << "Bed ";
    QTest::newRow("none") << QString() << QString();
    QTest::newRow("key behind a tab") << "&Copy\tCtrl+C"
                                      << "Copy";
}

void MenuItemTest::titleIsWithoutMarks()
{
    QFETCH(QString, text);
    QFETCH(QString, title);
    QAction item;
    item.setText(text);
    QCOMPARE(MenuItem::title(&item), title);
}

void MenuItemTest::keepsTagAndAction()
{
    QAction item;
    MenuItem::setTag(&item, 7);
    MenuItem::setAction(&item, "handleDeleteItemRequest:");
    QCOMPARE(MenuItem::tag(&item), 7);
    QCOMPARE(MenuItem::action(&item), QString("handleDeleteItemRequest:"));
}

void MenuItemTest::readsWhatAnInterfaceFileSets()
{
    QAction item;
    item.setProperty("tag", 3);
    item.setProperty("action", "handleShowPrefsWindow:");
    QCOMPARE(MenuItem::tag(&item), 3);
    QCOMPARE(MenuItem::action(&item), QString("handleShowPrefsWindow:"));
}

void MenuItemTest::findsItemsByTag()
{
    QMenu menu;
    menu.addAction("untagged");
    QAction *two = menu.addAction("two");
    MenuItem::setTag(two, 2);
    QAction *zero = menu.addAction("zero");
    MenuItem::setTag(zero, 0);
    MenuItem::setTag(menu.addAction("another two"), 2);
    QCOMPARE(MenuItem::itemWithTag(&menu, 0), zero);
    QCOMPARE(MenuItem::itemWithTag(&menu, 2), two);
    QVERIFY(!MenuItem::itemWithTag(&menu, 1));
}

void MenuItemTest::findsItemsByKeyEquivalent()
{
    QMenu menu;
    QAction *first = menu.addAction("first");
    QAction *second = menu.addAction("second");
    MenuItem::setKeyEquivalent(first, "*", command);
    MenuItem::setKeyEquivalent(second, "*", command | shift);
    QCOMPARE(MenuItem::itemWithKeyEquivalent(&menu, {"*", command}), first);
    QCOMPARE(MenuItem::itemWithKeyEquivalent(&menu, {"*", command | shift}), second);
    QVERIFY(!MenuItem::itemWithKeyEquivalent(&menu, {"*", shift}));
    QVERIFY(!MenuItem::itemWithKeyEquivalent(&menu, {"+", command}));
}

void MenuItemTest::commandsOfAWindow()
{
    QMainWindow window;
    QVERIFY(MenuItem::commandsOfWindow(&window).isEmpty());
    QMenu *menu = window.menuBar()->addMenu("Menu");
    QAction *item = menu->addAction("Item");
    QAction *deep = menu->addMenu("Deeper")->addMenu("Still deeper")->addAction("Deep");
    QAction added("Added");
    window.addAction(&added);
    const QList<QAction *> commands = MenuItem::commandsOfWindow(&window);
    for (QAction *command : {menu->menuAction(), item, deep, &added})
        QCOMPARE(commands.count(command), 1);
}

void MenuItemTest::commandWithShortcut_data()
{
    QTest::addColumn<QString>("shortcuts");
    QTest::addColumn<QString>("found");
    QTest::newRow("nobody's") << "Ctrl+J"
                              << "";
    QTest::newRow("its own") << "Ctrl+I"
                             << "";
    QTest::newRow("of its menu") << "Ctrl+N"
                                 << "Neighbour";
    QTest::newRow("of another menu") << "Ctrl+D"
                                     << "Deep";
    QTest::newRow("the second of two") << "Ctrl+F5"
                                       << "Deep";
    QTest::newRow("one of those that are asked for") << "Ctrl+J; Ctrl+D"
                                                     << "Deep";
    QTest::newRow("of the window") << "Ctrl+A"
                                   << "Added";
    QTest::newRow("letter of a menu in the menu bar") << "Alt+M"
                                                      << "&Menu";
    QTest::newRow("letter of a submenu") << "Alt+S"
                                         << "";
    QTest::newRow("of another window") << "Ctrl+O"
                                       << "";
}

void MenuItemTest::commandWithShortcut()
{
    QFETCH(QString, shortcuts);
    QFETCH(QString, found);
    const auto add = [](QWidget *place, const QString &title, const QString &keys) {
        auto *item = new QAction(title, place);
        item->setShortcuts(QKeySequence::listFromString(keys, QKeySequence::PortableText));
        place->addAction(item);
        return item;
    };
    QMainWindow window;
    QMenu *menu = window.menuBar()->addMenu("&Menu");
    const QAction *item = add(menu, "Item", "Ctrl+I");
    add(menu, "Neighbour", "Ctrl+N");
    add(window.menuBar()->addMenu("Other")->addMenu("&Submenu"), "Deep", "Ctrl+D; Ctrl+F5");
    add(&window, "Added", "Ctrl+A");
    QMainWindow another;
    add(another.menuBar()->addMenu("Menu"), "Elsewhere", "Ctrl+O");

    const QAction *other = MenuItem::commandWithShortcut(
        MenuItem::otherCommands(item), QKeySequence::listFromString(shortcuts, QKeySequence::PortableText));
    QCOMPARE(other ? other->text() : QString(), found);
}

// The menu that all windows of a host share is in none of them before the host has put it there.
void MenuItemTest::commandsOfOtherWindowsDoNotCount()
{
    QMainWindow window;
    QAction *hosts = window.menuBar()->addMenu("Host")->addAction("Host's");
    QMenu menu;
    QAction *item = menu.addAction("Item");
    QVERIFY(!MenuItem::otherCommands(item).contains(hosts));
    window.menuBar()->addMenu(&menu);
    QVERIFY(MenuItem::otherCommands(item).contains(hosts));
}

void MenuItemTest::masksHaveThePlatformsValues()
{
    QCOMPARE(shift, 0x20000U);
    QCOMPARE(control, 0x40000U);
    QCOMPARE(option, 0x80000U);
    QCOMPARE(command, 0x100000U);
    QCOMPARE(unsigned(MenuItem::NSFunctionKeyMask), 0x800000U);
}

void MenuItemTest::keyEquivalentIsAShortcut_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<unsigned>("mask");
    QTest::addColumn<QString>("shortcut");
    QTest::newRow("command") << "j" << command << "Ctrl+J";
    QTest::newRow("capital with shift") << "J" << (command | shift) << "Ctrl+Shift+J";
    QTest::newRow("control") << "s" << control << "Meta+S";
    QTest::newRow("option and command") << "1" << (command | option) << "Ctrl+Alt+1";
    QTest::newRow("a sign") << "/" << command << "Ctrl+/";
    QTest::newRow("down arrow") << QString(QChar(0xF701)) << command << "Ctrl+Down";
    QTest::newRow("F1") << QString(QChar(0xF704)) << shift << "Shift+F1";
    QTest::newRow("F35") << QString(QChar(0xF726)) << shift << "Shift+F35";
    QTest::newRow("Return") << "\r" << command << "Ctrl+Return";
    QTest::newRow("bits of other keys") << "k" << (command | 0x800000U) << "Ctrl+K";
}

void MenuItemTest::keyEquivalentIsAShortcut()
{
    QFETCH(QString, key);
    QFETCH(unsigned, mask);
    QFETCH(QString, shortcut);
    QAction item;
    MenuItem::setKeyEquivalent(&item, key, mask);
    QCOMPARE(item.shortcut(), QKeySequence(shortcut, QKeySequence::PortableText));
    QCOMPARE(MenuItem::keyEquivalent(&item), key);
    QCOMPARE(MenuItem::keyEquivalentModifierMask(&item), mask);
}

void MenuItemTest::whatIsNoKeyRemovesTheShortcut_data()
{
    QTest::addColumn<QString>("key");
    QTest::newRow("empty") << "";
    QTest::newRow("none") << QString();
    QTest::newRow("several characters") << QString(1000, u'x'); // no wider menus and tables for a damaged file
}

void MenuItemTest::whatIsNoKeyRemovesTheShortcut()
{
    QFETCH(QString, key);
    QAction item;
    item.setShortcut(QKeySequence("Ctrl+J"));
    MenuItem::setKeyEquivalent(&item, key, 0);
    QVERIFY(item.shortcut().isEmpty());
    QVERIFY(MenuItem::keyEquivalent(&item).isEmpty());
    QVERIFY(!MenuItem::keyEquivalent(&item).isNull());
    QCOMPARE(MenuItem::keyEquivalentModifierMask(&item), 0U);
}

void MenuItemTest::keyEquivalentOfAShortcut_data()
{
    QTest::addColumn<QString>("shortcut");
    QTest::addColumn<QString>("key");
    QTest::addColumn<unsigned>("mask");
    QTest::newRow("letter") << "Ctrl+Shift+D"
                            << "d" << (command | shift);
    QTest::newRow("digit") << "Ctrl+Alt+2"
                           << "2" << (command | option);
    QTest::newRow("control") << "Meta+B"
                             << "b" << control;
    QTest::newRow("F5") << "F5" << QString(QChar(0xF708)) << unsigned(MenuItem::NSFunctionKeyMask);
    QTest::newRow("up") << "Ctrl+Up" << QString(QChar(0xF700)) << (command | MenuItem::NSFunctionKeyMask);
}

void MenuItemTest::keyEquivalentOfAShortcut()
{
    QFETCH(QString, shortcut);
    QFETCH(QString, key);
    QFETCH(unsigned, mask);
    QAction item;
    item.setShortcut(QKeySequence(shortcut, QKeySequence::PortableText));
    QCOMPARE(MenuItem::keyEquivalent(&item), key);
    QCOMPARE(MenuItem::keyEquivalentModifierMask(&item), mask);
}

void MenuItemTest::targetPerforms()
{
    QAction item;
    Target target;
    MenuItem::setTarget(&item, &target);
    QCOMPARE(MenuItem::target(&item), static_cast<MenuItemTarget *>(&target));
    item.trigger();
    QCOMPARE(target.validated, QList<QAction *>({&item}));
    QCOMPARE(target.performed, QList<QAction *>({&item}));
}

void MenuItemTest::refusedItemIsNotPerformed()
{
    QAction item;
    Target target;
    target.enabled = false;
    MenuItem::setTarget(&item, &target);
    item.trigger();
    QCOMPARE(target.validated.size(), 1);
    QVERIFY(target.performed.isEmpty());
}

void MenuItemTest::targetCanBeExchanged()
{
    QAction item;
    Target first;
    Target second;
    MenuItem::setTarget(&item, &first);
    MenuItem::setTarget(&item, &second);
    item.trigger();
    QVERIFY(first.performed.isEmpty());
    QCOMPARE(second.performed.size(), 1);
    MenuItem::setTarget(&item, nullptr);
    item.trigger();
    QVERIFY(!MenuItem::target(&item));
    QCOMPARE(second.performed.size(), 1);
}

void MenuItemTest::validatesEachTimeTheMenuShows()
{
    QMenu menu;
    QAction *item = menu.addAction("Open Item");
    QAction *foreign = menu.addAction("Foreign");
    foreign->setEnabled(false);
    Target target;
    MenuItem::setTarget(item, &target);
    MenuItem::validateOnShow(&menu);
    QVERIFY(target.validated.isEmpty());

    target.newTitle = "Open Items";
    menu.popup(QPoint(10, 10));
    QCOMPARE(target.validated.size(), 1);
    QVERIFY(item->isEnabled());
    QCOMPARE(item->text(), QString("Open Items"));
    menu.hide();

    target.enabled = false;
    menu.popup(QPoint(10, 10));
    QCOMPARE(target.validated.size(), 2);
    QVERIFY(!item->isEnabled());
    menu.hide();
    QVERIFY(!foreign->isEnabled());
}

void MenuItemTest::keyEquivalentsWorkAfterAMenuWithDisabledItems()
{
    QMainWindow window;
    QMenu *menu = window.menuBar()->addMenu("Wayfold");
    QAction *item = menu->addAction("Toggle");
    Target target;
    target.enabled = false;
    MenuItem::setTarget(item, &target);
    MenuItem::setKeyEquivalent(item, "j", command);
    MenuItem::validateOnShow(menu);
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));

    menu->popup(QPoint(10, 10));
    QVERIFY(!item->isEnabled());
    menu->hide();
    QTest::keyClick(&window, Qt::Key_J, Qt::ControlModifier);
    QVERIFY(target.performed.isEmpty()); // still refused when the key asks
    target.enabled = true;
    QTest::keyClick(&window, Qt::Key_J, Qt::ControlModifier);
    QCOMPARE(target.performed.size(), 1);
}

QTEST_MAIN(MenuItemTest)
#include "MenuItemTest.moc"
