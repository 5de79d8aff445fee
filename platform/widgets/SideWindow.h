#pragma once

class QWidget;

// What the plug-in's windows beside the browser's own have in common: the note to read, the about window, the
// preferences.
namespace SideWindow
{
// The browser may quit although the window is open; Escape and Ctrl+W close it.
void prepare(QWidget *window);
// Gives it the size that its contents want, in the middle of the screen that the user looks at.
void center(QWidget *window);
// Shows it in front, with the keyboard.
void makeKeyAndOrderFront(QWidget *window);
} // namespace SideWindow
