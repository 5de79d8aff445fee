#pragma once

class QDialog;

namespace ModalDialog
{
// The dialog stays with the window that is active, but does not go with it: what was typed must not be lost when a
// browser window closes.
void attachToActiveWindow(QDialog *dialog);
// Makes a dialog that is not on the screen yet no larger than there is room for, with a window manager's frame, but not
// smaller than it can be.
void fitIntoScreen(QDialog *dialog);
// Runs the dialog, as its own exec does. The window that was active before is so afterwards as well: a window manager
// may pass over a drawer, which is no main window, when it chooses who has the keyboard next. The dialog may be deleted
// meanwhile.
int run(QDialog *dialog);
} // namespace ModalDialog
