#include "platform/widgets/ModalDialog.h"

#include <QApplication>
#include <QDialog>
#include <QPointer>
#include <QScreen>
#include <QWindow>

void ModalDialog::attachToActiveWindow(QDialog *dialog)
{
    const QWidget *active = QApplication::activeWindow();
    if (!active || active == dialog || !active->windowHandle())
        return;
    dialog->winId(); // makes the window
    dialog->windowHandle()->setTransientParent(active->windowHandle());
}

void ModalDialog::fitIntoScreen(QDialog *dialog)
{
    constexpr QSize frame(16, 48); // what a common one takes, in points
    const QWindow *window = dialog->windowHandle();
    const QWindow *parent = window ? window->transientParent() : nullptr;
    const QScreen *screen = parent ? parent->screen() : dialog->screen();
    dialog->resize(dialog->size().boundedTo(screen->availableSize() - frame));
}

int ModalDialog::run(QDialog *dialog)
{
    const QPointer<QWidget> before = QApplication::activeWindow();
    const int result = dialog->exec();
    if (before && before->isVisible())
        before->activateWindow();
    return result;
}
