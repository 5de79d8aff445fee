#pragma once

#include <QPoint>
#include <QString>

class QWidget;

// The user's hands: the real pointer and the real keyboard of the display, moved with xdotool. Positions are global
// ones. Each call returns when the display has taken the events; what they lead to is waited for by condition. All are
// false when the display refused.
namespace Hands
{
bool moveTo(const QPoint &position);
// Buttons are counted from the left: 1, 2, 3.
bool clickAt(const QPoint &position, int button = 1);
// The middle of a widget, once its window stands where the window manager has put it and, for a dialog, has the
// keyboard, and the widget is enabled. False when there is no such widget or it never comes so far.
bool clickOn(QWidget *widget);
bool doubleClickAt(const QPoint &position);
// Presses the left button, moves the pointer in small steps and lets go.
bool drag(const QPoint &from, const QPoint &to);
// A key with its modifiers: "ctrl+q", "Return", "space".
bool press(const QString &keys);
// Line ends are typed with Return.
bool type(const QString &text);
} // namespace Hands
