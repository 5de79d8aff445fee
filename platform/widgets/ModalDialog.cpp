#include "platform/widgets/ModalDialog.h"

#include <QApplication>
#include <QDialog>
#include <QPointer>

int ModalDialog::run(QDialog *dialog)
{
    const QPointer<QWidget> before = QApplication::activeWindow();
    const int result = dialog->exec();
    if (before && before->isVisible())
        before->activateWindow();
    return result;
}
