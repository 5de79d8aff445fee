#pragma once

#include "tests/drawer/DrawerStage.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTextEdit>

// A dialog of an item, as its user sees it.
class DialogStage
{
public:
    explicit DialogStage(QDialog *dialog) : _dialog(dialog) {}

    QLineEdit *line(const char *name) const { return _dialog->findChild<QLineEdit *>(QString::fromLatin1(name)); }
    QTextEdit *text(const char *name) const { return _dialog->findChild<QTextEdit *>(QString::fromLatin1(name)); }
    QPushButton *button(QDialogButtonBox::StandardButton button) const
    {
        return _dialog->findChild<QDialogButtonBox *>()->button(button);
    }
    // Types over what stands in the field.
    void type(QWidget *field, const QString &typed) const
    {
        field->setFocus();
        QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
        if (typed.isEmpty())
            QTest::keyClick(field, Qt::Key_Delete);
        else
            QTest::keyClicks(field, typed);
        const auto *line = qobject_cast<QLineEdit *>(field);
        const auto *text = qobject_cast<QTextEdit *>(field);
        QCOMPARE(line ? line->text() : text->toPlainText(), typed); // or what follows would tell nothing
    }
    void pressOK() const { QTest::mouseClick(button(QDialogButtonBox::Ok), Qt::LeftButton); }
    void pressCancel() const { QTest::mouseClick(button(QDialogButtonBox::Cancel), Qt::LeftButton); }
    QDialog *dialog() const { return _dialog; }

    // Runs the controller's dialog, in which `user` acts; answers what doEdit does. A dialog that the user leaves open
    // is closed, and the test fails.
    template <class Controller>
    static bool run(Controller &controller, const std::function<void(const DialogStage &)> &user)
    {
        DrawerStage::whenDialogOpens<QDialog>(controller.editWindow(), [&user](QDialog *dialog) { act(dialog, user); });
        return controller.doEdit();
    }
    static void act(QDialog *dialog, const std::function<void(const DialogStage &)> &user)
    {
        const bool isActive = QTest::qWaitForWindowActive(dialog);
        user(DialogStage(dialog));
        const bool leftOpen = dialog->isVisible();
        if (leftOpen)
            dialog->reject();
        QVERIFY(isActive);
        QVERIFY2(!leftOpen, "the dialog is still open");
    }

private:
    QDialog *_dialog;
};
