#include "drawer/WayfoldShortcutPanel.h"

#include "platform/widgets/MenuItem.h"
#include "tests/drawer/DrawerStage.h"

#include <QAction>
#include <QDialogButtonBox>
#include <QLabel>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QShortcut>

namespace
{
constexpr unsigned shift = 0x20000;
constexpr unsigned control = 0x40000;
constexpr unsigned option = 0x80000;
constexpr unsigned command = 0x100000;
constexpr unsigned function = 0x800000;

// A panel whose beeps are counted.
class Panel : public WayfoldShortcutPanel
{
public:
    using WayfoldShortcutPanel::WayfoldShortcutPanel;
    int beeps = 0;

protected:
    void beep() override { ++beeps; }
};
} // namespace

class WayfoldShortcutPanelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    // Texts and tables
    void takenShortcut_data();
    void takenShortcut();
    void describesShortcut_data();
    void describesShortcut();
    void showsTitleAndShortcut();

    // Opening
    void opensAsSheet();
    void nothingHappensWithoutItem();
    void startsEmpty();
    void missingInterfaceFile();

    // Capturing
    void captures_data();
    void captures();
    void refuses_data();
    void refuses();
    void whatHasNoCharacterIsIgnored_data();
    void whatHasNoCharacterIsIgnored();
    void everyKeyIsUsedUp();
    void keyHeldDownCountsOnce();
    void keyThatOpenedItMayBeHeldDown_data();
    void keyThatOpenedItMayBeHeldDown();
    void noShortcutElsewhereHearsTheKey();
    void otherCommandIsNamed_data();
    void otherCommandIsNamed();
    void otherCommandIsNamedInGerman();
    void ownShortcutMayBePressedAgain();
    void messageGoesWithTheNextKey();
    void keysWithoutModifiersWorkTheButtons();
    void buttonWithTheKeyboardTakesNoShortcut_data();
    void buttonWithTheKeyboardTakesNoShortcut();

    // Ending
    void okStores();
    void clearStores();
    void cancelRestores_data();
    void cancelRestores();
    void nextItemEndsTheOneBefore();
    void itemMayGo();
    void survivesARestart_data();
    void survivesARestart();

    void worksWhenModal_data();
    void worksWhenModal();

private:
    // Opens the sheet for the item.
    void edit(QAction *item);
    // As the desktop delivers it.
    void press(int key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(_panel->windowHandle(), Qt::Key(key), modifiers);
    }
    QPushButton *button(QDialogButtonBox::StandardButton which)
    {
        return _panel->findChild<QDialogButtonBox *>()->button(which);
    }
    QString text(const char *name) { return _panel->findChild<QLabel *>(QLatin1String(name))->text(); }
    QString message() { return text("messageField"); }
    static QString key(const QAction *item) { return MenuItem::keyEquivalent(item); }
    static unsigned mask(const QAction *item) { return MenuItem::keyEquivalentModifierMask(item); }
    // What the host's settings hold.
    QVariant stored() { return _stage->host.hostSettings.values.value(QStringLiteral("WayfoldMenuItemShortcuts")); }

    std::optional<DrawerStage> _stage;
    std::unique_ptr<QMainWindow> _browser; // with a menu of the host's, and ours
    std::unique_ptr<QWidget> _window;      // that the sheet belongs to
    std::unique_ptr<Panel> _panel;
    QAction *_hostItem = nullptr;
    QAction *_item = nullptr;
    QAction *_otherItem = nullptr;
};

void WayfoldShortcutPanelTest::init()
{
    _stage.emplace();
    _browser = std::make_unique<QMainWindow>();
    QMenu *hostMenu = _browser->menuBar()->addMenu(QStringLiteral("&View"));
    _hostItem = hostMenu->addMenu(QStringLiteral("More"))->addAction(QStringLiteral("&Full Screen\tF11"));
    _hostItem->setShortcuts(
        {QKeySequence(Qt::Key_F11), QKeySequence(Qt::CTRL | Qt::Key_Tab), QKeySequence(Qt::CTRL | Qt::Key_Equal)});
    QMenu *menu = _browser->menuBar()->addMenu(QStringLiteral("Wa&yfold"));
    _item = menu->addAction(QStringLiteral("New Note..."));
    MenuItem::setTag(_item, 8);
    MenuItem::setKeyEquivalent(_item, QStringLiteral("K"), command | shift);
    _otherItem = menu->addAction(QStringLiteral("Focus on a&&b"));
    MenuItem::setTag(_otherItem, 4);
    MenuItem::setKeyEquivalent(_otherItem, QStringLiteral("+"), command | shift);

    _window = std::make_unique<QWidget>();
    _window->show();
    _panel = std::make_unique<Panel>(_window.get());
}

