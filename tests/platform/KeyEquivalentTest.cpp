#include "platform/widgets/KeyEquivalent.h"

#include <QKeyEvent>
#include <QTest>

namespace
{
constexpr unsigned shift = 0x20000;
constexpr unsigned control = 0x40000;
constexpr unsigned option = 0x80000;
constexpr unsigned command = 0x100000;
constexpr unsigned function = 0x800000;

QString character(char16_t code)
{
    return QString(QChar(code));
}
} // namespace

class KeyEquivalentTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ofKeyPress_data();
    void ofKeyPress();
    void everyFunctionKey();
    void keyWithoutCharacter_data();
    void keyWithoutCharacter();

    void ofShortcut_data();
    void ofShortcut();
    void shortcutOfKeyPressIsThatKey_data() { ofKeyPress_data(); }
    void shortcutOfKeyPressIsThatKey();
    void noKeyHasNoShortcut();
    void signWithShift_data();
    void signWithShift();
};

void KeyEquivalentTest::ofKeyPress_data()
{
    QTest::addColumn<int>("pressed");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<QString>("key");
    QTest::addColumn<unsigned>("mask");
    const auto row = [](const char *name, int pressed, Qt::KeyboardModifiers modifiers, char16_t key, unsigned mask) {
        QTest::newRow(name) << pressed << modifiers << character(key) << mask;
    };
    const Qt::KeyboardModifiers none;
    row("letter", Qt::Key_K, none, u'k', 0);
    row("letter with Command", Qt::Key_K, Qt::ControlModifier, u'k', command);
    row("letter with Control", Qt::Key_K, Qt::MetaModifier, u'k', control);
    row("letter with Option", Qt::Key_K, Qt::AltModifier, u'k', option);
    row("capital", Qt::Key_K, Qt::ShiftModifier, u'K', shift);
    row("capital with all", Qt::Key_K, Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier,
        u'K', shift | control | option | command);
    row("letter with dots", Qt::Key_Adiaeresis, Qt::ControlModifier, u'\u00E4', command);
    row("capital with dots", Qt::Key_Adiaeresis, Qt::ControlModifier | Qt::ShiftModifier, u'\u00C4', command | shift);
    row("letter without a capital", Qt::Key_ssharp, Qt::ControlModifier, u'\u00DF', command);
    row("y with dots", Qt::Key_ydiaeresis, Qt::ControlModifier, u'\u00FF', command);
    row("micro sign, which types with Shift", Qt::Key_mu, Qt::ControlModifier | Qt::ShiftModifier, u'\u00B5',
        command | shift);
    row("letter of another script", 0x0416, Qt::AltModifier, u'\u0436', option);
    row("digit", Qt::Key_7, Qt::ControlModifier, u'7', command);
    row("digit of the number pad", Qt::Key_7, Qt::ControlModifier | Qt::KeypadModifier, u'7', command);
    row("sign", Qt::Key_Minus, Qt::ControlModifier, u'-', command);
    row("sign that needs Shift", Qt::Key_Asterisk, Qt::ControlModifier | Qt::ShiftModifier, u'*', command | shift);
    row("sign with the third level's key", Qt::Key_At, Qt::ControlModifier | Qt::GroupSwitchModifier, u'@', command);
    row("Space", Qt::Key_Space, Qt::ControlModifier, u' ', command);

    row("Tab", Qt::Key_Tab, Qt::AltModifier, u'\t', option);
    row("Tab with Shift", Qt::Key_Backtab, Qt::ShiftModifier, u'\t', shift);
    row("Return", Qt::Key_Return, none, u'\r', 0);
    row("Enter", Qt::Key_Enter, Qt::KeypadModifier, u'\x03', 0);
    row("Escape", Qt::Key_Escape, Qt::AltModifier, u'\x1B', option);
    row("Delete", Qt::Key_Backspace, Qt::ControlModifier, u'\x7F', command);

    row("up", Qt::Key_Up, none, u'\uF700', function);
    row("down", Qt::Key_Down, Qt::ControlModifier, u'\uF701', command | function);
    row("left", Qt::Key_Left, Qt::ShiftModifier, u'\uF702', shift | function);
    row("right of the number pad", Qt::Key_Right, Qt::KeypadModifier, u'\uF703', function);
    row("F1", Qt::Key_F1, none, u'\uF704', function);
    row("F12", Qt::Key_F12, Qt::ControlModifier, u'\uF70F', command | function);
    row("Home", Qt::Key_Home, none, u'\uF729', function);
    row("End", Qt::Key_End, Qt::AltModifier, u'\uF72B', option | function);
    row("Page Up", Qt::Key_PageUp, none, u'\uF72C', function);
    row("Page Down", Qt::Key_PageDown, none, u'\uF72D', function);
    row("Insert", Qt::Key_Insert, Qt::ShiftModifier, u'\uF727', shift | function);
    row("Delete forwards", Qt::Key_Delete, Qt::ControlModifier, u'\uF728', command | function);
}

void KeyEquivalentTest::ofKeyPress()
{
    QFETCH(int, pressed);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(QString, key);
    QFETCH(unsigned, mask);
    const QKeyEvent event(QEvent::KeyPress, pressed, modifiers, QStringLiteral("text"));
    const KeyEquivalent equivalent = KeyEquivalent::ofKeyPress(event);
    QCOMPARE(equivalent.key, key);
    QCOMPARE(equivalent.modifierMask, mask);
}

void KeyEquivalentTest::everyFunctionKey()
{
    for (int number = 1; number <= 35; ++number) {
        const QKeyEvent event(QEvent::KeyPress, Qt::Key_F1 + number - 1, Qt::NoModifier);
        const KeyEquivalent expected{character(char16_t(0xF703 + number)), function};
        QCOMPARE(KeyEquivalent::ofKeyPress(event), expected);
    }
}

