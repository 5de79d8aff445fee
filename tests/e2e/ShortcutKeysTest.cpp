#include "browser/Browser.h"
#include "browser/BrowserWindow.h"
#include "browser/WebView.h"
#include "platform/widgets/MenuItem.h"
#include "platform/widgets/MenuKeyFilter.h"
#include "tests/e2e/support/Eyes.h"
#include "tests/e2e/support/Hands.h"
#include "tests/e2e/support/Play.h"

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QTabBar>

// The keys of the menu's commands on the keyboards of several countries. They are pressed by their places, told by the
// display's key codes, since what they type is what it is about.
class ShortcutKeysTest : public QObject
{
    Q_OBJECT

public:
    explicit ShortcutKeysTest(Play &play) : _play(play) {}

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();

    void viewCommand_data();
    void viewCommand();
    void zoomOfTheBrowser_data();
    void zoomOfTheBrowser();
    void letterOpensTheMenu();
    void keysOfAnotherCommandAreRefused_data();
    void keysOfAnotherCommandAreRefused();
    void ownKeysMayBePressedAgain();

    void whatWasPressedWorks_data();
    void whatWasPressedWorks();
    void whatTheKeyTypesComesFirst();
    void shortcutOfTheHostStays();
    void textGoesToTheField();
    void worksInAToolWindow();
    void waitsForADialog();

private:
    // The sheet for the command of a row of the preferences' table; null when it did not come.
    QWidget *openPanel(const QString &keysToRow);
    bool closePanel();

    Play &_play;
    BrowserWindow *_window = nullptr;
};

namespace
{
constexpr auto us = "us";
constexpr auto german = "de";
constexpr auto french = "fr";
constexpr auto russian = "ru";
constexpr auto greek = "gr";

class Target : public MenuItemTarget
{
public:
    QList<QAction *> performed;

    bool validateMenuItem(QAction * /*item*/) override { return true; }
    void performMenuItem(QAction *item) override { performed.append(item); }
};

// A window with a menu of its own, and what is pressed in it.
class KeyWindow : public QMainWindow
{
public:
    Target target;
    QMenu *menu = menuBar()->addMenu(QStringLiteral("Commands"));
    QMenu *hostMenu = menuBar()->addMenu(QStringLiteral("Host"));
    QList<KeyEquivalent> pressed; // what no command took
    bool hasHeardScrollLock = false;

    KeyWindow()
    {
        setFocusPolicy(Qt::StrongFocus);
        setFocus();
        new MenuKeyFilter(menu);
        resize(300, 200);
        show();
    }
    void forget()
    {
        pressed.clear();
        target.performed.clear();
        hasHeardScrollLock = false;
    }
    QAction *addItem(const QString &key, unsigned modifierMask)
    {
        QAction *item = menu->addAction(QStringLiteral("Item"));
        MenuItem::setTarget(item, &target);
        MenuItem::setKeyEquivalent(item, key, modifierMask);
        return item;
    }

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        pressed.append(KeyEquivalent::ofKeyPress(*event));
        hasHeardScrollLock = hasHeardScrollLock || event->key() == Qt::Key_ScrollLock;
    }
};

// Lives on the main thread and waits until it has the keyboard.
class WindowForKeys
{
public:
    WindowForKeys()
        : _window(Stage::onMain([] { return new KeyWindow; }))
        , _isReady(Stage::eventually([this] { return _window->isActiveWindow(); }))
    {}
    ~WindowForKeys()
    {
        Stage::onMain([this] { delete _window; });
    }
    WindowForKeys(const WindowForKeys &) = delete;
    WindowForKeys &operator=(const WindowForKeys &) = delete;
    bool isReady() const { return _isReady; }
    KeyWindow *operator->() const { return _window; }
    QAction *addItem(const QString &key, unsigned modifierMask)
    {
        return Stage::onMain([&] { return _window->addItem(key, modifierMask); });
    }

private:
    KeyWindow *_window;
    bool _isReady;
};