void WayfoldShortcutPanelTest::cleanup()
{
    QLocale::setDefault(QLocale::c());
    _panel.reset();
    _window.reset();
    _browser.reset();
    _stage.reset();
}

void WayfoldShortcutPanelTest::edit(QAction *item)
{
    QVERIFY(!_panel->performActionWithMenuItemForWindow(item, _window.get()));
    QVERIFY(QTest::qWaitForWindowActive(_panel.get()));
}

void WayfoldShortcutPanelTest::takenShortcut_data()
{
    QTest::addColumn<unsigned>("mask");
    QTest::addColumn<QString>("taken");
    QTest::newRow("Command") << command << "abcdefghjklmnopqrstvwxz123456789,./[]\\|";
    QTest::newRow("Command and Shift") << (command | shift) << "?ADGHNPSTWZ";
    QTest::newRow("Command and Option") << (command | option) << "ABDEFHKLMPSVW";
    QTest::newRow("Command, Option and Shift") << (command | option | shift) << "W";
    QTest::newRow("Command and Function") << (command | function) << QString::fromUtf16(u"\uF702\uF703");
    QTest::newRow("Command, Shift and Function") << (command | shift | function) << QString::fromUtf16(u"\uF702\uF703");
    for (unsigned mask : {0U, shift, control, option, function, control | command, control | command | shift,
                          option | shift, command | option | function, control | option | command | shift | function})
        QTest::addRow("0x%x", mask) << mask << "";
}

void WayfoldShortcutPanelTest::takenShortcut()
{
    QFETCH(unsigned, mask);
    QFETCH(QString, taken);
    for (char16_t character = 0; character != 0xFFFF; ++character)
        QCOMPARE(WayfoldShortcutPanel::isTakenShortcutWithCharAndModifier(character, mask),
                 taken.contains(QChar(character)));
}

void WayfoldShortcutPanelTest::describesShortcut_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<unsigned>("mask");
    QTest::addColumn<QString>("description");
    const auto character = [](char16_t code) { return QString(QChar(code)); };

    QTest::newRow("none") << QString() << command << "";
    QTest::newRow("empty") << "" << command << "";
    QTest::newRow("letter") << "q" << (command | shift) << "    ⇧⌘Q";
    QTest::newRow("capital") << "Q" << command << "    ⌘Q";
    QTest::newRow("letter with an accent") << "é" << control << "    ⌃É";
    QTest::newRow("digit") << "0" << command << "    ⌘0";
    QTest::newRow("no modifier") << "x" << 0U << "    X";
    QTest::newRow("all modifiers") << "x" << (control | option | shift | command | function) << "    ⌃⌥⇧⌘X";
    QTest::newRow("other bits") << "x" << (command | 0x210000U) << "    ⌘X";
    QTest::newRow("sign") << "*" << (command | shift) << "    ⇧⌘*";

    const struct
    {
        char16_t character;
        const char *name;
    } functionKeys[] = {{0xF700, "↑"}, {0xF701, "↓"}, {0xF702, "←"}, {0xF703, "→"},
                        {0xF729, "↖"}, {0xF72B, "↘"}, {0xF72C, "⇞"}, {0xF72D, "⇟"}},
      plainKeys[] = {{0x0D, "↩"}, {0x03, "⌅"}, {0x09, "⇥"}, {0x20, "Space"}, {0x7F, "⌦"}, {0x1B, "Esc"}};
    for (const auto &key : functionKeys) {
        QTest::addRow("U+%04X with Function", key.character) << character(key.character) << (command | function)
                                                             << QStringLiteral("    ⌘") + QString::fromUtf8(key.name);
        QTest::addRow("U+%04X without", key.character)
            << character(key.character) << command << QStringLiteral("    ⌘") + character(key.character);
    }
    for (const auto &key : plainKeys) {
        QTest::addRow("U+%04X", key.character)
            << character(key.character) << option << QStringLiteral("    ⌥") + QString::fromUtf8(key.name);
        QTest::addRow("U+%04X with Function", key.character)
            << character(key.character) << (option | function) << QStringLiteral("    ⌥") + character(key.character);
    }
    for (int number = 1; number <= 35; ++number)
        QTest::addRow("F%d", number) << character(char16_t(0xF703 + number)) << (command | function)
                                     << QStringLiteral("    ⌘F%1").arg(number);
    QTest::newRow("past F35") << character(0xF727) << function << "    " + character(0xF727);
    QTest::newRow("F1 without Function") << character(0xF704) << command << QStringLiteral("    ⌘") + character(0xF704);
}

