#pragma once

class QWidget;

// The desktop's list of windows.
namespace TaskBar
{
// Keeps the window out of task bars, pagers and what walks from window to window by keyboard. To be called each time
// before it is shown, so that it is never seen there, and again after: a window manager may still be busy with taking
// the window away, and would then take this with it.
void leaveOut(QWidget &window);
} // namespace TaskBar