constexpr unsigned shift = MenuItem::NSShiftKeyMask;
constexpr unsigned command = MenuItem::NSCommandKeyMask;

// The keys of the main block, the keys above and beside it, and those of the number pad.
QList<int> keyCodes()
{
    QList<int> codes = {9, 22, 23, 36, 65, 94, 95, 96, 104, 106, 110, 111, 112, 113, 114, 115, 116, 117, 118, 119};
    for (const auto &[first, last] : {std::pair(10, 21), {24, 35}, {38, 49}, {51, 61}, {67, 76}, {79, 91}}) {
        for (int code = first; code <= last; ++code)
            codes.append(code);
    }
    codes.removeAll(77); // Num Lock
    return codes;
}
} // namespace

void ShortcutKeysTest::initTestCase()
{
    EVENTUALLY(_play.window());
    _window = _play.window();
}

void ShortcutKeysTest::cleanupTestCase()
{
    QVERIFY(Hands::takeKeyboard(QString::fromLatin1(us)));
}

void ShortcutKeysTest::viewCommand_data()
{
    QTest::addColumn<QString>("layout");
    QTest::addColumn<QString>("keys");
    QTest::addColumn<int>("tab");
    const auto row = [](const char *layout, const char *keys, int tab) {
        QTest::addRow("%s %s", layout, keys) << QString::fromLatin1(layout) << QString::fromLatin1(keys) << tab;
    };
    for (const char *layout : {us, german, french}) {
        row(layout, "ctrl+shift+63", 0); // * of the number pad
        row(layout, "ctrl+shift+82", 1); // - of the number pad
        row(layout, "ctrl+shift+86", 2); // + of the number pad
    }
    row(us, "ctrl+shift+17", 0);     // 8 and *
    row(us, "ctrl+shift+20", 1);     // - and _
    row(us, "ctrl+shift+21", 2);     // = and +
    row(german, "ctrl+shift+35", 0); // + and *
    row(german, "ctrl+shift+61", 1); // - and _
    row(french, "ctrl+shift+51", 0); // * and the micro sign
    row(french, "ctrl+shift+15", 1); // - and 6
    row(french, "ctrl+shift+21", 2); // = and +
}

void ShortcutKeysTest::viewCommand()
{
    QFETCH(QString, layout);
    QFETCH(QString, keys);
    QFETCH(int, tab);
    EVENTUALLY(_play.window() == _window);
    QVERIFY(Hands::takeKeyboard(layout));
    EVENTUALLY(Play::isDrawerClosed(_window));

    QVERIFY(Hands::press(keys));
    EVENTUALLY(Play::isDrawerOpen(_window));
    QTabBar *tabs = Eyes::firstOf<QTabBar>(Play::drawer(_window));
    QVERIFY(tabs);
    NOW(tabs->currentIndex() == tab);
    QVERIFY(Hands::press(keys)); // from the drawer's own window
    EVENTUALLY(Play::isDrawerClosed(_window));
}

void ShortcutKeysTest::zoomOfTheBrowser_data()
{
    QTest::addColumn<QString>("layout");
    QTest::addColumn<QString>("in");
    QTest::addColumn<QString>("out");
    QTest::newRow("us") << us << "ctrl+21"
                        << "ctrl+20";
    QTest::newRow("de") << german << "ctrl+35"
                        << "ctrl+61";
    QTest::newRow("fr") << french << "ctrl+21"
                        << "ctrl+15";
}

void ShortcutKeysTest::zoomOfTheBrowser()
{
    QFETCH(QString, layout);
    QFETCH(QString, in);
    QFETCH(QString, out);
    EVENTUALLY(_play.window() == _window);
    const auto zoom = [this] { return _window->currentWebView()->zoomFactor(); };
    QVERIFY(Hands::takeKeyboard(layout));
    NOW(zoom() == 1.0);

    QVERIFY(Hands::press(in));
    EVENTUALLY(zoom() > 1.0);
    QVERIFY(Hands::press(out));
    EVENTUALLY(zoom() == 1.0);
    NOW(Play::isDrawerClosed(_window));
}