void WayfoldShortcutPanelTest::describesShortcut()
{
    QFETCH(QString, key);
    QFETCH(unsigned, mask);
    QFETCH(QString, description);
    const QString described = WayfoldShortcutPanel::describeShortCutKeyWithModifiers(key, mask);
    QCOMPARE(described, description);
    QVERIFY(!described.isNull());
}

void WayfoldShortcutPanelTest::showsTitleAndShortcut()
{
    MenuItem::setKeyEquivalent(_item, QStringLiteral("q"), command | shift);
    edit(_item);
    QCOMPARE(text("menuItemTitleField"), QStringLiteral("New Note...        \u21E7\u2318Q"));
    MenuItem::setKeyEquivalent(_item, QString(), 0);
    _panel->displayMenuItem();
    QCOMPARE(text("menuItemTitleField"), QStringLiteral("New Note..."));
    edit(_otherItem);
    QCOMPARE(text("menuItemTitleField"), QStringLiteral("Focus on a&b        \u21E7\u2318+"));
}

// ---- Opening

void WayfoldShortcutPanelTest::opensAsSheet()
{
    edit(_item);
    QVERIFY(_panel->isVisible());
    QCOMPARE(_panel->windowModality(), Qt::WindowModal);
    QCOMPARE(_panel->parentWidget(), _window.get());
    QVERIFY(_panel->acceptsFirstResponder());
    QVERIFY(message().isEmpty());
    QCOMPARE(_panel->beeps, 0);

    QWidget other;
    other.show();
    _panel->performActionWithMenuItemForWindow(_item, &other);
    QVERIFY(_panel->isVisible());
    QCOMPARE(_panel->parentWidget(), &other);
    _panel->setParent(_window.get());
}

void WayfoldShortcutPanelTest::nothingHappensWithoutItem()
{
    QVERIFY(!_panel->performActionWithMenuItemForWindow(nullptr, _window.get()));
    QVERIFY(!_panel->isVisible());
}

void WayfoldShortcutPanelTest::startsEmpty()
{
    _panel->awakeFromNib();
    QKeyEvent event(QEvent::KeyPress, Qt::Key_I, Qt::ControlModifier);
    QVERIFY(_panel->performKeyEquivalent(event));
    _panel->displayMenuItem();
    _panel->handleOKButton(nullptr);
    _panel->handleClearButton(nullptr);
    _panel->handleCancelButton(nullptr);
    QVERIFY(!stored().isValid());
    QCOMPARE(key(_item), QStringLiteral("K"));
}

void WayfoldShortcutPanelTest::missingInterfaceFile()
{
    const QByteArray bundle = qgetenv("WAYFOLD_BUNDLE");
    qputenv("WAYFOLD_BUNDLE", "/nowhere");
    Panel panel(_window.get());
    qputenv("WAYFOLD_BUNDLE", bundle);
    QVERIFY(!panel.performActionWithMenuItemForWindow(_item, _window.get()));
    QVERIFY(!panel.isVisible()); // nothing could be seen in it
}

// ---- Capturing

