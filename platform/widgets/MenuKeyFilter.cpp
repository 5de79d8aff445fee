#include "platform/widgets/MenuKeyFilter.h"

#include "platform/widgets/MenuItem.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMenu>
#include <utility>

namespace
{
// The window whose commands the keyboard reaches: a tool window leaves that to the one that it belongs to.
const QWidget *windowOfCommands(const QWidget *window)
{
    while (window->windowType() == Qt::Tool && window->parentWidget())
        window = window->parentWidget()->window();
    return window;
}
} // namespace

MenuKeyFilter::MenuKeyFilter(QMenu *menu) : QObject(menu), _menu(menu)
{
    qApp->installEventFilter(this);
}

bool MenuKeyFilter::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        _announced = nullptr;
        // It comes to the window last, when nobody in it wants the key for itself.
        const auto *window = qobject_cast<QWidget *>(watched);
        if (window && window->isWindow())
            _announced = itemForKeyPress(*static_cast<QKeyEvent *>(event), windowOfCommands(window));
        if (!_announced)
            return false;
        event->accept(); // no shortcut, but a key press
        return true;
    }
    if (event->type() == QEvent::KeyPress && _announced) {
        std::exchange(_announced, nullptr)->trigger();
        return true;
    }
    return false;
}

QAction *MenuKeyFilter::itemForKeyPress(const QKeyEvent &event, const QWidget *window) const
{
    const KeyEquivalent pressed = KeyEquivalent::ofKeyPress(event);
    if (!pressed.isSignWithShift())
        return nullptr;
    QAction *item = MenuItem::itemWithKeyEquivalent(_menu, pressed);
    QList<QAction *> commands = MenuItem::commandsOfWindow(window);
    if (!item || !item->isEnabled() || !commands.contains(item))
        return nullptr;
    for (const QAction *own : _menu->actions())
        commands.removeAll(own);
    return MenuItem::commandWithShortcut(commands, pressed.shortcuts()) ? nullptr : item;
}
