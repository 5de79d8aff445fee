#include "platform/widgets/ModalDialog.h"

#include <QDialog>
#include <QtTest>

class ModalDialogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void givesTheResult();
    void windowIsActiveAgain();
    void fitsIntoTheScreen();
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

void ModalDialogTest::fitsIntoTheScreen()
{
    QDialog dialog;
    const QSize room = dialog.screen()->availableSize();
    const QSize small = room / 2;
    dialog.resize(small);
    ModalDialog::fitIntoScreen(&dialog);
    QCOMPARE(dialog.size(), small);
    dialog.resize(small.width(), room.height());
    ModalDialog::fitIntoScreen(&dialog);
    QCOMPARE(dialog.width(), small.width());
    QVERIFY(dialog.height() < room.height());
    QVERIFY(dialog.height() > room.height() - 100);
    dialog.setMinimumHeight(room.height() + 1);
    ModalDialog::fitIntoScreen(&dialog);
    QCOMPARE(dialog.height(), room.height() + 1);
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