void WayfoldShortcutPanelTest::captures_data()
{
    QTest::addColumn<int>("pressed");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<QString>("key");
    QTest::addColumn<unsigned>("mask");
    const auto row = [](const char *name, int pressed, Qt::KeyboardModifiers modifiers, char16_t key, unsigned mask) {
        QTest::newRow(name) << pressed << modifiers << QString(QChar(key)) << mask;
    };
    row("Command and i", Qt::Key_I, Qt::ControlModifier, u'i', command);
    row("Command and u", Qt::Key_U, Qt::ControlModifier, u'u', command);
    row("Command and y", Qt::Key_Y, Qt::ControlModifier, u'y', command);
    row("Command and 0", Qt::Key_0, Qt::ControlModifier, u'0', command);
    row("Command and -", Qt::Key_Minus, Qt::ControlModifier, u'-', command);
    row("Command and ;", Qt::Key_Semicolon, Qt::ControlModifier, u';', command);
    row("Command and 0 of the number pad", Qt::Key_0, Qt::ControlModifier | Qt::KeypadModifier, u'0', command);
    row("Control, Command and c", Qt::Key_C, Qt::MetaModifier | Qt::ControlModifier, u'c', control | command);
    row("Shift and A", Qt::Key_A, Qt::ShiftModifier, u'A', shift);
    row("Shift, Command and B", Qt::Key_B, Qt::ControlModifier | Qt::ShiftModifier, u'B', command | shift);
    row("Option, Command and a", Qt::Key_A, Qt::ControlModifier | Qt::AltModifier, u'a', command | option);
    row("Tab", Qt::Key_Tab, Qt::AltModifier, u'\t', option);
    row("Tab backwards", Qt::Key_Backtab, Qt::ShiftModifier, u'\t', shift);
    row("Escape", Qt::Key_Escape, Qt::AltModifier, u'\x1B', option);
    row("Return", Qt::Key_Return, Qt::ControlModifier, u'\r', command);
    row("Return with Shift", Qt::Key_Return, Qt::ShiftModifier, u'\r', shift);
    row("Enter", Qt::Key_Enter, Qt::ControlModifier | Qt::KeypadModifier, u'\x03', command);
    row("Space", Qt::Key_Space, Qt::ControlModifier, u' ', command);
    row("Delete", Qt::Key_Backspace, Qt::ControlModifier, u'\x7F', command);
    row("F5", Qt::Key_F5, Qt::ControlModifier, u'\uF708', command | function);
    row("F6 alone", Qt::Key_F6, Qt::NoModifier, u'\uF709', function);
    row("up", Qt::Key_Up, Qt::ControlModifier, u'\uF700', command | function);
    row("left with Option", Qt::Key_Left, Qt::AltModifier, u'\uF702', option | function);
    row("Delete forwards", Qt::Key_Delete, Qt::ControlModifier, u'\uF728', command | function);
    row("Insert with Shift", Qt::Key_Insert, Qt::ShiftModifier, u'\uF727', shift | function);
    row("Page Down alone", Qt::Key_PageDown, Qt::NoModifier, u'\uF72D', function);
    row("sign with Shift", Qt::Key_Percent, Qt::ControlModifier | Qt::ShiftModifier, u'%', command | shift);
}

void WayfoldShortcutPanelTest::captures()
{
    QFETCH(int, pressed);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(QString, key);
    QFETCH(unsigned, mask);
    edit(_item);
    press(pressed, modifiers);
    QCOMPARE(this->key(_item), key);
    QCOMPARE(this->mask(_item), mask);
    QCOMPARE(_panel->beeps, 0);
    QVERIFY(_panel->isVisible());
    QVERIFY(!stored().isValid());
    QCOMPARE(text("menuItemTitleField"),
             QStringLiteral("New Note...    ") + WayfoldShortcutPanel::describeShortCutKeyWithModifiers(key, mask));
}

void WayfoldShortcutPanelTest::refuses_data()
{
    QTest::addColumn<int>("pressed");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::newRow("letter") << int(Qt::Key_X) << Qt::KeyboardModifiers();
    QTest::newRow("digit of the number pad") << int(Qt::Key_3) << Qt::KeyboardModifiers(Qt::KeypadModifier);
    QTest::newRow("sign") << int(Qt::Key_Plus) << Qt::KeyboardModifiers();
    QTest::newRow("Space") << int(Qt::Key_Space) << Qt::KeyboardModifiers();
    QTest::newRow("Delete") << int(Qt::Key_Backspace) << Qt::KeyboardModifiers();
    for (QChar character : QStringLiteral("ABCDEFGHJKLMNOPQRSTVWXZ123456789,./[]\\|"))
        QTest::addRow("Command and %c", character.toLatin1())
            << int(character.unicode()) << Qt::KeyboardModifiers(Qt::ControlModifier);
    for (QChar character : QStringLiteral("?ADGHNPSTWZ"))
        QTest::addRow("Command, Shift and %c", character.toLatin1())
            << int(character.unicode()) << (Qt::ControlModifier | Qt::ShiftModifier);
    QTest::newRow("Command, Option, Shift and W")
        << int(Qt::Key_W) << (Qt::ControlModifier | Qt::AltModifier | Qt::ShiftModifier);
    for (int arrow : {Qt::Key_Left, Qt::Key_Right}) {
        QTest::addRow("Command and arrow %x", arrow) << arrow << Qt::KeyboardModifiers(Qt::ControlModifier);
        QTest::addRow("Command, Shift and arrow %x", arrow) << arrow << (Qt::ControlModifier | Qt::ShiftModifier);
    }
}

