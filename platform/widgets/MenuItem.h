#pragma once

#include "platform/widgets/KeyEquivalent.h"

#include <QAction>
#include <QString>

class QMenu;
class QWidget;

// Menu items are QActions with a tag, an action (the name of an operation, as in "handleDeleteItemRequest:"), a target
// that carries it out and decides whether it is enabled, and a key equivalent with a modifier mask.
class MenuItemTarget
{
public:
    virtual ~MenuItemTarget() = default;
    // Whether the item is enabled now; may change its title. Asked for each time the menu is about to show, and before
    // a key equivalent acts.
    virtual bool validateMenuItem(QAction *item) = 0;
    // Carries out the item's action.
    virtual void performMenuItem(QAction *item) = 0;
};

namespace MenuItem
{
using enum KeyEquivalent::ModifierMask;

// As it is read, without the marks that its text has for a menu ("Bed && &Breakfast") and without keys behind a tab.
QString title(const QAction *item);
int tag(const QAction *item); // 0 when none was set
void setTag(QAction *item, int tag);
QString action(const QAction *item); // null when none was set
void setAction(QAction *item, const QString &action);
// Null takes the target away. The target must outlive the item.
void setTarget(QAction *item, MenuItemTarget *target);
MenuItemTarget *target(const QAction *item);

// A key that is not one character removes the shortcut. An item that was never given a key answers what its shortcut
// stands for, letters in lower case.
void setKeyEquivalent(QAction *item, const QString &key, unsigned modifierMask);
QString keyEquivalent(const QAction *item);
unsigned keyEquivalentModifierMask(const QAction *item);

// The first item of the menu that was given that tag; null when there is none.
QAction *itemWithTag(const QMenu *menu, int tag);
// The first item with exactly that key equivalent; null when there is none.
QAction *itemWithKeyEquivalent(const QMenu *menu, const KeyEquivalent &key);
// What a window's menu bar shows, submenus and all, and what else the window was given; some may come twice.
QList<QAction *> commandsOfWindow(const QWidget *window);
// The other commands of the item's menu and of the windows that have the item; some may come twice.
QList<QAction *> otherCommands(const QAction *item);
// The first of the commands that one of these shortcuts would reach; null when there is none. The letter that opens a
// menu of a menu bar counts as the menu's shortcut.
QAction *commandWithShortcut(const QList<QAction *> &commands, const QList<QKeySequence> &shortcuts);
// Makes the menu ask its items' targets each time it is about to show, and enables the items again when it goes, so
// that key equivalents are never left disabled; those ask before they act.
void validateOnShow(QMenu *menu);
} // namespace MenuItem
