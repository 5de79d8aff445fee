#include "platform/widgets/MenuKeyFilter.h"

#include "platform/widgets/MenuItem.h"

#include <QKeyEvent>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QTest>

namespace
{
class Target : public MenuItemTarget
{
public:
    QList<QAction *> performed;

    bool validateMenuItem(QAction * /*item*/) override { return true; }
    void performMenuItem(QAction *item) override { performed.append(item); }
};

// Wants every key for itself, as a text field does, or takes what is left over.
class Field : public QWidget
{
public:
    using QWidget::QWidget;
    bool isGreedy = true;
    QList<int> keys;

    bool event(QEvent *event) override
    {
        if (event->type() == QEvent::ShortcutOverride && isGreedy)
            event->accept();
        else if (event->type() == QEvent::KeyPress)
            keys.append(static_cast<QKeyEvent *>(event)->key());
        return QWidget::event(event);
    }
};

constexpr unsigned command = MenuItem::NSCommandKeyMask;
constexpr unsigned shift = MenuItem::NSShiftKeyMask;
constexpr Qt::KeyboardModifiers ctrlShift = Qt::ControlModifier | Qt::ShiftModifier;
} // namespace

// How the keys of real keyboards reach it is tried with a display.
class MenuKeyFilterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void signWithShiftIsPerformedOnce();
    void nextKeyIsAnOrdinaryOne();
    void keyThatAFieldWantsIsLeftToIt();
    void disabledItemIsNotPerformed();
    void otherWindowHasNoSuchCommand();
    void goesWithItsMenu();

private:
    QAction *addItem(const QString &key, unsigned mask)
    {
        QAction *item = _menu->addAction(QStringLiteral("Item"));
        MenuItem::setTarget(item, &_target);
        MenuItem::setKeyEquivalent(item, key, mask);
        // Found by the filter alone.
        item->setShortcut(QKeySequence());
        return item;
    }
    void press(QWidget *window, Qt::Key key, Qt::KeyboardModifiers modifiers)
    {
        QTest::keyClick(window->windowHandle(), key, modifiers);
    }

    Target _target;
    std::unique_ptr<QMainWindow> _window;
    QMenu *_menu = nullptr;
};

void MenuKeyFilterTest::init()
{
    _target.performed.clear();
    _window = std::make_unique<QMainWindow>();
    _menu = _window->menuBar()->addMenu(QStringLiteral("Menu"));
    new MenuKeyFilter(_menu);
    _window->show();
    QVERIFY(QTest::qWaitForWindowActive(_window.get()));
}

void MenuKeyFilterTest::cleanup()
{
    _window.reset();
}

void MenuKeyFilterTest::signWithShiftIsPerformedOnce()
{
    QAction *item = addItem(QStringLiteral("*"), command | shift);
    addItem(QStringLiteral("*"), command);
    press(_window.get(), Qt::Key_Asterisk, ctrlShift);
    QCOMPARE(_target.performed, QList<QAction *>{item});
    press(_window.get(), Qt::Key_Asterisk, Qt::ControlModifier);
    press(_window.get(), Qt::Key_Asterisk, ctrlShift | Qt::AltModifier);
    press(_window.get(), Qt::Key_Plus, ctrlShift);
    QCOMPARE(_target.performed, QList<QAction *>{item});
}

void MenuKeyFilterTest::nextKeyIsAnOrdinaryOne()
{
    QAction *item = addItem(QStringLiteral("*"), command | shift);
    Field field(_window.get());
    field.setFocusPolicy(Qt::StrongFocus);
    press(_window.get(), Qt::Key_Asterisk, ctrlShift);
    field.show();
    field.setFocus();
    press(_window.get(), Qt::Key_X, Qt::NoModifier);
    QCOMPARE(field.keys, QList<int>{Qt::Key_X});
    QCOMPARE(_target.performed, QList<QAction *>{item});
}

void MenuKeyFilterTest::keyThatAFieldWantsIsLeftToIt()
{
    addItem(QStringLiteral("*"), command | shift);
    Field field(_window.get());
    field.setFocusPolicy(Qt::StrongFocus);
    field.show();
    field.setFocus();
    press(_window.get(), Qt::Key_Asterisk, ctrlShift);
    QVERIFY(field.keys.contains(Qt::Key_Asterisk));
    QVERIFY(_target.performed.isEmpty());
}

void MenuKeyFilterTest::disabledItemIsNotPerformed()
{
    addItem(QStringLiteral("*"), command | shift)->setEnabled(false);
    Field field(_window.get());
    field.isGreedy = false;
    field.setFocusPolicy(Qt::StrongFocus);
    field.show();
    field.setFocus();
    press(_window.get(), Qt::Key_Asterisk, ctrlShift);
    QVERIFY(_target.performed.isEmpty());
    QVERIFY(field.keys.contains(Qt::Key_Asterisk)); // and not lost
}

void MenuKeyFilterTest::otherWindowHasNoSuchCommand()
{
    QAction *item = addItem(QStringLiteral("*"), command | shift);
    QWidget other;
    other.show();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    press(&other, Qt::Key_Asterisk, ctrlShift);
    QVERIFY(_target.performed.isEmpty());
    other.addAction(item); // as a host does whose menu bar is hidden
    press(&other, Qt::Key_Asterisk, ctrlShift);
    QCOMPARE(_target.performed, QList<QAction *>{item});
}

void MenuKeyFilterTest::goesWithItsMenu()
{
    addItem(QStringLiteral("*"), command | shift);
    delete _menu;
    press(_window.get(), Qt::Key_Asterisk, ctrlShift);
    QVERIFY(_target.performed.isEmpty());
}

QTEST_MAIN(MenuKeyFilterTest)
#include "MenuKeyFilterTest.moc"