void WayfoldShortcutPanelTest::refuses()
{
    QFETCH(int, pressed);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    edit(_item);
    press(pressed, modifiers);
    QCOMPARE(_panel->beeps, 1);
    QCOMPARE(key(_item), QStringLiteral("K"));
    QCOMPARE(mask(_item), command | shift);
    QVERIFY(_panel->isVisible());
    QCOMPARE(message(), modifiers & ~Qt::KeypadModifier
                            ? QStringLiteral("The browser has this shortcut already.")
                            : QStringLiteral("Press the key together with Ctrl, Alt or Shift."));
}

void WayfoldShortcutPanelTest::whatHasNoCharacterIsIgnored_data()
{
    QTest::addColumn<int>("pressed");
    for (Qt::Key pressed : {Qt::Key_Shift, Qt::Key_Control, Qt::Key_Alt, Qt::Key_Meta, Qt::Key_CapsLock,
                            Qt::Key_Dead_Circumflex, Qt::Key_VolumeUp, Qt::Key_Print, Qt::Key_unknown})
        QTest::addRow("0x%x", pressed) << int(pressed);
}

void WayfoldShortcutPanelTest::whatHasNoCharacterIsIgnored()
{
    QFETCH(int, pressed);
    edit(_item);
    for (Qt::KeyboardModifier modifier : {Qt::NoModifier, Qt::ControlModifier}) {
        QKeyEvent event(QEvent::KeyPress, pressed, modifier);
        QApplication::sendEvent(_panel.get(), &event);
        QVERIFY(event.isAccepted());
    }
    QCOMPARE(_panel->beeps, 0);
    QVERIFY(message().isEmpty());
    QCOMPARE(key(_item), QStringLiteral("K"));
}

void WayfoldShortcutPanelTest::everyKeyIsUsedUp()
{
    edit(_item);
    for (int pressed : {Qt::Key_I, Qt::Key_C, Qt::Key_Shift, Qt::Key_Escape, Qt::Key_Return, Qt::Key_Tab}) {
        for (Qt::KeyboardModifier modifier : {Qt::NoModifier, Qt::ControlModifier}) {
            const QKeyEvent event(QEvent::KeyPress, pressed, modifier);
            QVERIFY(_panel->performKeyEquivalent(event));
        }
    }
    QVERIFY(_panel->isVisible());
}

void WayfoldShortcutPanelTest::keyHeldDownCountsOnce()
{
    edit(_item);
    for (bool repeats : {false, true, true}) {
        QKeyEvent event(QEvent::KeyPress, Qt::Key_C, Qt::ControlModifier, QString(), repeats);
        QApplication::sendEvent(_panel.get(), &event);
        QVERIFY(event.isAccepted());
    }
    QCOMPARE(_panel->beeps, 1);
}

void WayfoldShortcutPanelTest::keyThatOpenedItMayBeHeldDown_data()
{
    QTest::addColumn<int>("held");
    QTest::newRow("Return") << int(Qt::Key_Return);
    QTest::newRow("Enter") << int(Qt::Key_Enter);
    QTest::newRow("Space") << int(Qt::Key_Space);
}

