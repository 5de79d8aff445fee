#include "platform/widgets/ModalDialog.h"

#include <QDialog>
#include <QtTest>

class ModalDialogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void givesTheResult();
    void windowIsActiveAgain();
    void windowMayGo();
    void dialogMayGo();
};

void ModalDialogTest::givesTheResult()
{
    for (const int result : {int(QDialog::Accepted), int(QDialog::Rejected)}) {
        QDialog dialog;
        QTimer::singleShot(0, &dialog, [&] { dialog.done(result); });
        QCOMPARE(ModalDialog::run(&dialog), result);
    }
}

// Though another one gets the keyboard first.
void ModalDialogTest::windowIsActiveAgain()
{
    QWidget other;
    QWidget window;
    other.show();
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QDialog dialog(&window);
    bool otherWasActive = false;
    connect(&dialog, &QDialog::finished, &other, [&] {
        other.activateWindow();
        otherWasActive = QTest::qWaitForWindowActive(&other);
    });
    QTimer::singleShot(0, &dialog, &QDialog::reject);
    ModalDialog::run(&dialog);
    QVERIFY(otherWasActive);
    QTRY_VERIFY(window.isActiveWindow());
}

void ModalDialogTest::windowMayGo()
{
    auto *window = new QWidget;
    window->show();
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window));
    QDialog dialog;
    QTimer::singleShot(0, &dialog, [&] {
        delete window;
        dialog.accept();
    });
    QCOMPARE(ModalDialog::run(&dialog), int(QDialog::Accepted));
}

void ModalDialogTest::dialogMayGo()
{
    auto *window = new QWidget;
    window->show();
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window));
    auto *dialog = new QDialog(window);
    QTimer::singleShot(0, qApp, [&] { delete window; });
    QCOMPARE(ModalDialog::run(dialog), int(QDialog::Rejected));
}

QTEST_MAIN(ModalDialogTest)
#include "ModalDialogTest.moc"
