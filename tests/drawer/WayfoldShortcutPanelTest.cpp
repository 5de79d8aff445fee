#include "drawer/WayfoldShortcutPanel.h"

#include "platform/widgets/MenuItem.h"
#include "tests/drawer/DrawerStage.h"

#include <QAction>
#include <QLabel>

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

    void takenShortcut_data();
    void takenShortcut();
    void describesShortcut_data();
    void describesShortcut();

private:
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(_panel.get(), key, modifiers); }

    std::optional<DrawerStage> _stage;
    std::unique_ptr<QWidget> _window;
    std::unique_ptr<Panel> _panel;
};

void WayfoldShortcutPanelTest::init()
{
    _stage.emplace();
    _window = std::make_unique<QWidget>();
    _window->show();
    _panel = std::make_unique<Panel>(_window.get());
}

void WayfoldShortcutPanelTest::cleanup()
{
    _panel.reset();
    _window.reset();
    _stage.reset();
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

QTEST_MAIN(WayfoldShortcutPanelTest)
#include "WayfoldShortcutPanelTest.moc"