void WayfoldShortcutPanelTest::keyThatOpenedItMayBeHeldDown()
{
    QFETCH(int, held);
    edit(_item);
    QPushButton *cancel = button(QDialogButtonBox::Cancel);
    cancel->setFocus();
    for (QWidget *receiver : {static_cast<QWidget *>(_panel.get()), static_cast<QWidget *>(cancel)}) {
        QTest::simulateEvent(receiver, true, held, Qt::NoModifier, QString(), true);
        QTest::simulateEvent(receiver, false, held, Qt::NoModifier, QString(), true);
        QVERIFY(_panel->isVisible());
    }
    QCOMPARE(_panel->beeps, 0);
}

void WayfoldShortcutPanelTest::noShortcutElsewhereHearsTheKey()
{
    int heard = 0;
    for (Qt::ShortcutContext context : {Qt::ApplicationShortcut, Qt::WindowShortcut}) {
        QWidget *place = context == Qt::ApplicationShortcut ? static_cast<QWidget *>(_browser.get()) : _panel.get();
        auto *shortcut = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_I), place);
        shortcut->setContext(context);
        connect(shortcut, &QShortcut::activated, this, [&heard] { ++heard; });
        connect(shortcut, &QShortcut::activatedAmbiguously, this, [&heard] { ++heard; });
    }
    _browser->show();
    edit(_item);
    press(Qt::Key_I, Qt::ControlModifier);
    QCOMPARE(heard, 0);
    QCOMPARE(key(_item), QStringLiteral("i"));
}

void WayfoldShortcutPanelTest::otherCommandIsNamed_data()
{
    QTest::addColumn<int>("pressed");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<QString>("name");
    const QString host = QStringLiteral("Full Screen");
    QTest::newRow("host") << int(Qt::Key_F11) << Qt::KeyboardModifiers() << host;
    QTest::newRow("host, its second") << int(Qt::Key_Tab) << Qt::KeyboardModifiers(Qt::ControlModifier) << host;
    // Where the equals sign needs Shift, the same keys are the host's.
    QTest::newRow("host, with Shift") << int(Qt::Key_Equal) << (Qt::ControlModifier | Qt::ShiftModifier) << host;
    QTest::newRow("ours") << int(Qt::Key_Plus) << (Qt::ControlModifier | Qt::ShiftModifier)
                          << QStringLiteral("Focus on a&b");
    QTest::newRow("letter of a menu") << int(Qt::Key_V) << Qt::KeyboardModifiers(Qt::AltModifier)
                                      << QStringLiteral("View");
}

void WayfoldShortcutPanelTest::otherCommandIsNamed()
{
    QFETCH(int, pressed);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(QString, name);
    edit(_item);
    press(pressed, modifiers);
    QCOMPARE(_panel->beeps, 1);
    QCOMPARE(message(), QStringLiteral("\"%1\" has this shortcut already.").arg(name));
    QCOMPARE(key(_item), QStringLiteral("K"));
    QCOMPARE(mask(_item), command | shift);
}

void WayfoldShortcutPanelTest::otherCommandIsNamedInGerman()
{
    QLocale::setDefault(QLocale(QStringLiteral("de_DE")));
    _panel = std::make_unique<Panel>(_window.get());
    edit(_item);
    press(Qt::Key_F11);
    QCOMPARE(message(), QStringLiteral("\u201EFull Screen\u201C hat dieses Tastenk\u00FCrzel schon."));
    QCOMPARE(button(QDialogButtonBox::Reset)->text(), QStringLiteral("Entfernen"));
}

