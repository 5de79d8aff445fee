#pragma once

class QDialog;

namespace ModalDialog
{
// Runs the dialog, as its own exec does. The window that was active before is so afterwards as well: a window manager
// may pass over a drawer, which is no main window, when it chooses who has the keyboard next. The dialog may be deleted
// meanwhile.
int run(QDialog *dialog);
} // namespace ModalDialog
