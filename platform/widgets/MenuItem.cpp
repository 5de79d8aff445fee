#include "platform/widgets/MenuItem.h"

#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QRegularExpression>
#include <QVariant>
#include <algorithm>

// A menu item keeps what belongs to it as properties of the action; "tag" and "action" are set by interface files too.
namespace
{
constexpr auto tagProperty = "tag";
constexpr auto actionProperty = "action";
constexpr auto targetProperty = "menuItemTarget";
constexpr auto keyProperty = "keyEquivalent";
constexpr auto maskProperty = "keyEquivalentModifierMask";

void perform(QAction *item)
{
    MenuItemTarget *target = MenuItem::target(item);
    if (target && target->validateMenuItem(item))
        target->performMenuItem(item);
}

bool isInMenuBar(const QAction *command)
{
    const QList<QObject *> holders = command->associatedObjects();
    return std::any_of(holders.cbegin(), holders.cend(),
                       [](const QObject *holder) { return qobject_cast<const QMenuBar *>(holder) != nullptr; });
}

bool hasAnyShortcut(const QAction *command, const QList<QKeySequence> &shortcuts)
{
    for (const QKeySequence &shortcut : command->shortcuts()) {
        if (shortcuts.contains(shortcut))
            return true;
    }
    return command->menu() && isInMenuBar(command) && shortcuts.contains(QKeySequence::mnemonic(command->text()));
}

// The items with a target; what the others look like is none of our business.
template <class Function>
void forEachTargeted(const QMenu *menu, Function function)
{
    const QList<QAction *> items = menu->actions();
    for (QAction *item : items) {
        if (MenuItem::target(item))
            function(item);
    }
}
} // namespace

// A lone "&" stands before a shortcut letter, two of them for one that is shown; what follows a tab is shown as a key.
QString MenuItem::title(const QAction *item)
{
    static const QRegularExpression mark(QStringLiteral("&(.?)"));
    return item->text().section(QLatin1Char('\t'), 0, 0).replace(mark, QStringLiteral("\\1"));
}

int MenuItem::tag(const QAction *item)
{
    return item->property(tagProperty).toInt();
}

void MenuItem::setTag(QAction *item, int tag)
{
    item->setProperty(tagProperty, tag);
}

QString MenuItem::action(const QAction *item)
{
    return item->property(actionProperty).toString();
}

void MenuItem::setAction(QAction *item, const QString &action)
{
    item->setProperty(actionProperty, action);
}

MenuItemTarget *MenuItem::target(const QAction *item)
{
    return static_cast<MenuItemTarget *>(item->property(targetProperty).value<void *>());
}

void MenuItem::setTarget(QAction *item, MenuItemTarget *target)
{
    const bool isFirst = !item->property(targetProperty).isValid();
    item->setProperty(targetProperty, QVariant::fromValue<void *>(target));
    if (isFirst)
        QObject::connect(item, &QAction::triggered, item, [item] { perform(item); });
}

void MenuItem::setKeyEquivalent(QAction *item, const QString &key, unsigned modifierMask)
{
    item->setProperty(keyProperty, key.size() == 1 ? key : QString::fromLatin1(""));
    item->setProperty(maskProperty, modifierMask);
    item->setShortcut(KeyEquivalent{key, modifierMask}.shortcut());
}

QString MenuItem::keyEquivalent(const QAction *item)
{
    const QVariant key = item->property(keyProperty);
    return key.isValid() ? key.toString() : KeyEquivalent::ofShortcut(item->shortcut()).key;
}

unsigned MenuItem::keyEquivalentModifierMask(const QAction *item)
{
    const QVariant mask = item->property(maskProperty);
    return mask.isValid() ? mask.toUInt() : KeyEquivalent::ofShortcut(item->shortcut()).modifierMask;
}

QAction *MenuItem::itemWithTag(const QMenu *menu, int tag)
{
    const QList<QAction *> items = menu->actions();
    for (QAction *item : items) {
        if (item->property(tagProperty).isValid() && MenuItem::tag(item) == tag)
            return item;
    }
    return nullptr;
}

QAction *MenuItem::itemWithKeyEquivalent(const QMenu *menu, const KeyEquivalent &key)
{
    const QList<QAction *> items = menu->actions();
    for (QAction *item : items) {
        if (KeyEquivalent{keyEquivalent(item), keyEquivalentModifierMask(item)} == key)
            return item;
    }
    return nullptr;
}

QList<QAction *> MenuItem::commandsOfWindow(const QWidget *window)
{
    QList<QAction *> commands = window->actions();
    const QList<QMenuBar *> menuBars = window->findChildren<QMenuBar *>(Qt::FindDirectChildrenOnly);
    for (const QMenuBar *menuBar : menuBars)
        commands += menuBar->actions();
    for (qsizetype i = 0; i < commands.size(); ++i) {
        if (const QMenu *submenu = commands[i]->menu())
            commands += submenu->actions();
    }
    return commands;
}

QList<QAction *> MenuItem::otherCommands(const QAction *item)
{
    QList<QAction *> commands;
    for (const QObject *holder : item->associatedObjects()) {
        if (const auto *menu = qobject_cast<const QMenu *>(holder))
            commands += menu->actions();
    }
    for (const QWidget *window : QApplication::topLevelWidgets()) {
        const QList<QAction *> ofWindow = commandsOfWindow(window);
        if (ofWindow.contains(item))
            commands += ofWindow;
    }
    commands.removeAll(item);
    return commands;
}

QAction *MenuItem::commandWithShortcut(const QList<QAction *> &commands, const QList<QKeySequence> &shortcuts)
{
    for (QAction *command : commands) {
        if (hasAnyShortcut(command, shortcuts))
            return command;
    }
    return nullptr;
}

void MenuItem::validateOnShow(QMenu *menu)
{
    QObject::connect(menu, &QMenu::aboutToShow, menu, [menu] {
        forEachTargeted(menu, [](QAction *item) { item->setEnabled(target(item)->validateMenuItem(item)); });
    });
    // A disabled item does not hear its key equivalent, and what may be done can change while no menu shows.
    QObject::connect(menu, &QMenu::aboutToHide, menu,
                     [menu] { forEachTargeted(menu, [](QAction *item) { item->setEnabled(true); }); });
}
