#pragma once

#include <QList>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <QtGui/qwindowdefs.h>

// The display as the window manager has it: the windows that are really there, and what a user does with them by means
// of the manager. For the user's thread.
namespace Desk
{
// The windows of this process that can be seen right now, whatever the application believes.
QList<WId> visibleWindows();
// Without decorations, in global coordinates; empty when there is no such window.
QRect geometryOf(WId window);
// Whether the desktop's list of windows leaves it out.
bool isLeftOutOfTaskBar(WId window);

bool minimise(WId window);
// Shows a minimised window again, changes to its workspace and gives it the keyboard.
bool activate(WId window);
// Gives a window that size, without decorations, as a tiling command would.
bool resize(WId window, const QSize &size);
bool moveTo(WId window, const QPoint &position);
// Takes a window to another workspace; they are counted from 0.
bool sendToWorkspace(WId window, int workspace);
bool changeToWorkspace(int workspace);
int workspaceOf(WId window); // -1 when it is on none
} // namespace Desk