void WayfoldShortcutPanelTest::ownShortcutMayBePressedAgain()
{
    edit(_otherItem);
    press(Qt::Key_Plus, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(_panel->beeps, 0);
    QVERIFY(message().isEmpty());
}

void WayfoldShortcutPanelTest::messageGoesWithTheNextKey()
{
    edit(_item);
    press(Qt::Key_C, Qt::ControlModifier);
    QVERIFY(!message().isEmpty());
    press(Qt::Key_I, Qt::ControlModifier);
    QVERIFY(message().isEmpty());
    press(Qt::Key_C, Qt::ControlModifier);
    _panel->handleCancelButton(nullptr);
    edit(_item);
    QVERIFY(message().isEmpty());
}

void WayfoldShortcutPanelTest::keysWithoutModifiersWorkTheButtons()
{
    edit(_item);
    press(Qt::Key_I, Qt::ControlModifier);
    press(Qt::Key_Return);
    QVERIFY(!_panel->isVisible());
    QCOMPARE(DrawerStage::settings().shortcutKeyForItem(8), QStringLiteral("i"));

    edit(_item);
    press(Qt::Key_U, Qt::ControlModifier);
    press(Qt::Key_Escape);
    QVERIFY(!_panel->isVisible());
    QCOMPARE(key(_item), QStringLiteral("i"));

    edit(_item);
    for (int tabs = 0; tabs < 3 && !button(QDialogButtonBox::Reset)->hasFocus(); ++tabs)
        press(Qt::Key_Tab);
    QVERIFY(button(QDialogButtonBox::Reset)->hasFocus());
    press(Qt::Key_Space);
    QVERIFY(!_panel->isVisible());
    QVERIFY(key(_item).isEmpty());
    QCOMPARE(_panel->beeps, 0);
}

void WayfoldShortcutPanelTest::buttonWithTheKeyboardTakesNoShortcut_data()
{
    QTest::addColumn<int>("pressed");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<QString>("key");
    QTest::newRow("letter") << int(Qt::Key_I) << Qt::KeyboardModifiers(Qt::ControlModifier) << "i";
    QTest::newRow("Space") << int(Qt::Key_Space) << Qt::KeyboardModifiers(Qt::ControlModifier) << " ";
    QTest::newRow("Return") << int(Qt::Key_Return) << Qt::KeyboardModifiers(Qt::AltModifier) << "\r";
    QTest::newRow("Escape") << int(Qt::Key_Escape) << Qt::KeyboardModifiers(Qt::AltModifier) << "\x1B";
    QTest::newRow("Tab backwards") << int(Qt::Key_Backtab) << Qt::KeyboardModifiers(Qt::ShiftModifier) << "\t";
    QTest::newRow("arrow") << int(Qt::Key_Right) << Qt::KeyboardModifiers() << QString(QChar(0xF703));
}

void WayfoldShortcutPanelTest::buttonWithTheKeyboardTakesNoShortcut()
{
    QFETCH(int, pressed);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(QString, key);
    edit(_item);
    QPushButton *clear = button(QDialogButtonBox::Reset);
    clear->setFocus();
    press(pressed, modifiers);
    QVERIFY(_panel->isVisible());
    QCOMPARE(this->key(_item), key);
    QVERIFY(clear->hasFocus());
}

// ---- Ending

void WayfoldShortcutPanelTest::okStores()
{
    edit(_item);
    press(Qt::Key_F5, Qt::ControlModifier);
    QTest::mouseClick(button(QDialogButtonBox::Ok), Qt::LeftButton);
    QVERIFY(!_panel->isVisible());
    QCOMPARE(DrawerStage::settings().shortcutKeyForItem(8), QString(QChar(0xF708)));
    QCOMPARE(DrawerStage::settings().shortcutModifierMaskForItem(8), command | function);
    QVariantMap table = WayfoldDefaults::defaultMenuItemShortcuts();
    table.insert(QStringLiteral("8_KEY"), QString(QChar(0xF708)));
    table.insert(QStringLiteral("8_MODIFIER"), qlonglong(command | function));
    QCOMPARE(stored().toMap(), table);
    QCOMPARE(key(_item), QString(QChar(0xF708)));
}

void WayfoldShortcutPanelTest::clearStores()
{
    edit(_item);
    press(Qt::Key_I, Qt::ControlModifier);
    QTest::mouseClick(button(QDialogButtonBox::Reset), Qt::LeftButton);
    QVERIFY(!_panel->isVisible());
    QVERIFY(key(_item).isEmpty());
    QCOMPARE(mask(_item), 0U);
    QCOMPARE(DrawerStage::settings().shortcutKeyForItem(8), QStringLiteral(""));
    QCOMPARE(DrawerStage::settings().shortcutModifierMaskForItem(8), 0U);
    QCOMPARE(stored().toMap().value(QStringLiteral("8_KEY")), QVariant(QStringLiteral("")));
    QCOMPARE(stored().toMap().value(QStringLiteral("8_MODIFIER")), QVariant(qlonglong(0)));
}

void WayfoldShortcutPanelTest::cancelRestores_data()
{
    QTest::addColumn<int>("way");
    QTest::newRow("the button") << 0;
    QTest::newRow("the window's own button") << 1;
    QTest::newRow("the panel goes") << 2;
}

void WayfoldShortcutPanelTest::cancelRestores()
{
    QFETCH(int, way);
    edit(_item);
    press(Qt::Key_I, Qt::ControlModifier);
    QCOMPARE(key(_item), QStringLiteral("i"));
    if (way == 0)
        QTest::mouseClick(button(QDialogButtonBox::Cancel), Qt::LeftButton);
    else if (way == 1)
        _panel->close();
    else
        _panel.reset();
    QVERIFY(!_panel || !_panel->isVisible());
    QCOMPARE(key(_item), QStringLiteral("K"));
    QCOMPARE(mask(_item), command | shift);
    QVERIFY(!stored().isValid());
    QCOMPARE(DrawerStage::settings().shortcutKeyForItem(8), QStringLiteral("K"));
}

void WayfoldShortcutPanelTest::nextItemEndsTheOneBefore()
{
    edit(_item);
    press(Qt::Key_I, Qt::ControlModifier);
    edit(_otherItem);
    QCOMPARE(key(_item), QStringLiteral("K"));
    press(Qt::Key_U, Qt::ControlModifier);
    _panel->handleCancelButton(nullptr);
    QCOMPARE(key(_item), QStringLiteral("K"));
    QCOMPARE(key(_otherItem), QStringLiteral("+"));
}

void WayfoldShortcutPanelTest::itemMayGo()
{
    edit(_item);
    delete _item;
    press(Qt::Key_I, Qt::ControlModifier);
    QTest::mouseClick(button(QDialogButtonBox::Ok), Qt::LeftButton);
    QVERIFY(!_panel->isVisible());
    QVERIFY(!stored().isValid());
}

void WayfoldShortcutPanelTest::survivesARestart_data()
{
    QTest::addColumn<int>("pressed");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    for (int pressed : {Qt::Key_Escape, Qt::Key_Return, Qt::Key_Enter, Qt::Key_Tab, Qt::Key_Backspace, Qt::Key_Space,
                        Qt::Key_F5, Qt::Key_Down, Qt::Key_Percent, Qt::Key_Adiaeresis, Qt::Key_Less, Qt::Key_Ampersand})
        QTest::addRow("0x%x", pressed) << pressed << Qt::KeyboardModifiers(Qt::AltModifier);
    QTest::newRow("cleared") << 0 << Qt::KeyboardModifiers();
}

// Nothing but the shortcut is changed before the browser quits.
void WayfoldShortcutPanelTest::survivesARestart()
{
    QFETCH(int, pressed);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QAction *item = MenuItem::itemWithTag(DrawerStage::store().wayfoldMenu(), 8);
    edit(item);
    if (pressed) {
        press(pressed, modifiers);
        QCOMPARE(_panel->beeps, 0);
        _panel->handleOKButton(nullptr);
    } else {
        _panel->handleClearButton(nullptr);
    }
    const QString key = this->key(item);
    const unsigned mask = this->mask(item);
    QCOMPARE(key.isEmpty(), pressed == 0);

    QVERIFY(UserDefaults::standardUserDefaults().synchronize());
    UserDefaults::standardUserDefaults().reset();
    DrawerStage::settings().loadDefaults();
    KDRDrawerBundle::releaseSharedInstance();
    item = MenuItem::itemWithTag(DrawerStage::store().wayfoldMenu(), 8);
    QCOMPARE(this->key(item), key);
    QCOMPARE(this->mask(item), mask);
}

void WayfoldShortcutPanelTest::worksWhenModal_data()
{
    QTest::addColumn<bool>("works");
    QTest::newRow("works") << true;
    QTest::newRow("does not") << false;
}

void WayfoldShortcutPanelTest::worksWhenModal()
{
    QFETCH(bool, works);
    _panel->setWorksWhenModal(works);
    edit(_item);
    QDialog alert;
    alert.setWindowModality(Qt::ApplicationModal);
    alert.show();
    QVERIFY(QTest::qWaitForWindowExposed(&alert));
    QCoreApplication::processEvents();
    press(Qt::Key_I, Qt::ControlModifier);
    QCOMPARE(key(_item), works ? QStringLiteral("i") : QStringLiteral("K"));
    QVERIFY(_panel->isVisible());
}

QTEST_MAIN(WayfoldShortcutPanelTest)
#include "WayfoldShortcutPanelTest.moc"