void ShortcutKeysTest::letterOpensTheMenu()
{
    QVERIFY(Hands::takeKeyboard(QString::fromLatin1(us)));
    EVENTUALLY(_play.window() == _window);
    QList<QKeySequence> letters;
    Stage::onMain([&] {
        for (const QAction *menu : _window->menuBar()->actions())
            letters.append(QKeySequence::mnemonic(menu->text()));
    });
    QCOMPARE(letters.count(letters.last()), 1);
    QVERIFY(!letters.last().isEmpty());
    QVERIFY(Hands::press(letters.last().toString().toLower()));
    const auto shown = [] { return qobject_cast<QMenu *>(QApplication::activePopupWidget()); };
    EVENTUALLY(shown());
    NOW(shown()->menuAction() == _window->menuBar()->actions().last());
    QVERIFY(Hands::press(QStringLiteral("Escape Escape")));
    EVENTUALLY(!shown());
}

QWidget *ShortcutKeysTest::openPanel(const QString &keysToRow)
{
    const auto preferencesAreInFront = [] {
        return QApplication::activeWindow() && QApplication::activeWindow()->objectName() == u"prefsWindow";
    };
    const auto sheetIsInFront = [] {
        return QApplication::activeWindow() && QApplication::activeWindow()->inherits("WayfoldShortcutPanel");
    };
    const bool isOpen = Stage::eventually([&] { return _play.window() == _window; }) &&
                        _play.choose({QStringLiteral("Wayfold"), QStringLiteral("Preferences...")}) &&
                        Stage::eventually(preferencesAreInFront) &&
                        Hands::press(QStringLiteral("alt+t alt+m %1Return").arg(keysToRow)) && // the page, its table
                        Stage::eventually(sheetIsInFront);
    return isOpen ? Stage::onMain([] { return QApplication::activeWindow(); }) : nullptr;
}

bool ShortcutKeysTest::closePanel()
{
    const auto sheetHasGone = [] {
        return QApplication::activeWindow() && !QApplication::activeWindow()->inherits("WayfoldShortcutPanel");
    };
    return Hands::press(QStringLiteral("Escape")) && Stage::eventually(sheetHasGone) &&
           Hands::press(QStringLiteral("Escape")) && Stage::eventually([&] { return _play.window() == _window; });
}

void ShortcutKeysTest::keysOfAnotherCommandAreRefused_data()
{
    QTest::addColumn<QString>("layout");
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("name");
    const QString bookmarks = QStringLiteral("Show Bookmark View");
    const QString scratchpad = QStringLiteral("Show Scratchpad View");
    const QString history = QStringLiteral("Show History View");
    QTest::newRow("us, what the key types without Shift") << us << "ctrl+shift+20" << bookmarks;
    QTest::newRow("us, what it types with Shift") << us << "ctrl+shift+17" << scratchpad;
    QTest::newRow("de, without") << german << "ctrl+shift+61" << bookmarks;
    QTest::newRow("fr, without") << french << "ctrl+shift+51" << scratchpad;
    QTest::newRow("fr, with") << french << "ctrl+shift+21" << history;
}

void ShortcutKeysTest::keysOfAnotherCommandAreRefused()
{
    QFETCH(QString, layout);
    QFETCH(QString, keys);
    QFETCH(QString, name);
    QWidget *panel = openPanel(QString());
    QVERIFY(panel);
    const auto text = [&](const char *field) { return panel->findChild<QLabel *>(QLatin1String(field))->text(); };
    const QString title = Stage::onMain([&] { return text("menuItemTitleField"); });

    QVERIFY(Hands::takeKeyboard(layout));
    QVERIFY(Hands::press(keys));
    EVENTUALLY(text("messageField") == QStringLiteral("\"%1\" has this shortcut already.").arg(name));
    NOW(text("menuItemTitleField") == title);
    QVERIFY(Hands::press(QStringLiteral("ctrl+shift+18"))); // nobody's; the message goes
    EVENTUALLY(text("messageField").isEmpty());
    NOW(text("menuItemTitleField") != title);

    QVERIFY(closePanel());
}