void KeyEquivalentTest::keyWithoutCharacter_data()
{
    QTest::addColumn<int>("pressed");
    for (int pressed : {int(Qt::Key_Shift), int(Qt::Key_Control), int(Qt::Key_Alt), int(Qt::Key_Meta),
                        int(Qt::Key_AltGr), int(Qt::Key_CapsLock), int(Qt::Key_NumLock), int(Qt::Key_Dead_Acute),
                        int(Qt::Key_Print), int(Qt::Key_VolumeDown), int(Qt::Key_unknown), 0, 0x1F600})
        QTest::addRow("0x%x", pressed) << pressed;
}

void KeyEquivalentTest::keyWithoutCharacter()
{
    QFETCH(int, pressed);
    const QKeyEvent event(QEvent::KeyPress, pressed, Qt::ControlModifier);
    QVERIFY(KeyEquivalent::ofKeyPress(event).key.isEmpty());
}

void KeyEquivalentTest::ofShortcut_data()
{
    QTest::addColumn<QString>("shortcut");
    QTest::addColumn<QString>("key");
    QTest::addColumn<unsigned>("mask");
    QTest::newRow("none") << ""
                          << "" << 0U;
    QTest::newRow("letter") << "Ctrl+Shift+D"
                            << "d" << (command | shift);
    QTest::newRow("control") << "Meta+B"
                             << "b" << control;
    QTest::newRow("sign") << "Alt++"
                          << "+" << option;
    QTest::newRow("function key") << "Alt+F5" << character(0xF708) << (option | function);
    QTest::newRow("arrow") << "Ctrl+Up" << character(0xF700) << (command | function);
    QTest::newRow("Escape") << "Alt+Esc"
                            << "\x1B" << option;
    QTest::newRow("Delete") << "Ctrl+Backspace"
                            << "\x7F" << command;
    QTest::newRow("first of several") << "Ctrl+K, Ctrl+D"
                                      << "k" << command;
}

void KeyEquivalentTest::ofShortcut()
{
    QFETCH(QString, shortcut);
    QFETCH(QString, key);
    QFETCH(unsigned, mask);
    const KeyEquivalent equivalent =
        KeyEquivalent::ofShortcut(QKeySequence::fromString(shortcut, QKeySequence::PortableText));
    QCOMPARE(equivalent.key, key);
    QVERIFY(!equivalent.key.isNull());
    QCOMPARE(equivalent.modifierMask, mask);
}

// Where the key types the same with and without Shift, or is told apart by Shift, Qt finds it by itself.
void KeyEquivalentTest::shortcutOfKeyPressIsThatKey()
{
    QFETCH(int, pressed);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    if (pressed == Qt::Key_Backtab)
        pressed = Qt::Key_Tab; // what Qt looks for too
    const QKeyEvent event(QEvent::KeyPress, pressed, modifiers);
    modifiers &= ~(Qt::KeypadModifier | Qt::GroupSwitchModifier);
    QCOMPARE(KeyEquivalent::ofKeyPress(event).shortcut(), QKeySequence(QKeyCombination(modifiers, Qt::Key(pressed))));
}

void KeyEquivalentTest::noKeyHasNoShortcut()
{
    QVERIFY((KeyEquivalent{QString(), command}.shortcut().isEmpty()));
    QVERIFY((KeyEquivalent{QStringLiteral(""), command}.shortcut().isEmpty()));
    QVERIFY((KeyEquivalent{QStringLiteral("Copy"), command}.shortcut().isEmpty())); // not Ctrl+C
}

void KeyEquivalentTest::signWithShift_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<unsigned>("mask");
    QTest::addColumn<QStringList>("shortcuts");
    QTest::newRow("sign") << "*" << (command | shift) << QStringList{"Ctrl+Shift+*", "Ctrl+*"};
    QTest::newRow("digit") << "8" << (option | shift) << QStringList{"Alt+Shift+8", "Alt+8"};
    QTest::newRow("Shift alone") << "?" << shift << QStringList{"Shift+?", "?"};
    // Written out, Qt's shortcuts are in capitals.
    QTest::newRow("letter that is no capital")
        << QStringLiteral("\u00B5") << (command | shift)
        << QStringList{QStringLiteral("Ctrl+Shift+\u039C"), QStringLiteral("Ctrl+\u039C")};
    QTest::newRow("sign without Shift") << "*" << command << QStringList{"Ctrl+*"};
    QTest::newRow("letter") << "A" << (command | shift) << QStringList{"Ctrl+Shift+A"};
    QTest::newRow("Space") << " " << (command | shift) << QStringList{"Ctrl+Shift+Space"};
    QTest::newRow("Tab") << "\t" << (command | shift) << QStringList{"Ctrl+Shift+Tab"};
    QTest::newRow("arrow") << character(0xF700) << (command | shift | function) << QStringList{"Ctrl+Shift+Up"};
}

void KeyEquivalentTest::signWithShift()
{
    QFETCH(QString, key);
    QFETCH(unsigned, mask);
    QFETCH(QStringList, shortcuts);
    const KeyEquivalent equivalent{key, mask};
    QCOMPARE(equivalent.isSignWithShift(), shortcuts.size() == 2);
    QCOMPARE(QKeySequence::listToString(equivalent.shortcuts(), QKeySequence::PortableText), shortcuts.join("; "));
}

QTEST_MAIN(KeyEquivalentTest)
#include "KeyEquivalentTest.moc"
