#pragma once

class QWidget;

// The window that tells what this is, and its version. There is at most one.
class WayfoldAboutController
{
public:
    // Shows the window in the middle of the screen, in front; brings it back to the front when it is open already.
    static void displayAboutWindow();
    // Null while it is not open.
    static QWidget *window();
};