// Though the same key without Shift is that of another command.
void ShortcutKeysTest::ownKeysMayBePressedAgain()
{
    QVERIFY(Hands::takeKeyboard(QString::fromLatin1(german)));
    QWidget *panel = openPanel(QStringLiteral("Down "));
    QVERIFY(panel);
    const auto text = [&](const char *field) { return panel->findChild<QLabel *>(QLatin1String(field))->text(); };
    NOW(text("menuItemTitleField").startsWith(u"Show Scratchpad View"));
    QVERIFY(Hands::press(QStringLiteral("ctrl+c")));
    EVENTUALLY(!text("messageField").isEmpty());
    QVERIFY(Hands::press(QStringLiteral("ctrl+shift+35")));
    EVENTUALLY(text("messageField").isEmpty());
    NOW(text("menuItemTitleField").endsWith(u'*'));
    QVERIFY(closePanel());
}

void ShortcutKeysTest::whatWasPressedWorks_data()
{
    QTest::addColumn<QString>("layout");
    QTest::addColumn<QString>("modifiers");
    const auto row = [](const char *layout, const char *modifiers) {
        QTest::addRow("%s %s", layout, modifiers) << QString::fromLatin1(layout) << QString::fromLatin1(modifiers);
    };
    row(us, "ctrl+shift");
    row(us, "alt+shift");
    row(german, "ctrl");
    row(german, "ctrl+shift");
    row(french, "ctrl");
    row(french, "ctrl+shift");
    row(russian, "ctrl");
    row(russian, "alt+shift");
    row(greek, "alt");
}

// Whatever is captured is found again by the same keys.
void ShortcutKeysTest::whatWasPressedWorks()
{
    QFETCH(QString, layout);
    QFETCH(QString, modifiers);
    const WindowForKeys window;
    QVERIFY(window.isReady());
    QVERIFY(Hands::takeKeyboard(layout));
    QAction *item = Stage::onMain([&] { return window->addItem(QString(), 0); });

    int tried = 0;
    for (int code : keyCodes()) {
        const QString keys = modifiers + QLatin1Char('+') + QString::number(code).rightJustified(2, u'0');
        // A key without a character comes last, and tells when all of it has arrived.
        const auto pressOnce = [&] { return Hands::press(keys + QStringLiteral(" Scroll_Lock")); };
        Stage::onMain([&] {
            MenuItem::setKeyEquivalent(item, QString(), 0);
            window->forget();
        });
        QVERIFY(pressOnce());
        EVENTUALLY(window->hasHeardScrollLock);
        QList<KeyEquivalent> captured = Stage::onMain([&] { return window->pressed; });
        captured.removeIf([](const KeyEquivalent &key) { return key.key.isEmpty(); });
        if (captured.isEmpty())
            continue; // a dead key, say
        QCOMPARE(captured.size(), 1);

        const KeyEquivalent key = captured.first();
        Stage::onMain([&] {
            MenuItem::setKeyEquivalent(item, key.key, key.modifierMask);
            window->forget();
        });
        QVERIFY(pressOnce());
        EVENTUALLY(window->hasHeardScrollLock);
        QVERIFY2(Stage::onMain([&] { return window->target.performed.size() == 1; }),
                 qPrintable(QStringLiteral("%1: \"%2\", 0x%3").arg(keys, key.key).arg(key.modifierMask, 0, 16)));
        ++tried;
    }
    QVERIFY2(tried > 70, qPrintable(QString::number(tried)));
}

