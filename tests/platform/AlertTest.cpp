#include "platform/widgets/Alert.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTimer>

namespace
{
// Runs the alert and lets a user do something with it once it is up.
int runWith(const Alert &alert, const std::function<void(QMessageBox &)> &user, QWidget *parent = nullptr)
{
    QTimer wait;
    wait.setInterval(0);
    QObject::connect(&wait, &QTimer::timeout, [&wait, &user] {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!box || !box->isVisible())
            return;
        wait.stop();
        user(*box);
    });
    wait.start();
    return alert.runModal(parent);
}

QAbstractButton *buttonNamed(const QMessageBox &box, const QString &text)
{
    const QList<QAbstractButton *> buttons = box.buttons();
    for (QAbstractButton *button : buttons) {
        if (button->text() == text)
            return button;
    }
    return nullptr;
}

Alert threeButtons()
{
    Alert alert;
    alert.messageText = "Delete the note?";
    alert.informativeText = "This cannot be <i>undone</i>.";
    alert.defaultButton = "Delete";
    alert.alternateButton = "Keep";
    alert.otherButton = "Move";
    return alert;
}
} // namespace

class AlertTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void answersByButton_data();
    void answersByButton();
    void answersByKey_data();
    void answersByKey();
    void closingCountsAsTheAlternateButton_data();
    void closingCountsAsTheAlternateButton();
    void showsItsTexts();
    void textIsNoColumn_data();
    void textIsNoColumn();
    void showsItsStyle_data();
    void showsItsStyle();
    void hasAnOrdinaryButtonAtLeast();
    void parentMayGoMeanwhile();
};

void AlertTest::answersByButton_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<int>("result");
    QTest::newRow("default") << "Delete" << 1;
    QTest::newRow("alternate") << "Keep" << 0;
    QTest::newRow("other") << "Move" << -1;
}

void AlertTest::answersByButton()
{
    QFETCH(QString, button);
    QFETCH(int, result);
    const int answer = runWith(threeButtons(), [&](QMessageBox &box) {
        QAbstractButton *found = buttonNamed(box, button);
        QVERIFY(found);
        QTest::mouseClick(found, Qt::LeftButton);
    });
    QCOMPARE(answer, result);
}

void AlertTest::answersByKey_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<bool>("isAlone");
    QTest::addColumn<int>("result");
    QTest::newRow("Return") << int(Qt::Key_Return) << false << 1;
    QTest::newRow("Escape") << int(Qt::Key_Escape) << false << 0;
    QTest::newRow("Return, one button") << int(Qt::Key_Return) << true << 1;
    QTest::newRow("Escape, one button") << int(Qt::Key_Escape) << true << 1;
}

void AlertTest::answersByKey()
{
    QFETCH(int, key);
    QFETCH(bool, isAlone);
    QFETCH(int, result);
    Alert alert = threeButtons();
    if (isAlone) {
        alert.alternateButton = QString();
        alert.otherButton = QString();
    }
    QCOMPARE(runWith(alert, [key](QMessageBox &box) { QTest::keyClick(&box, Qt::Key(key)); }), result);
}

void AlertTest::closingCountsAsTheAlternateButton_data()
{
    QTest::addColumn<QString>("alternate");
    QTest::addColumn<QString>("other");
    QTest::addColumn<int>("result");
    QTest::newRow("all three") << "Keep"
                               << "Move" << 0;
    QTest::newRow("two") << "Keep" << QString() << 0;
    QTest::newRow("no alternate one") << QString() << "Move" << 0;
    QTest::newRow("alone") << QString() << QString() << 1;
}

void AlertTest::closingCountsAsTheAlternateButton()
{
    QFETCH(QString, alternate);
    QFETCH(QString, other);
    QFETCH(int, result);
    Alert alert = threeButtons();
    alert.alternateButton = alternate;
    alert.otherButton = other;
    QCOMPARE(runWith(alert, [](QMessageBox &box) { box.close(); }), result);
}

void AlertTest::showsItsTexts()
{
    runWith(threeButtons(), [](QMessageBox &box) {
        QCOMPARE(box.objectName(), QString("Alert"));
        QCOMPARE(box.text(), QString("Delete the note?"));
        QCOMPARE(box.informativeText(), QString("This cannot be <i>undone</i>."));
        QCOMPARE(box.textFormat(), Qt::PlainText);
        for (const QLabel *label : box.findChildren<QLabel *>())
            QVERIFY2(label->text().isEmpty() || label->textFormat() == Qt::PlainText, qPrintable(label->text()));
        QCOMPARE(box.buttons().size(), 3);
        QCOMPARE(box.defaultButton()->text(), QString("Delete"));
        box.close();
    });
}

// However short the heading is.
void AlertTest::textIsNoColumn_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("most");
    QTest::newRow("long") << QString("A sentence of many words. ").repeated(8) << 7;
    QTest::newRow("question") << "Are you sure you want to delete these 12 items ?" << 1;
}

void AlertTest::textIsNoColumn()
{
    QFETCH(QString, text);
    QFETCH(int, most);
    Alert alert;
    alert.messageText = "No";
    alert.informativeText = text;
    int lines = 0;
    runWith(alert, [&](QMessageBox &box) {
        for (const QLabel *label : box.findChildren<QLabel *>()) {
            if (label->text() == alert.informativeText)
                lines = label->contentsRect().height() / label->fontMetrics().lineSpacing();
        }
        box.close();
    });
    QVERIFY2(lines > 0 && lines <= most, qPrintable(QString::number(lines)));
}

void AlertTest::showsItsStyle_data()
{
    QTest::addColumn<int>("style");
    QTest::addColumn<int>("icon");
    QTest::newRow("warning") << 0 << int(QMessageBox::Warning);
    QTest::newRow("informational") << 1 << int(QMessageBox::Information);
    QTest::newRow("critical") << 2 << int(QMessageBox::Critical);
}

void AlertTest::showsItsStyle()
{
    QFETCH(int, style);
    QFETCH(int, icon);
    Alert alert = threeButtons();
    alert.style = Alert::Style(style);
    runWith(alert, [icon](QMessageBox &box) {
        QCOMPARE(int(box.icon()), icon);
        box.close();
    });
}

void AlertTest::hasAnOrdinaryButtonAtLeast()
{
    Alert alert;
    alert.messageText = "You have the newest release.";
    const int answer = runWith(alert, [](QMessageBox &box) {
        QCOMPARE(box.buttons().size(), 1);
        QCOMPARE(box.buttons()[0]->text(), QString("OK"));
        QTest::mouseClick(box.buttons()[0], Qt::LeftButton);
    });
    QCOMPARE(answer, 1);
}

void AlertTest::parentMayGoMeanwhile()
{
    auto *parent = new QWidget;
    parent->show();
    QCOMPARE(runWith(
                 threeButtons(), [parent](QMessageBox &) { delete parent; }, parent),
             0);
}

QTEST_MAIN(AlertTest)
#include "AlertTest.moc"
