#pragma once

#include <QPoint>
#include <QString>
#include <functional>
#include <optional>

class QTreeView;
class QWidget;

// The user's hands: the real pointer and the real keyboard of the display, moved with xdotool. Positions are global
// ones. Each call returns when the display has taken the events; what they lead to is waited for by condition. All are
// false when the display refused.
namespace Hands
{
bool moveTo(const QPoint &position);
// Buttons are counted from the left: 1, 2, 3.
bool clickAt(const QPoint &position, int button = 1);
// Moves the pointer to a place within a widget and waits until it is there to be clicked: enabled, not covered by
// another window, in a window that stands where the window manager has put it and, for a dialog, has the keyboard; and
// until the place, which is asked for on the main thread, stays where it is. False when there is no such widget or it
// never comes so far.
using Place = std::function<std::optional<QPoint>()>;
bool pointAt(QWidget *widget, const Place &place);
// Where the pointer is.
bool click(int button = 1);
bool doubleClick();
// The middle of a widget, once it is there to be clicked.
bool clickOn(QWidget *widget);
// The same, and waits until it has the keyboard: a window manager may hold a click back while keys go on.
bool clickInto(QWidget *field);
// The same for the first row of a list with that text.
bool clickOnRow(QTreeView *list, const QString &text);
bool doubleClickOnRow(QTreeView *list, const QString &text);
// The same for a row that is to be selected or deselected beside others.
bool clickOnAnotherRow(QTreeView *list, const QString &text);
// Presses the left button, moves the pointer in small steps and lets go.
bool drag(const QPoint &from, const QPoint &to);
// The same one by one, for what comes about on the way. Each begins where the pointer is.
bool lift();
bool carryTo(const QPoint &position);
bool drop();
// A key with its modifiers: "ctrl+q", "Return", "space"; or by its place, a key code of the display: "ctrl+21". Several
// with blanks between them, one after the other.
bool press(const QString &keys);
// Line ends are typed with Return.
bool type(const QString &text);
// Exchanges the keyboard for that of another country: "us", "de".
bool takeKeyboard(const QString &layout);
} // namespace Hands