// On a German keyboard the plus key has the asterisk with Shift.
void ShortcutKeysTest::whatTheKeyTypesComesFirst()
{
    WindowForKeys window;
    QVERIFY(window.isReady());
    QVERIFY(Hands::takeKeyboard(QString::fromLatin1(german)));
    QAction *asterisk = window.addItem(QStringLiteral("*"), command | shift);
    QAction *plus = window.addItem(QStringLiteral("+"), command | shift);
    QVERIFY(Hands::press(QStringLiteral("ctrl+shift+35")));
    EVENTUALLY(window->target.performed == QList<QAction *>{asterisk});
    QVERIFY(Hands::press(QStringLiteral("ctrl+35"))); // without Shift it is neither
    EVENTUALLY(window->pressed.contains(KeyEquivalent{QStringLiteral("+"), command}));
    NOW(window->target.performed == QList<QAction *>{asterisk});

    Stage::onMain([&] { MenuItem::setKeyEquivalent(asterisk, QString(), 0); });
    QVERIFY(Hands::press(QStringLiteral("ctrl+shift+35")));
    EVENTUALLY(window->target.performed == (QList<QAction *>{asterisk, plus}));
}

void ShortcutKeysTest::shortcutOfTheHostStays()
{
    WindowForKeys window;
    QVERIFY(window.isReady());
    QVERIFY(Hands::takeKeyboard(QString::fromLatin1(us)));
    window.addItem(QStringLiteral("+"), command | shift);
    int zoomed = 0;
    Stage::onMain([&] {
        QAction *zoom = window->hostMenu->addAction(QStringLiteral("Zoom In"));
        zoom->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Plus));
        connect(zoom, &QAction::triggered, zoom, [&] { ++zoomed; });
    });
    QVERIFY(Hands::press(QStringLiteral("ctrl+shift+21")));
    EVENTUALLY(zoomed == 1);
    NOW(window->target.performed.isEmpty());
}

void ShortcutKeysTest::textGoesToTheField()
{
    WindowForKeys window;
    QVERIFY(window.isReady());
    QVERIFY(Hands::takeKeyboard(QString::fromLatin1(us)));
    QAction *item = window.addItem(QStringLiteral("*"), shift);
    QLineEdit *field = Stage::onMain([&] {
        auto *made = new QLineEdit;
        window->setCentralWidget(made);
        return made;
    });
    QVERIFY(Hands::clickInto(field));
    QVERIFY(Hands::press(QStringLiteral("shift+17")));
    EVENTUALLY(field->text() == QLatin1String("*"));
    Stage::onMain([&] { window->setFocus(); });
    QVERIFY(Hands::press(QStringLiteral("shift+17")));
    EVENTUALLY(window->target.performed == QList<QAction *>{item});
    NOW(field->text() == QLatin1String("*"));
}

void ShortcutKeysTest::worksInAToolWindow()
{
    WindowForKeys window;
    QVERIFY(window.isReady());
    QVERIFY(Hands::takeKeyboard(QString::fromLatin1(us)));
    QAction *item = window.addItem(QStringLiteral("*"), command | shift);
    QWidget *tool = Stage::onMain([&] {
        auto *made = new QWidget(window.operator->(), Qt::Tool);
        made->resize(100, 100);
        made->show();
        made->activateWindow();
        return made;
    });
    EVENTUALLY(tool->isActiveWindow());
    QVERIFY(Hands::press(QStringLiteral("ctrl+shift+17")));
    EVENTUALLY(window->target.performed == QList<QAction *>{item});
}

void ShortcutKeysTest::waitsForADialog()
{
    WindowForKeys window;
    QVERIFY(window.isReady());
    QVERIFY(Hands::takeKeyboard(QString::fromLatin1(us)));
    window.addItem(QStringLiteral("*"), command | shift);
    QDialog *dialog = Stage::onMain([&] {
        auto *made = new QDialog(window.operator->());
        made->open();
        return made;
    });
    EVENTUALLY(dialog->isActiveWindow());
    QVERIFY(Hands::press(QStringLiteral("ctrl+shift+17")));
    QVERIFY(Hands::press(QStringLiteral("Escape")));
    EVENTUALLY(!dialog->isVisible());
    NOW(window->target.performed.isEmpty());
}

int main(int argc, char **argv)
{
    return Play::perform<ShortcutKeysTest>(argc, argv);
}

#include "ShortcutKeysTest.moc"
