#include "platform/widgets/ModalDialog.h"

#include <QApplication>
#include <QDialog>
#include <QPointer>
#include <QWindow>

void ModalDialog::attachToActiveWindow(QDialog *dialog)
{
    const QWidget *active = QApplication::activeWindow();
    if (!active || active == dialog || !active->windowHandle())
        return;
    dialog->winId(); // makes the window
    dialog->windowHandle()->setTransientParent(active->windowHandle());
}

int ModalDialog::run(QDialog *dialog)
{
    const QPointer<QWidget> before = QApplication::activeWindow();
    const int result = dialog->exec();
    if (before && before->isVisible())
        before->activateWindow();
    return result;
}
